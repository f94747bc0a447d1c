// The library as a compiled client uses it: loaded, asked for its class, driven through its interfaces.
#include <gtest/gtest.h>
#include <olectl.h>
#include <psapi.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "AutomationHost.h"
#include "RuntimeLibrary.h"
#include "TempFolder.h"

#include "automation/Arrays.h"
#include "automation/NamelessDispatch.h"
#include "automation/Variant.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using automation::Bstr;
using automation::ComPtr;
using automation::Variant;

// The name of the events that a connection point raises.
IID EventsOf(IConnectionPoint& point) {
  IID iid;
  EXPECT_EQ(point.GetConnectionInterface(&iid), S_OK);
  return iid;
}

// Counts what it hears from a connection point.
class Sink final : public automation::NamelessDispatch {
 public:
  explicit Sink(IConnectionPoint& point) : NamelessDispatch(EventsOf(point)) {
    AddRef();  // of the test, which ends it
    EXPECT_EQ(point.Advise(this, &cookie), S_OK);
  }

  DWORD cookie = 0;
  int heard = 0;
  std::string flags;
  std::string texts;
  std::function<void()> on_event = [] {};

  // Whether anybody else holds it.
  bool Held() {
    AddRef();
    return Release() > 1;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                      UINT*) noexcept override {
    ++heard;
    if (id == 1 && arguments->cArgs == 1) {
      const VARIANT& argument = arguments->rgvarg[0];
      if (argument.vt == (VT_BOOL | VT_BYREF)) flags += *argument.pboolVal == VARIANT_FALSE ? 'F' : 'T';
      if (argument.vt == VT_BSTR) texts += ToUtf8(automation::View(argument.bstrVal)) + ";";
    }
    on_event();
    return E_FAIL;  // the sink's own affair
  }
};

// A late-bound call; the arguments stand in automation's order, the last one first.
HRESULT Call(IDispatch* object, const wchar_t* member, std::vector<VARIANT> arguments) {
  auto* name = const_cast<wchar_t*>(member);
  DISPID id = 0;
  const HRESULT known = object->GetIDsOfNames(IID_NULL, &name, 1, automation::kLocale, &id);
  if (FAILED(known)) return known;
  DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
  return object->Invoke(id, IID_NULL, automation::kLocale, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                        nullptr);
}

class Server : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    ::SetEnvironmentVariableW(L"ROWLARK_TRACE", trace_.c_str());
    ASSERT_EQ(library_.Create(runtime_), S_OK);
    model_ = NewModel();
    host_ = workbench::ExposeApplication(model_);
    ComPtr<_clsVTRLKOptions> options;
    runtime_->get_SearchOptions(options.Put());
    options->put_UseFilter(VARIANT_TRUE);
    ASSERT_EQ(runtime_->putref_ExcelApp(Variant(host_.get())), S_OK);
  }
  // Whatever a test did, nothing of the library is held afterwards.
  void TearDown() override {
    if (runtime_) runtime_->put_ExcelApp(Variant());
    runtime_ = nullptr;
    EXPECT_EQ(library_.CanUnload(), S_OK);
    host_ = nullptr;
    model_ = nullptr;
    CoUninitialize();
  }
  static Ref<standalone::Application> NewModel() {
    auto model = MakeRef<standalone::Application>();
    const auto book = model->AddWorkbook(u"C:\\Data\\Book1.xls");
    auto& sheet = static_cast<standalone::Worksheet&>(*book->ActiveSheet());
    for (const std::string_view name : {"name", "ann", "bob", "ann"}) sheet.AppendRow({&name, 1});
    return model;
  }
  // The source of this thread's last error.
  static std::string ErrorSource() {
    ComPtr<IErrorInfo> error;
    Bstr source;
    if (GetErrorInfo(0, error.Put()) == S_OK) error->GetSource(source.Put());
    return ToUtf8(source.View());
  }
  bool Search(std::u16string_view text, VARIANT* error = nullptr) const {
    VARIANT_BOOL found = VARIANT_FALSE;
    EXPECT_EQ(runtime_->Search(Bstr(text).get(), error, &found), S_OK);
    return found != VARIANT_FALSE;
  }

  static ComPtr<IConnectionPoint> Point(IUnknown* object, const IID& events) {
    ComPtr<IConnectionPoint> point;
    ComPtr<IConnectionPointContainer>::From(object)->FindConnectionPoint(events, point.Put());
    return point;
  }

  const TempFolder folder_;
  const std::filesystem::path trace_ = folder_.Path() / "trace.txt";
  testing::RuntimeLibrary library_;
  ComPtr<_clsVTRLKRuntime> runtime_;
  Ref<standalone::Application> model_;
  ComPtr<IDispatch> host_;
};

