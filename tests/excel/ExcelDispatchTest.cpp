// Calls as the adapter makes them, and what it makes of the answers, over an object that answers as told.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "Excel.h"
#include "FakeObject.h"
#include "host/Error.h"

namespace rowlark::windows {
namespace {

using automation::ComPtr;
using automation::Variant;
using testing::FakeObject;

Variant Typed(VARTYPE type, double number) {
  Variant value;
  Variant source(number);
  EXPECT_EQ(VariantChangeTypeEx(&value, &source, LOCALE_INVARIANT, 0, type), S_OK);
  return value;
}

Variant ErrorValue(int32_t number) {
  Variant value;
  value.vt = VT_ERROR;
  value.scode = static_cast<SCODE>(0x800A0000u) + number;
  return value;
}

Variant Null() {
  Variant value;
  value.vt = VT_NULL;
  return value;
}

// An application whose active cell answers as told.
struct Fake {
  Fake() { object->Value("ActiveCell", cell.get()); }

  ComPtr<FakeObject> object = new FakeObject;
  ComPtr<FakeObject> cell = new FakeObject;
  Ref<host::Application> application = WrapExcel(object.get());
};

struct Failed {
  int32_t number = 0;
  std::string description;
  bool operator==(const Failed&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Failed& failed) {
    return out << failed.number << ": " << failed.description;
  }
};

Failed ErrorOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const host::Error& error) {
    return {error.Number(), ToUtf8(error.Description())};
  }
  return {};
}

TEST(ExcelValues, AreTextsAsTheUserKnowsThem) {
  const struct {
    Variant value;
    const char* shown;
    const char* text;
  } kCases[] = {
      {u"Müller", "x", "Müller"},
      {Variant(), "x", ""},
      {Null(), "x", ""},
      {1.0, "1.00", "1"},
      {-1234.5, "x", "-1234.5"},
      {0.1 + 0.2, "x", "0.3"},
      {123456789012345678.0, "1,2E+17", "1.23456789012346E+17"},
      {int32_t{7}, "x", "7"},
      {true, "WAHR", "WAHR"},
      {Typed(VT_DATE, 36526), "1. Jan 00", "1. Jan 00"},
      {Typed(VT_CY, 12.5), "12,50 €", "12,50 €"},
      {Typed(VT_CY, 12.5), "####", "12.5"},  // the column is too narrow
      {ErrorValue(2000), "x", "#NULL!"},
      {ErrorValue(2007), "x", "#DIV/0!"},
      {ErrorValue(2015), "x", "#VALUE!"},
      {ErrorValue(2023), "x", "#REF!"},
      {ErrorValue(2029), "x", "#NAME?"},
      {ErrorValue(2036), "x", "#NUM!"},
      {ErrorValue(2042), "#NV", "#N/A"},
      {ErrorValue(2045), "#SPILL!", "#SPILL!"},
  };
  for (const auto& c : kCases) {
    Fake fake;
    fake.cell->Value("Value", c.value);
    fake.cell->Value("Text", std::u16string_view(ToUtf16(c.shown)));
    EXPECT_EQ(ToUtf8(fake.application->ActiveCell()->Value()), c.text) << c.value.vt << ' ' << c.shown;
  }
}

HRESULT STDMETHODCALLTYPE FillIn(EXCEPINFO* exception) {
  exception->scode = static_cast<SCODE>(0x800A0009u);
  exception->bstrDescription = automation::NewBstr(u"Subscript out of range");
  return S_OK;
}

