// The forms of the library in a host that lets go of the library, or of its own window, while they are open.
#include <gtest/gtest.h>
#include <windows.h>

#include <olectl.h>

#include <functional>

#include "AutomationHost.h"
#include "RuntimeLibrary.h"
#include "automation/Variant.h"

namespace rowlark {
namespace {

using automation::ComPtr;
using automation::Variant;

class FormLibrary : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr)));
    WNDCLASSW type{};
    type.lpfnWndProc = DefWindowProcW;
    type.lpszClassName = L"XLMAIN";
    RegisterClassW(&type);
    owner_ = CreateWindowW(L"XLMAIN", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 400, 300, nullptr,
                           nullptr, nullptr, nullptr);
    ASSERT_NE(owner_, nullptr);
    ASSERT_EQ(library_.Create(runtime_), S_OK);
    const auto model = MakeRef<standalone::Application>();
    model->SetWindow({.handle = reinterpret_cast<intptr_t>(owner_)});
    auto& sheet =
        static_cast<standalone::Worksheet&>(*model->AddWorkbook(u"C:\\Data\\Book1.xls")->ActiveSheet());
    for (const std::string_view name : {"name", "ann", "bob"}) sheet.AppendRow({&name, 1});
    host_ = workbench::ExposeApplication(model, nullptr, [this] { changed_(); });
    ASSERT_EQ(runtime_->putref_ExcelApp(Variant(host_.get())), S_OK);
    ASSERT_EQ(runtime_->Init(), S_OK);
  }
  // Nothing of the library is left, and messages come as before.
  void TearDown() override {
    runtime_ = nullptr;
    EXPECT_EQ(Form(), nullptr);
    EXPECT_EQ(library_.CanUnload(), S_OK);
    library_.Unload();
    EXPECT_EQ(GetModuleHandleW(L"vtrlk_runtime.dll"), nullptr);
    PostMessageW(owner_, WM_KEYDOWN, 'A', 0);
    Pump(300);
    if (IsWindow(owner_)) DestroyWindow(owner_);
    host_ = nullptr;
    CoUninitialize();
  }
  static void Pump(
      DWORD milliseconds, const std::function<bool()>& ended = [] { return false; }) {
    const DWORD begin = GetTickCount();
    for (MSG message; GetTickCount() - begin < milliseconds && !ended();) {
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
      while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
      }
    }
  }
  static HWND Form() { return FindWindowW(L"RowlarkForm", nullptr); }
  void ShowSearch() {
    ASSERT_EQ(runtime_->ShowSearch(), S_OK);
    ASSERT_NE(Form(), nullptr);
    EXPECT_EQ(GetWindow(Form(), GW_OWNER), owner_);
    Pump(100);
  }
  static void CALLBACK DoAction(HWND window, UINT, UINT_PTR timer, DWORD) {
    KillTimer(window, timer);
    EXPECT_FALSE(IsWindowEnabled(window));
    (*static_cast<const std::function<void()>*>(RemovePropW(window, L"action")))();
  }
  // Shows the form that waits for its end, and does something meanwhile.
  void ShowAbout(const std::function<void()>& action) {
    SetPropW(owner_, L"action", const_cast<std::function<void()>*>(&action));
    SetTimer(owner_, 1, 50, DoAction);
    _clsVTRLKRuntime* const runtime = runtime_.get();
    EXPECT_EQ(runtime->About(), S_OK);
    EXPECT_TRUE(IsWindowEnabled(owner_));
  }

  HWND owner_ = nullptr;
  testing::RuntimeLibrary library_;
  ComPtr<_clsVTRLKRuntime> runtime_;
  ComPtr<IDispatch> host_;
  std::function<void()> changed_ = [] {};
};

TEST_F(FormLibrary, IsReleasedWithTheSearchFormOpen) { ShowSearch(); }

TEST_F(FormLibrary, IsReleasedWhileTheFormSearches) {
  ShowSearch();
  bool was_open = false;
  changed_ = [&] {
    if (!runtime_) return;
    was_open = Form() != nullptr;
    runtime_ = nullptr;
    EXPECT_EQ(Form(), nullptr);
  };
  PostMessageW(GetFocus(), WM_CHAR, 'b', 0);
  Pump(10'000, [&] { return !runtime_; });
  EXPECT_TRUE(was_open);
}

TEST_F(FormLibrary, IsStoppedInAModalForm) {
  ShowAbout([this] { runtime_->DoStop(); });
}

TEST_F(FormLibrary, IsReleasedInAModalForm) {
  ShowAbout([this] {
    runtime_ = nullptr;
    PostMessageW(Form(), WM_CLOSE, 0, 0);
  });
}

TEST_F(FormLibrary, LosesTheWindowOfTheHost) {
  ShowSearch();
  DestroyWindow(owner_);
  EXPECT_EQ(Form(), nullptr);
}

}  // namespace
}  // namespace rowlark