TEST_F(Server, TellsWhyInTypedTextsAndVariants) {
  BSTR typed = nullptr;
  VARIANT by_reference;
  VariantInit(&by_reference);
  by_reference.vt = VT_BSTR | VT_BYREF;
  by_reference.pbstrVal = &typed;
  EXPECT_FALSE(Search(u"nobody", &by_reference));
  EXPECT_EQ(ToUtf8(automation::View(typed)), "Text not found");
  EXPECT_TRUE(Search(u"ann", &by_reference));
  EXPECT_EQ(SysStringLen(typed), 0U);
  SysFreeString(typed);
  Variant inner(int32_t{5});
  VARIANT outer;
  outer.vt = VT_VARIANT | VT_BYREF;
  outer.pvarVal = &inner;
  EXPECT_FALSE(Search(u"nobody", &outer));
  EXPECT_EQ(inner.vt, VT_BSTR);
  Variant missing = Variant::Missing();
  EXPECT_FALSE(Search(u"nobody", &missing));
  EXPECT_TRUE(missing.IsMissing());

  LONG number = 0;
  VARIANT wrong;
  wrong.vt = VT_I4 | VT_BYREF;
  wrong.plVal = &number;
  VARIANT_BOOL found = VARIANT_TRUE;
  const Bstr text(u"ann");
  EXPECT_EQ(runtime_->Search(text.get(), &wrong, &found), static_cast<HRESULT>(0x800A000D));
  EXPECT_EQ(found, VARIANT_FALSE);
  EXPECT_EQ(ErrorSource(), "VTRLKRuntime.clsVTRLKRuntime.Search");
  EXPECT_EQ(runtime_->Search(text.get(), nullptr, nullptr), E_POINTER);
  EXPECT_EQ(runtime_->DetectSearchRange(nullptr, nullptr), E_POINTER);
}

TEST_F(Server, LeavesArgumentsByValueToTheirCaller) {
  ComPtr<_clsVTRLKLang> language;
  runtime_->get_Language(language.Put());
  const struct {
    IDispatch* object;
    const wchar_t* member;
    std::vector<Variant> arguments;
  } kCases[] = {{runtime_.get(), L"Search", {u"mine", u"nobody"}},
                {runtime_.get(), L"Unhide", {u"mine", false}},
                {language.get(), L"GetText", {u"mine", Variant::Missing(), u"&Search", u"none"}}};
  for (const auto& c : kCases) {
    const std::vector<VARIANT> given(c.arguments.begin(), c.arguments.end());
    EXPECT_EQ(Call(c.object, c.member, given), S_OK);
    EXPECT_EQ(given[0].bstrVal, c.arguments[0].bstrVal);
    EXPECT_EQ(ToUtf8(automation::View(given[0].bstrVal)), "mine");
  }
  constexpr DISPID kSearch = 8;
  DISPPARAMS nowhere{nullptr, nullptr, 2, 0};
  EXPECT_EQ(runtime_->Invoke(kSearch, IID_NULL, automation::kLocale, DISPATCH_METHOD, &nowhere, nullptr,
                             nullptr, nullptr),
            E_POINTER);
}

