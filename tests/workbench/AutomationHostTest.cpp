// The sheet model seen as a late-bound client sees it.
#include "AutomationHost.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <functional>
#include <optional>

#include "automation/NamelessDispatch.h"
#include "automation/Variant.h"
#include "util/Utf.h"

namespace rowlark::workbench {
namespace {

using automation::ComPtr;
using automation::Variant;
using Arguments = std::vector<Variant>;

constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kMethod = DISPATCH_METHOD;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;
constexpr WORD kAny = kGet | kMethod;

struct Result {
  HRESULT code = S_OK;
  Variant value;
  SCODE number = 0;
  std::u16string description;
};

// The arguments in their order, the last `named` of them by name; of a property that is set the value is the
// last argument.
Result Invoke(IDispatch* object, std::u16string name, WORD flags, Arguments arguments = {},
              std::vector<std::u16string> named = {}, LCID locale = automation::kLocale) {
  Result result;
  std::vector<LPOLESTR> names{reinterpret_cast<LPOLESTR>(name.data())};
  for (auto& argument : named) names.push_back(reinterpret_cast<LPOLESTR>(argument.data()));
  std::vector<DISPID> ids(names.size());
  result.code =
      object->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()), locale, ids.data());
  if (FAILED(result.code)) return result;

  const DISPID member = ids.front();
  std::vector<DISPID> named_ids(ids.rbegin(), ids.rend() - 1);
  if (flags == kPut) named_ids.insert(named_ids.begin(), DISPID_PROPERTYPUT);
  std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
  DISPPARAMS parameters{reversed.data(), named_ids.data(), static_cast<UINT>(reversed.size()),
                        static_cast<UINT>(named_ids.size())};
  EXCEPINFO exception{};
  result.code =
      object->Invoke(member, IID_NULL, locale, flags, &parameters, result.value.Put(), &exception, nullptr);
  result.number = exception.scode;
  result.description = automation::View(exception.bstrDescription);
  if (result.code == DISP_E_EXCEPTION) {
    EXPECT_EQ(automation::View(exception.bstrSource), u"Microsoft Excel");
  }
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  return result;
}

Variant Get(const Variant& object, const std::u16string& name, Arguments arguments = {}) {
  EXPECT_EQ(object.vt, VT_DISPATCH);
  if (object.vt != VT_DISPATCH || object.pdispVal == nullptr) return {};
  const auto result = Invoke(object.pdispVal, name, kAny, std::move(arguments));
  EXPECT_EQ(result.code, S_OK) << ToUtf8(name) << ": " << ToUtf8(result.description);
  return result.value;
}

void Put(const Variant& object, const std::u16string& name, Arguments arguments) {
  EXPECT_EQ(Invoke(object.pdispVal, name, kPut, std::move(arguments)).code, S_OK) << ToUtf8(name);
}

std::string Text(const Variant& value) {
  Variant text;
  EXPECT_EQ(VariantChangeTypeEx(&text, const_cast<Variant*>(&value), automation::kLocale, VARIANT_ALPHABOOL,
                                VT_BSTR),
            S_OK);
  return text.vt == VT_BSTR ? ToUtf8(automation::View(text.bstrVal)) : "";
}

class AutomationHost : public testing::Test {
 protected:
  explicit AutomationHost(std::u16string_view version = u"16.0")
      : model(MakeRef<standalone::Application>(version)), application(ExposeApplication(model).get()) {
    const auto book = model->AddWorkbook(u"C:\\Data\\table.csv");
    for (const auto* name : {"Name", "Anna", "Bert", "Berta", "Anna"}) {
      const std::string_view cells[] = {name, "Berlin", "12.5"};
      book->Worksheets().front()->AppendRow(cells);
    }
  }

  Variant Sheet() const { return Get(application, u"ActiveSheet"); }
  Variant Range(const char16_t* address) const { return Get(Sheet(), u"Range", {address}); }

  Ref<standalone::Application> model;
  Variant application;
};