TEST(ExcelCalls, TurnFailuresIntoErrorsOfTheHost) {
  const auto raise = [](SCODE code, WORD number, const char16_t* text) {
    return [=](FakeObject::Call& call) {
      call.exception.scode = code;
      call.exception.wCode = number;
      if (text != nullptr) call.exception.bstrDescription = automation::NewBstr(text);
      return DISP_E_EXCEPTION;
    };
  };
  const auto answer = [](HRESULT result) { return [result](FakeObject::Call&) { return result; }; };
  const auto control = [](int32_t number) { return static_cast<SCODE>(0x800A0000u) + number; };
  const char* const kUnknown = "Application-defined or object-defined error";
  const char* const kNoMember = "Object doesn't support this property or method";
  const struct {
    const char* name;
    FakeObject::Function answer;
    Failed failed;
  } kCases[] = {
      {"the host's words", raise(control(1004), 0, u"Unable to activate"), {1004, "Unable to activate"}},
      {"no words", raise(control(1004), 0, nullptr), {1004, kUnknown}},
      {"a code of its own", raise(0, 1001, u"Late"), {1001, "Late"}},
      {"filled in on demand",
       [](FakeObject::Call& call) {
         call.exception.pfnDeferredFillIn = FillIn;
         return DISP_E_EXCEPTION;
       },
       {9, "Subscript out of range"}},
      {"no such member", answer(DISP_E_MEMBERNOTFOUND), {438, kNoMember}},
      {"a cell is being edited", answer(control(50290)), {50290, "application is busy"}},
      {"busy", answer(RPC_E_CALL_REJECTED), {RPC_E_CALL_REJECTED, "application is busy"}},
      {"the system's words", answer(E_ACCESSDENIED), {E_ACCESSDENIED, "denied"}},
      {"no words at all",
       answer(static_cast<HRESULT>(0x80040ABCu)),
       {static_cast<int32_t>(0x80040ABCu), "Automation error 0x80040ABC"}},
  };
  for (const auto& c : kCases) {
    Fake fake;
    fake.cell->Method("Activate", c.answer);
    const auto failed = ErrorOf([&] { fake.application->ActiveCell()->Activate(); });
    EXPECT_EQ(failed.number, c.failed.number) << c.name;
    // The system has its own words around these.
    EXPECT_NE(failed.description.find(c.failed.description), std::string::npos) << failed << c.name;
  }
  Fake fake;
  EXPECT_EQ(ErrorOf([&] { fake.application->ActiveCell()->Activate(); }), (Failed{438, kNoMember}));
  fake.cell->Value("EntireRow", static_cast<IDispatch*>(nullptr));
  EXPECT_EQ(ErrorOf([&] { fake.application->ActiveCell()->EntireRowHidden(); }).number, 91);
}

TEST(ExcelCalls, LeaveOutWhatIsOmitted) {
  struct Given {
    std::vector<std::string> find, filter, key;
  } given;
  const auto note = [](std::vector<std::string>& into) {
    return [&into](FakeObject::Call& call) {
      into.clear();
      for (auto& argument : call.arguments) {
        const bool missing = argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
        Variant text;
        if (argument.vt == VT_DISPATCH) {
          into.emplace_back("object");
        } else if (missing) {
          into.emplace_back("-");
        } else if (argument.vt == (VT_ARRAY | VT_VARIANT)) {
          into.emplace_back("list");
        } else if (SUCCEEDED(VariantChangeType(&text, &argument, VARIANT_ALPHABOOL, VT_BSTR))) {
          into.push_back(ToUtf8(automation::View(text.bstrVal)));
        }
      }
      return S_OK;
    };
  };
  using Texts = std::vector<std::string>;
  Fake fake;
  fake.cell->Method("Find", note(given.find));
  fake.cell->Method("AutoFilter", note(given.filter));
  fake.object->Method("OnKey", note(given.key));
  const auto cell = fake.application->ActiveCell();

  EXPECT_FALSE(cell->Find({.What = u"a"}));
  EXPECT_EQ(given.find, (Texts{"a"}));
  cell->Find({.What = u"",
              .LookIn = host::xlValues,
              .LookAt = host::xlPart,
              .SearchDirection = host::xlNext,
              .MatchCase = false});
  EXPECT_EQ(given.find, (Texts{"", "-", "-4163", "2", "-", "1", "False"}));
  cell->Find({.What = u"a", .After = cell.get(), .SearchOrder = host::xlByColumns});
  EXPECT_EQ(given.find, (Texts{"a", "object", "-", "-", "2"}));

  cell->AutoFilter({});
  EXPECT_EQ(given.filter, Texts{});
  cell->AutoFilter({.Field = 2});
  EXPECT_EQ(given.filter, (Texts{"2"}));
  cell->AutoFilter(
      {.Field = 2, .Criteria1 = std::vector<std::u16string>{u"a"}, .Operator = host::xlFilterValues});
  EXPECT_EQ(given.filter, (Texts{"2", "list", "7"}));
  cell->AutoFilter({.Field = 2, .Operator = host::xlOr, .Criteria2 = u"b"});
  EXPECT_EQ(given.filter, (Texts{"2", "-", "2", "b"}));

  fake.application->OnKey(u"^f", u"Find");
  EXPECT_EQ(given.key, (Texts{"^f", "Find"}));
  fake.application->OnKey(u"^f", u"");
  EXPECT_EQ(given.key, (Texts{"^f", ""}));
  fake.application->OnKey(u"^f", std::nullopt);
  EXPECT_EQ(given.key, (Texts{"^f"}));
}

TEST(ExcelCalls, LookNamesUpOnceAlsoWithScriptEngines) {
  for (const HRESULT names : {S_OK, E_NOTIMPL}) {
    Fake fake;
    fake.cell->NamesFail = names;
    fake.cell->Value("Row", int32_t{5});
    for (int i = 0; i < 3; ++i) EXPECT_EQ(fake.application->ActiveCell()->Row(), 5);
    EXPECT_EQ(fake.cell->LookUps, names == S_OK ? 1 : 2);
  }
  Fake busy;
  busy.object->NamesFail = RPC_E_CALL_REJECTED;
  EXPECT_EQ(ErrorOf([&] { busy.application->ActiveCell(); }).number, RPC_E_CALL_REJECTED);
  busy.object->NamesFail = S_OK;
  EXPECT_TRUE(busy.application->ActiveCell());
}