TEST_F(Server, NamesClassAndMemberAsTheSourceOfErrors) {
  ComPtr<_clsVTRLKItems> items;
  ComPtr<_clsVTRLKItem> profile;
  ComPtr<_clsVTRLKOptions> options;
  runtime_->get_Items(items.Put());
  items->get_DefaultItem(profile.Put());
  runtime_->get_SearchOptions(options.Put());
  const auto expect = [](HRESULT result, const char* source) {
    EXPECT_TRUE(FAILED(result));
    EXPECT_EQ(ErrorSource(), source);
  };
  expect(options->put_SearchWords(static_cast<::xeVT_SEARCH_WORDS>(3)),
         "VTRLKRuntime.clsVTRLKOptions.SearchWords");
  expect(items->putref_DefaultItem(nullptr), "VTRLKRuntime.clsVTRLKItems.DefaultItem");
  VARIANT_BOOL added = VARIANT_FALSE;
  expect(items->Add(nullptr, &added), "VTRLKRuntime.clsVTRLKItems.Add");
  Variant sheet(host_.get());
  Variant item(static_cast<IDispatch*>(profile.get()));
  expect(runtime_->DetectSearchRange(&sheet, &item), "VTRLKRuntime.clsVTRLKRuntime.DetectSearchRange");
}

TEST_F(Server, RaisesEventsToEverySinkThatIsConnectedYet) {
  const auto point = Point(runtime_.get(), __uuidof(__clsVTRLKRuntime));
  Sink first(*point);
  Sink second(*point);
  EXPECT_TRUE(Search(u"ann"));
  EXPECT_EQ(first.flags, "TF");
  EXPECT_EQ(second.flags, "TF");
  EXPECT_EQ(point->Unadvise(first.cookie), S_OK);
  EXPECT_EQ(point->Unadvise(first.cookie), CONNECT_E_NOCONNECTION);
  Sink third(*point);
  second.on_event = [&] { point->Unadvise(third.cookie); };
  EXPECT_TRUE(Search(u"bob"));
  EXPECT_EQ(first.heard, 2);
  EXPECT_EQ(second.heard, 4);
  EXPECT_EQ(third.heard, 0);
  point->Unadvise(second.cookie);
  for (auto* sink : {&first, &second, &third}) EXPECT_FALSE(sink->Held());
  EXPECT_FALSE(Point(runtime_.get(), IID_IUnknown));
  const auto trace = ReadBytes(trace_);
  EXPECT_NE(trace.find("CallSink (Events.cpp:"), std::string::npos);
  EXPECT_NE(trace.find("): error 0x80004005\n"), std::string::npos);
}

TEST_F(Server, HandsOutConnectionPointsWithAnIdentityOfTheirOwn) {
  const auto point = Point(runtime_.get(), __uuidof(__clsVTRLKRuntime));
  EXPECT_EQ(Point(runtime_.get(), IID_IDispatch).get(), point.get());
  const auto identity = ComPtr<IUnknown>::From(point.get());
  EXPECT_EQ(ComPtr<IConnectionPoint>::From(identity.get()).get(), point.get());
  EXPECT_FALSE(ComPtr<IDispatch>::From(identity.get()));
  ComPtr<IConnectionPointContainer> container;
  ASSERT_EQ(point->GetConnectionPointContainer(container.Put()), S_OK);
  const auto owner = ComPtr<IUnknown>::From(runtime_.get());
  EXPECT_EQ(ComPtr<IUnknown>::From(container.get()).get(), owner.get());
  EXPECT_NE(identity.get(), owner.get());

  const Sink sink(*point);
  ComPtr<IEnumConnectionPoints> points;
  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(container->EnumConnectionPoints(points.Put()), S_OK);
  ASSERT_EQ(point->EnumConnections(connections.Put()), S_OK);
  EXPECT_EQ(points->Skip(1), S_OK);
  EXPECT_EQ(points->Skip(1), S_FALSE);
  CONNECTDATA connection{};
  ASSERT_EQ(connections->Next(1, &connection, nullptr), S_OK);
  EXPECT_EQ(connection.dwCookie, sink.cookie);
  connection.pUnk->Release();
  EXPECT_EQ(point->Unadvise(sink.cookie), S_OK);
}