TEST_F(AutomationHost, FailsAsExcelDoes) {
  const auto app = application;
  const auto sheet = Sheet();
  const auto range = Range(u"A1:C5");
  const auto bar = Get(app, u"CommandBars", {u"worksheet menu bar"});
  const auto button = Get(Get(bar, u"Controls"), u"Add", {1});
  const auto deleted = Get(Get(bar, u"Controls"), u"Add", {1});
  Get(deleted, u"Delete");
  constexpr auto number = [](uint32_t n) { return static_cast<SCODE>(0x800A0000u + n); };
  const auto missing = Variant::Missing();

  const struct {
    const Variant& object;
    const char16_t* member;
    WORD flags;
    Arguments arguments;
    std::vector<std::u16string> named;
    HRESULT code;
    SCODE number = 0;
  } cases[] = {
      {range, u"Fined", kAny, {}, {}, DISP_E_UNKNOWNNAME},
      {range, u"Find", kMethod, {u"x", 1}, {u"Wat"}, DISP_E_UNKNOWNNAME},
      {button, u"Controls", kGet, {}, {}, DISP_E_UNKNOWNNAME},
      {range, u"Find", kGet, {u"x"}, {}, DISP_E_MEMBERNOTFOUND},
      {range, u"Row", kMethod, {}, {}, DISP_E_MEMBERNOTFOUND},
      {range, u"Row", kPut, {5}, {}, DISP_E_MEMBERNOTFOUND},
      {range, u"Value", DISPATCH_PROPERTYPUTREF, {5}, {}, DISP_E_MEMBERNOTFOUND},
      {sheet, u"ProtectScenarios", kPut, {true}, {}, DISP_E_MEMBERNOTFOUND},
      {sheet, u"AutoFilter", kAny, {1}, {}, DISP_E_MEMBERNOTFOUND},
      {range, u"Row", kGet, {1}, {}, DISP_E_BADPARAMCOUNT},
      {range, u"Activate", kMethod, {1}, {}, DISP_E_BADPARAMCOUNT},
      {range, u"Offset", kGet, {1, 1, 1}, {}, DISP_E_BADPARAMCOUNT},
      {range, u"Find", kMethod, {}, {}, DISP_E_PARAMNOTOPTIONAL},
      {range, u"Find", kMethod, {missing}, {}, DISP_E_PARAMNOTOPTIONAL},
      {range, u"Find", kMethod, {1}, {u"LookAt"}, DISP_E_PARAMNOTOPTIONAL},
      {range, u"Find", kMethod, {u"x", u"y"}, {u"What"}, DISP_E_PARAMNOTFOUND},
      {range, u"Find", kMethod, {u"x", u"A1"}, {}, DISP_E_TYPEMISMATCH},
      {range, u"Find", kMethod, {u"x", app}, {}, DISP_E_TYPEMISMATCH},
      {range, u"Find", kMethod, {u"x", missing, u"values"}, {}, DISP_E_TYPEMISMATCH},
      {app, u"ScreenUpdating", kPut, {u"maybe"}, {}, DISP_E_TYPEMISMATCH},
      {range, u"Find", kMethod, {u"x", missing, -4164}, {}, DISP_E_EXCEPTION, number(1004)},
      {range, u"Find", kMethod, {u"x", Range(u"D1")}, {}, DISP_E_EXCEPTION, number(1004)},
      {range, u"FindNext", kMethod, {Range(u"A1:A2")}, {}, DISP_E_EXCEPTION, number(1004)},
      {range, u"Offset", kGet, {-1}, {}, DISP_E_EXCEPTION, number(1004)},
      {range, u"Hidden", kPut, {true}, {}, DISP_E_EXCEPTION, number(1004)},
      {sheet, u"Range", kGet, {u"A0"}, {}, DISP_E_EXCEPTION, number(1004)},
      {sheet, u"Cells", kGet, {1, 16385}, {}, DISP_E_EXCEPTION, number(1004)},
      {Get(sheet, u"Cells"), u"Count", kGet, {}, {}, DISP_E_EXCEPTION, number(6)},
      {Get(range, u"Areas"), u"Item", kGet, {2}, {}, DISP_E_EXCEPTION, number(9)},
      {app, u"Workbooks", kGet, {u"none.csv"}, {}, DISP_E_EXCEPTION, number(9)},
      {app, u"CommandBars", kGet, {u"Ply"}, {}, DISP_E_EXCEPTION, number(5)},
      {deleted, u"Caption", kGet, {}, {}, E_FAIL},
  };
  for (const auto& c : cases) {
    const auto result = Invoke(c.object.pdispVal, c.member, c.flags, c.arguments, c.named);
    EXPECT_EQ(result.code, c.code) << ToUtf8(c.member) << " of case " << &c - cases;
    EXPECT_EQ(result.number, c.number) << ToUtf8(c.member) << " of case " << &c - cases;
    EXPECT_EQ(result.description.empty(), c.number == 0);
    EXPECT_EQ(result.value.vt, VT_EMPTY);
  }

  for (const LCID locale : {LCID{LOCALE_USER_DEFAULT}, LCID{LOCALE_SYSTEM_DEFAULT}, LCID{0x0415}}) {
    EXPECT_EQ(Invoke(range.pdispVal, u"Row", kGet, {}, {}, locale).code, TYPE_E_INVDATAREAD);
    DISPPARAMS none{};
    EXPECT_EQ(range.pdispVal->Invoke(1, IID_NULL, locale, kGet, &none, nullptr, nullptr, nullptr),
              TYPE_E_INVDATAREAD);
  }

  Get(Get(app, u"ActiveWorkbook"), u"Close");
  for (const auto& [object, member] : {std::pair(sheet, u"UsedRange"), std::pair(range, u"Row")}) {
    EXPECT_EQ(Invoke(object.pdispVal, member, kAny).code, RPC_E_DISCONNECTED);
  }
  EXPECT_EQ(Get(app, u"ActiveSheet").pdispVal, nullptr);
}