TEST(ExcelCalls, AreMadeInTheLocaleOfVisualBasicButForWhatTheUserTyped) {
  std::vector<LCID> locales;
  HRESULT with_the_users = S_OK;
  Fake fake;
  fake.cell->Method("Value", [&](FakeObject::Call& call) {
    if ((call.flags & DISPATCH_PROPERTYPUT) == 0) return S_OK;
    locales.push_back(fake.cell->Locale);
    return fake.cell->Locale == LOCALE_USER_DEFAULT ? with_the_users : S_OK;
  });
  const auto cell = fake.application->ActiveCell();
  EXPECT_EQ(fake.object->Locale, LCID{0x0409});
  cell->Value();
  EXPECT_EQ(fake.cell->Locale, LCID{0x0409});
  const auto typed = [&](HRESULT answer) {
    with_the_users = answer;
    locales.clear();
    const auto failed = ErrorOf([&] { cell->SetValue(u"1,5"); });
    return std::pair(failed.number, locales);
  };
  using Typed = std::pair<int32_t, std::vector<LCID>>;
  EXPECT_EQ(typed(S_OK), (Typed{0, {LOCALE_USER_DEFAULT}}));
  EXPECT_EQ(typed(TYPE_E_INVDATAREAD), (Typed{0, {LOCALE_USER_DEFAULT, 0x0409}}));
  EXPECT_EQ(typed(RPC_E_CALL_REJECTED), (Typed{RPC_E_CALL_REJECTED, {LOCALE_USER_DEFAULT}}));
}

TEST(ExcelApplication, ExtendsTheSignOfWindowHandles) {
  Fake fake;
  fake.object->Value("Hwnd", static_cast<int32_t>(0x80010203u));
  EXPECT_EQ(fake.application->Hwnd(), static_cast<int32_t>(0x80010203u));
  Fake wide;
  wide.object->Value("Hwnd", Typed(VT_I8, 4294967295.0));
  EXPECT_EQ(wide.application->Hwnd(), -1);
}

TEST(ExcelApplication, HasNoSelectionOfCellsWhereSomethingElseIsSelected) {
  Fake fake;
  const ComPtr<FakeObject> shape = new FakeObject;
  shape->Value("Name", u"Rectangle 1");
  IDispatch* selected = shape.get();
  fake.object->Method("Selection", [&selected](FakeObject::Call& call) {
    call.result = Variant(selected).Detach();
    return S_OK;
  });
  EXPECT_FALSE(fake.application->Selection());
  selected = nullptr;
  EXPECT_FALSE(fake.application->Selection());
  selected = fake.cell.get();
  fake.cell->Value("Areas", Variant());
  EXPECT_TRUE(fake.application->Selection());
  shape->NamesFail = RPC_E_CALL_REJECTED;
  selected = shape.get();
  EXPECT_EQ(ErrorOf([&] { fake.application->Selection(); }).number, RPC_E_CALL_REJECTED);
}

TEST(ExcelRange, RowsHiddenInPartAreNotHidden) {
  Fake fake;
  const ComPtr<FakeObject> rows = new FakeObject;
  fake.cell->Value("EntireRow", rows.get());
  rows->Value("Hidden", Null());
  EXPECT_FALSE(fake.application->ActiveCell()->EntireRowHidden());
}

TEST(ExcelFilter, ReadsCriteriaOfEveryKind) {
  const Variant kList = [] {
    Variant list;
    list.vt = VT_ARRAY | VT_BSTR;
    list.parray = SafeArrayCreateVector(VT_BSTR, 1, 2);
    for (LONG i : {1L, 2L}) {
      SafeArrayPutElement(list.parray, &i, automation::Bstr(i == 1 ? u"=a" : u"=b").get());
    }
    return list;
  }();
  Fake fake;
  const ComPtr<FakeObject> sheet = new FakeObject, filters = new FakeObject, collection = new FakeObject,
                           filter = new FakeObject;
  fake.object->Value("ActiveSheet", sheet.get());
  sheet->Value("UsedRange", fake.cell.get());
  sheet->Value("AutoFilter", filters.get());
  filters->Value("Filters", collection.get());
  collection->Value("Item", filter.get());
  filter->Value("Criteria1", kList);
  filter->Value("Criteria2", 5.0);
  const auto wrapped = fake.application->ActiveSheet()->AutoFilter()->Filters(1);
  EXPECT_EQ(wrapped->Criteria1(), host::Criterion(std::vector<std::u16string>{u"=a", u"=b"}));
  EXPECT_EQ(wrapped->Criteria2(), host::Criterion(u"5"));
}

}  // namespace
}  // namespace rowlark::windows