TEST_F(Server, ReplacesMarksByWhatHasAText) {
  ComPtr<_clsVTRLKLang> language;
  runtime_->get_Language(language.Put());
  const auto array = [](SAFEARRAY* made, VARTYPE type) {
    Variant value;
    value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
    value.parray = made;
    return value;
  };
  const auto variants = [](std::vector<Variant> elements, LONG first) {
    SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(elements.size()), first}};
    Variant made = automation::NewArray(bounds);
    for (std::size_t i = 0; i < elements.size(); ++i) automation::Elements(made)[i] = elements[i].Detach();
    return made;
  };
  Variant null;
  null.vt = VT_NULL;
  Variant nothing(static_cast<IDispatch*>(nullptr));
  Variant dangling;
  dangling.vt = VT_BYREF | VT_VARIANT;
  SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
  const Variant table = array(SafeArrayCreate(VT_BSTR, 2, bounds), VT_BSTR);
  SAFEARRAY* decimals = SafeArrayCreateVector(VT_DECIMAL, 0, 1);
  DECIMAL seven{};
  seven.Lo64 = 7;
  LONG first = 0;
  SafeArrayPutElement(decimals, &first, &seven);
  const struct {
    Variant values;
    const char* text;
  } kCases[] = {
      {u"a", "a %2"},
      {variants({u"a", int32_t{2}}, 0), "a 2"},
      {variants({u"a", u"b"}, 1), "a b"},
      {variants({host_.get(), u"b"}, 0), "%1 b"},
      {variants({null, u"b"}, 0), "%1 b"},
      {variants({nothing, table}, 0), "%1 %2"},
      {variants({}, 0), "%1 %2"},
      {table, "%1 %2"},
      {array(decimals, VT_DECIMAL), "7 %2"},
      {array(nullptr, VT_BSTR), "%1 %2"},
      {nothing, "%1 %2"},
      {dangling, "%1 %2"},
  };
  for (const auto& c : kCases) {
    Bstr text;
    EXPECT_EQ(language->GetText(Bstr(u"none").get(), Bstr(u"%1 %2").get(), c.values, nullptr, text.Put()),
              S_OK);
    EXPECT_EQ(ToUtf8(text.View()), c.text) << "case " << &c - kCases;
  }
}