TEST_F(AutomationHost, TakesArgumentsByPlaceAndByName) {
  const auto range = Range(u"A1:A5");
  const auto find = [&](Arguments arguments, std::vector<std::u16string> named) {
    const auto found = Invoke(range.pdispVal, u"fIND", kAny, std::move(arguments), std::move(named));
    EXPECT_EQ(found.code, S_OK);
    return found.value.pdispVal == nullptr ? "" : Text(Get(found.value, u"Address"));
  };
  EXPECT_EQ(find({u"anna"}, {}), "$A$2");
  EXPECT_EQ(find({2, u"anna"}, {u"searchdirection", u"what"}), "$A$5");
  EXPECT_EQ(find({u"anna", Range(u"A2")}, {}), "$A$5");
  EXPECT_EQ(find({u"bert", Range(u"A3"), 1}, {u"After", u"LookAt"}), "$A$3");
  EXPECT_EQ(find({u"bert", Variant::Missing(), Variant::Missing(), 2, 1, 1, true}, {}), "");

  // By reference, as compiled clients and scripts pass their variables.
  Variant text(u"Berta");
  Variant reference;
  reference.vt = VT_BYREF | VT_VARIANT;
  reference.pvarVal = &text;
  EXPECT_EQ(find({reference}, {}), "$A$4");
  reference.vt = VT_BYREF | VT_BSTR;
  reference.pbstrVal = &text.bstrVal;
  EXPECT_EQ(find({reference}, {}), "$A$4");
}

TEST_F(AutomationHost, PassesArgumentsOnToTheDefaultMember) {
  const auto sheet = Sheet();
  Put(sheet, u"Cells", {7, u"C", u"first"});
  Put(sheet, u"Range", {u"C8:D8", u"both"});
  EXPECT_EQ(Text(Get(sheet, u"Cells", {7, 3})), "first");  // the value of the value's default member
  EXPECT_EQ(Text(Get(Range(u"D8"), u"Value")), "both");
  EXPECT_EQ(Text(Get(Get(Range(u"B2:C4"), u"Rows", {2}), u"Address")), "$B$3:$C$3");
  EXPECT_EQ(Text(Get(Get(Range(u"B2:C4"), u"Cells", {3}), u"Address", {false, false})), "B3");
  EXPECT_EQ(Text(Get(Get(Range(u"B2:C3,F9"), u"Item", {5}), u"Address")), "$B$4");
}

