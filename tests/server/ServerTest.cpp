// The library as a compiled client uses it: loaded, asked for its class, driven through its interfaces.
#include <gtest/gtest.h>
#include <olectl.h>
#include <psapi.h>

#include <functional>
#include <string>

#include "AutomationHost.h"
#include "automation/Variant.h"
#include "util/Utf.h"
#include "vtrlk_runtime_h.h"

namespace rowlark {
namespace {

using automation::Bstr;
using automation::ComPtr;
using automation::Variant;

// Counts what it hears.
class Sink final : public IDispatch {
 public:
  int heard = 0;
  std::string flags;
  std::string texts;
  std::function<void()> on_event = [] {};
  ULONG references = 1;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IDispatch && iid != __uuidof(__clsVTRLKRuntime) &&
        iid != __uuidof(__clsVTRLKLang))
      return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                      UINT*) override {
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

class Server : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    library_ = LoadLibraryA(ROWLARK_RUNTIME);
    ASSERT_NE(library_, nullptr);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(Entry<decltype(&DllGetClassObject)>("DllGetClassObject")(
                  __uuidof(::clsVTRLKRuntime), IID_IClassFactory, reinterpret_cast<void**>(factory.Put())),
              S_OK);
    ASSERT_EQ(factory->CreateInstance(nullptr, __uuidof(_clsVTRLKRuntime),
                                      reinterpret_cast<void**>(runtime_.Put())),
              S_OK);
    model_ = MakeRef<standalone::Application>();
    const auto book = model_->AddWorkbook(u"C:\\Data\\Book1.xls");
    auto& sheet = static_cast<standalone::Worksheet&>(*book->ActiveSheet());
    for (const std::string_view name : {"name", "ann", "bob", "ann"}) sheet.AppendRow({&name, 1});
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
    EXPECT_EQ(Entry<decltype(&DllCanUnloadNow)>("DllCanUnloadNow")(), S_OK);
    FreeLibrary(library_);
    host_ = nullptr;
    model_ = nullptr;
    CoUninitialize();
  }
  template <class Function>
  Function Entry(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
  }
  bool Search(std::u16string_view text, VARIANT* error = nullptr) {
    VARIANT_BOOL found = VARIANT_FALSE;
    EXPECT_EQ(runtime_->Search(Bstr(text).get(), error, &found), S_OK);
    return found != VARIANT_FALSE;
  }

  static ComPtr<IConnectionPoint> Point(IUnknown* object, const IID& events) {
    ComPtr<IConnectionPoint> point;
    ComPtr<IConnectionPointContainer>::From(object)->FindConnectionPoint(events, point.Put());
    return point;
  }

  HMODULE library_ = nullptr;
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
  ComPtr<IErrorInfo> error;
  ASSERT_EQ(GetErrorInfo(0, error.Put()), S_OK);
  Bstr source;
  error->GetSource(source.Put());
  EXPECT_TRUE(source.View().starts_with(u"VTRLKRuntime"));
  EXPECT_EQ(runtime_->Search(text.get(), nullptr, nullptr), E_POINTER);
  EXPECT_EQ(runtime_->DetectSearchRange(nullptr, nullptr), E_POINTER);
}

TEST_F(Server, RaisesEventsToEverySink) {
  const auto point = Point(runtime_.get(), __uuidof(__clsVTRLKRuntime));
  Sink first;
  Sink second;
  DWORD first_cookie = 0;
  DWORD second_cookie = 0;
  ASSERT_EQ(point->Advise(&first, &first_cookie), S_OK);
  ASSERT_EQ(point->Advise(&second, &second_cookie), S_OK);
  EXPECT_TRUE(Search(u"ann"));
  EXPECT_EQ(first.flags, "TF");
  EXPECT_EQ(second.flags, "TF");
  EXPECT_EQ(point->Unadvise(first_cookie), S_OK);
  EXPECT_EQ(point->Unadvise(first_cookie), CONNECT_E_NOCONNECTION);
  EXPECT_TRUE(Search(u"bob"));
  EXPECT_EQ(first.heard, 2);
  EXPECT_EQ(second.heard, 4);
  point->Unadvise(second_cookie);
  EXPECT_EQ(first.references, 1U);
  EXPECT_EQ(second.references, 1U);
  EXPECT_FALSE(Point(runtime_.get(), IID_IUnknown));
}

TEST_F(Server, TellsOfANewLanguage) {
  ComPtr<_clsVTRLKLang> language;
  runtime_->get_Language(language.Put());
  const auto point = Point(language.get(), __uuidof(__clsVTRLKLang));
  Sink sink;
  DWORD cookie = 0;
  ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
  for (const auto* file : {u"german.lng", u"german.lng", u"english.lng"})
    language->put_LangFile(Bstr(file).get());
  EXPECT_EQ(sink.texts, "german.lng;english.lng;");
  point->Unadvise(cookie);
}

TEST_F(Server, LetsGoOfItselfInTheMiddleOfAnEvent) {
  const auto point = Point(runtime_.get(), __uuidof(__clsVTRLKRuntime));
  Sink sink;
  DWORD cookie = 0;
  ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
  const auto* searching = runtime_.get();
  sink.on_event = [&] { runtime_ = nullptr; };
  VARIANT_BOOL found = VARIANT_FALSE;
  EXPECT_EQ(const_cast<_clsVTRLKRuntime*>(searching)->Search(Bstr(u"ann").get(), nullptr, &found), S_OK);
  EXPECT_EQ(sink.flags, "TF");
  EXPECT_EQ(point->Unadvise(cookie), S_OK);
}

TEST_F(Server, TellsThatTheHostIsBusyAndThatItHasGone) {
  constexpr HRESULT kVbaIgnore = static_cast<HRESULT>(0x800AC472);  // while a cell is being edited
  const auto refuse = [&](int32_t count, HRESULT result) {
    wchar_t name[] = L"RefuseCalls";
    wchar_t* names = name;
    DISPID id = 0;
    ASSERT_EQ(host_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id), S_OK);
    Variant arguments[] = {int32_t{0}, int32_t{result}, count};
    DISPPARAMS parameters{arguments, nullptr, 3, 0};
    ASSERT_EQ(host_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                            nullptr),
              S_OK);
  };
  ComPtr<_clsVTRLKLang> language;
  runtime_->get_Language(language.Put());
  language->put_LangFile(Bstr(u"german.lng").get());
  for (const HRESULT result :
       {RPC_E_CALL_REJECTED, RPC_E_SERVERCALL_RETRYLATER, kVbaIgnore, RPC_E_DISCONNECTED}) {
    Variant inner;
    VARIANT reason;
    reason.vt = VT_VARIANT | VT_BYREF;
    reason.pvarVal = &inner;
    refuse(-1, result);
    EXPECT_FALSE(Search(u"ann", &reason));
    ASSERT_EQ(inner.vt, VT_BSTR);
    EXPECT_TRUE(automation::View(inner.bstrVal).starts_with(u"Fehler: "))
        << ToUtf8(automation::View(inner.bstrVal));
    refuse(0, S_OK);
    EXPECT_TRUE(Search(u"ann"));
  }
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
  again = nullptr;
  EXPECT_EQ(Entry<decltype(&DllCanUnloadNow)>("DllCanUnloadNow")(), S_FALSE);
  EXPECT_EQ(profile->put_StartRow(-1), S_OK);
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