TEST_F(Server, BelongsToOneThreadAtATime) {
  ComPtr<_clsVTRLKItems> last;
  runtime_->get_Items(last.Put());
  runtime_->put_ExcelApp(Variant());
  const auto elsewhere = [&](const std::function<void()>& action) {
    std::thread([&] {
      CoInitialize(nullptr);
      action();
      CoUninitialize();
    }).join();
  };
  const auto refused = [&] {
    ComPtr<_clsVTRLKRuntime> runtime;
    EXPECT_EQ(library_.Create(runtime), RPC_E_WRONG_THREAD);
    EXPECT_EQ(ErrorSource(), "VTRLKRuntime.clsVTRLKRuntime.Create");
    EXPECT_FALSE(runtime);
  };
  elsewhere(refused);
  runtime_ = nullptr;
  elsewhere(refused);
  last = nullptr;
  elsewhere([&] {
    ComPtr<_clsVTRLKRuntime> runtime;
    EXPECT_EQ(library_.Create(runtime), S_OK);
  });
  ASSERT_EQ(library_.Create(runtime_), S_OK);
  runtime_ = nullptr;

  std::atomic<int> searches = 0;
  const auto create_and_search = [&] {
    CoInitialize(nullptr);
    {
      const auto host = workbench::ExposeApplication(NewModel());
      for (int mine = 0; mine < 8;) {
        ComPtr<_clsVTRLKRuntime> runtime;
        if (const HRESULT made = library_.Create(runtime); FAILED(made)) {
          EXPECT_EQ(made, RPC_E_WRONG_THREAD);
          std::this_thread::yield();
          continue;
        }
        ++mine;
        runtime->putref_ExcelApp(Variant(host.get()));
        VARIANT_BOOL found = VARIANT_FALSE;
        EXPECT_EQ(runtime->Search(Bstr(u"ann").get(), nullptr, &found), S_OK);
        if (found != VARIANT_FALSE) ++searches;
      }
    }
    CoUninitialize();
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(create_and_search);
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(searches, 32);
}

TEST_F(Server, TellsOfANewLanguage) {
  ComPtr<_clsVTRLKLang> language;
  runtime_->get_Language(language.Put());
  auto point = Point(language.get(), __uuidof(__clsVTRLKLang));
  Sink sink(*point);
  for (const auto* file : {u"german.lng", u"german.lng", u"english.lng"})
    language->put_LangFile(Bstr(file).get());
  EXPECT_EQ(sink.texts, "german.lng;english.lng;");

  // The configuration changes the language, and the object goes in the middle of the event.
  ComPtr<_clsVTRLKItems> items;
  runtime_->get_Items(items.Put());
  Bstr german;
  language->put_LangFile(Bstr(u"german.lng").get());
  items->ToString(VARIANT_FALSE, german.Put());
  language->put_LangFile(Bstr(u"english.lng").get());
  sink.on_event = [&] {
    point->Unadvise(sink.cookie);
    point = nullptr;
    language = nullptr;
  };
  Sink later(*point);
  VARIANT_BOOL read = VARIANT_FALSE;
  EXPECT_EQ(items->ToObject(german.get(), &read), S_OK);
  EXPECT_EQ(later.texts, "german.lng;");
  EXPECT_FALSE(later.Held());
  EXPECT_EQ(sink.texts, "german.lng;english.lng;german.lng;english.lng;german.lng;");
  EXPECT_FALSE(sink.Held());
}

TEST_F(Server, LetsGoOfItselfInTheMiddleOfAnEvent) {
  const auto point = Point(runtime_.get(), __uuidof(__clsVTRLKRuntime));
  Sink sink(*point);
  sink.on_event = [&] { runtime_ = nullptr; };
  EXPECT_TRUE(Search(u"ann"));
  EXPECT_EQ(sink.flags, "TF");
  EXPECT_EQ(point->Unadvise(sink.cookie), S_OK);
}

TEST_F(Server, IsTheSameObjectEachTimeAndOutlivesItsOwner) {
  ComPtr<_clsVTRLKItems> items;
  ComPtr<_clsVTRLKItems> again;
  runtime_->get_Items(items.Put());
  runtime_->get_Items(again.Put());
  EXPECT_EQ(items.get(), again.get());
  EXPECT_EQ(runtime_->putref_Items(items.get()), S_OK);
  EXPECT_NE(runtime_->putref_Items(nullptr), S_OK);
  ComPtr<_clsVTRLKItem> profile;
  items->get_DefaultItem(profile.Put());
  ComPtr<IEnumConnections> connections;
  Point(runtime_.get(), __uuidof(__clsVTRLKRuntime))->EnumConnections(connections.Put());
  for (auto* object : {&items, &again}) *object = nullptr;
  runtime_->put_ExcelApp(Variant());
  runtime_ = nullptr;
  EXPECT_EQ(profile->put_StartRow(-1), S_OK);
  profile = nullptr;
  EXPECT_EQ(library_.CanUnload(), S_FALSE);
  EXPECT_EQ(connections->Skip(1), S_FALSE);
}

TEST_F(Server, SearchesTenThousandTimesInTheSameMemory) {
  const auto memory = [] {
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    EXPECT_NE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters), 0);
    return counters.WorkingSetSize;
  };
  const auto search = [&](int times) {
    for (int i = 0; i < times; ++i) ASSERT_TRUE(Search(i % 2 == 0 ? u"ann" : u"bob"));
  };
  search(1'000);
  const auto before = memory();
  search(10'000);
  EXPECT_LT(memory(), before + 10'000 * 32);
}

}  // namespace
}  // namespace rowlark