TEST_F(AutomationHost, GivesCellsAsValuesOfTheirTypes) {
  const struct {
    const char* text;
    VARTYPE type;
    int32_t error = 0;
  } cases[] = {{"12", VT_R8},
               {"-0.5", VT_R8},
               {"007", VT_BSTR},
               {"1.50", VT_BSTR},
               {"1E5", VT_BSTR},
               {"inf", VT_BSTR},
               {"TRUE", VT_BOOL},
               {"true", VT_BSTR},
               {"#N/A", VT_ERROR, 2042},
               {"#DIV/0!", VT_ERROR, 2007},
               {"#NO", VT_BSTR},
               {"", VT_EMPTY}};
  const auto cell = Range(u"F1");
  for (const auto& c : cases) {
    Put(cell, u"Value", {ToUtf16(c.text)});
    const auto value = Get(cell, u"Value");
    EXPECT_EQ(value.vt, c.type) << c.text;
    if (c.error != 0) {
      EXPECT_EQ(value.scode, static_cast<SCODE>(0x800A0000u + static_cast<uint32_t>(c.error))) << c.text;
    }
    Put(cell, u"Value", {u"changed"});
    Put(cell, u"Value", {value});  // a value typed in shows as the text that it came from
    EXPECT_EQ(Text(Get(cell, u"Text")), c.text);
  }

  const auto block = Get(Range(u"A4:C5"), u"Value");
  ASSERT_EQ(block.vt, VT_ARRAY | VT_VARIANT);
  LONG place[] = {2, 3};  // row, column
  Variant element;
  ASSERT_EQ(SafeArrayGetElement(block.parray, place, &element), S_OK);
  EXPECT_EQ(element.vt, VT_R8);
  place[1] = 1;
  ASSERT_EQ(SafeArrayGetElement(block.parray, place, element.Put()), S_OK);
  EXPECT_EQ(Text(element), "Anna");
}

TEST_F(AutomationHost, HidesRowsAndTellsWhichAreHidden) {
  Put(Get(Range(u"A2:A3,A5"), u"EntireRow"), u"Hidden", {true});
  EXPECT_EQ(Text(Get(Get(Range(u"A1:C6"), u"SpecialCells", {12}), u"Address")),
            "$A$1:$C$1,$A$4:$C$4,$A$6:$C$6");
  const auto hidden = [&](const char16_t* rows) { return Get(Get(Sheet(), u"Rows", {rows}), u"Hidden"); };
  EXPECT_EQ(hidden(u"1:2").vt, VT_NULL);
  EXPECT_EQ(Text(hidden(u"2:3")), "True");
  EXPECT_EQ(Text(hidden(u"6")), "False");
}

TEST_F(AutomationHost, EnumeratesCollections) {
  const auto areas = Get(Range(u"A1:B2,D1,C7"), u"Areas");
  const auto enumerator = Get(areas, u"_NewEnum");
  ASSERT_EQ(enumerator.vt, VT_UNKNOWN);
  const auto elements = ComPtr<IEnumVARIANT>::From(enumerator.punkVal);
  std::string text;
  Variant element;
  while (elements->Next(1, element.Put(), nullptr) == S_OK) text += Text(Get(element, u"Address")) + " ";
  EXPECT_EQ(text, "$A$1:$B$2 $D$1 $C$7 ");
  const auto next = [&] {
    return elements->Next(1, element.Put(), nullptr) == S_OK ? Text(Get(element, u"Address")) : "none";
  };
  for (const auto& [skipped, result, found] :
       {std::tuple(2, S_OK, "$C$7"), std::tuple(3, S_OK, "none"), std::tuple(4, S_FALSE, "none")}) {
    elements->Reset();
    EXPECT_EQ(elements->Skip(static_cast<ULONG>(skipped)), result);
    EXPECT_EQ(next(), found);
  }
}

// Notes the address of each selection on a sheet.
class Listener final : public automation::NamelessDispatch {
 public:
  explicit Listener(IDispatch* sheet, const IID& events = IID_IUnknown)
      : NamelessDispatch(events), sheet_(sheet) {
    AddRef();  // of the test, which ends it
  }
  std::string heard;

  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                      UINT*) noexcept override {
    EXPECT_EQ(id, 0x616);
    EXPECT_EQ(parameters->cArgs, 2u);
    EXPECT_EQ(parameters->rgvarg[1].pdispVal, sheet_);
    heard += Text(Get(Variant(parameters->rgvarg[0].pdispVal), u"Address")) + " ";
    return S_OK;
  }

 private:
  IDispatch* sheet_;
};

TEST_F(AutomationHost, TellsOfSelections) {
  const auto sheet = Sheet();
  const auto book = Get(application, u"ActiveWorkbook");
  const auto container = ComPtr<IConnectionPointContainer>::From(book.pdispVal);
  ASSERT_TRUE(container);
  constexpr IID kWorkbookEvents = {0x00024412, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
  ComPtr<IConnectionPoint> point;
  ASSERT_EQ(container->FindConnectionPoint(kWorkbookEvents, point.Put()), S_OK);
  DWORD cookie = 0;
  Listener nameless(sheet.pdispVal);
  EXPECT_EQ(point->Advise(&nameless, &cookie), CONNECT_E_CANNOTCONNECT) << "as Excel, by its name alone";
  Listener listener(sheet.pdispVal, kWorkbookEvents);
  ASSERT_EQ(point->Advise(&listener, &cookie), S_OK);

  Get(Range(u"B2:C3"), u"Select");
  Get(Range(u"C3"), u"Activate");  // within the selection
  Put(application, u"EnableEvents", {false});
  Get(Range(u"D4"), u"Select");
  Put(application, u"EnableEvents", {true});
  Get(Range(u"E5"), u"Select");
  EXPECT_EQ(point->Unadvise(cookie), S_OK);
  Get(Range(u"F6"), u"Select");
  EXPECT_EQ(listener.heard, "$B$2:$C$3 $E$5 ");
  EXPECT_FALSE(ComPtr<IConnectionPointContainer>::From(sheet.pdispVal));
}

TEST_F(AutomationHost, KeepsTheModelWhileAnObjectIsInUse) {
  auto lifetime = std::make_shared<int>();
  const std::weak_ptr<int> alive = lifetime;
  Variant app(ExposeApplication(MakeRef<standalone::Application>(), std::move(lifetime)).get());
  Get(Get(app, u"Workbooks"), u"Add");
  Variant sheet = Get(app, u"ActiveSheet");
  EXPECT_EQ(Get(app, u"ActiveSheet").pdispVal, sheet.pdispVal);
  app = {};
  EXPECT_EQ(Text(Get(Get(sheet, u"Parent"), u"Name")), "Book1");
  EXPECT_FALSE(alive.expired());
  sheet = {};
  EXPECT_TRUE(alive.expired());
}

class OldAutomationHost : public AutomationHost {
 protected:
  OldAutomationHost() : AutomationHost(u"8.0") {}
};

TEST_F(OldAutomationHost, LacksWhatCameLater) {
  EXPECT_EQ(Invoke(application.pdispVal, u"Hwnd", kGet).code, DISP_E_UNKNOWNNAME);
  Get(Range(u"A1:C5"), u"AutoFilter", {1, u"Anna"});
  EXPECT_EQ(Invoke(Get(Sheet(), u"AutoFilter").pdispVal, u"ApplyFilter", kMethod).code, DISP_E_UNKNOWNNAME);
}

}  // namespace
}  // namespace rowlark::workbench
