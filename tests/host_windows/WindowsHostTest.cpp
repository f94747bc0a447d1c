// Messages, help, screens and links.
#include <gtest/gtest.h>
#include <windows.h>

#include "TempFolder.h"
#include "host/windows/WindowsHelp.h"
#include "host/windows/WindowsMessagePump.h"
#include "host/windows/WindowsWindowSystem.h"
#include "util/Utf.h"
#include "util/windows/Handles.h"

namespace rowlark::windows {
namespace {

// A window that is never shown and keeps what it hears.
class Listener {
 public:
  static constexpr UINT kHeard = WM_APP, kEndless = WM_APP + 1;

  Listener() {
    WNDCLASSW type{};
    type.lpfnWndProc = Procedure;
    type.hInstance = ::GetModuleHandleW(nullptr);
    type.lpszClassName = L"RowlarkListener";
    ::RegisterClassW(&type);
    window_ = ::CreateWindowExW(0, type.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                type.hInstance, this);
    ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() {
    ::DestroyWindow(window_);
    ::UnregisterClassW(L"RowlarkListener", ::GetModuleHandleW(nullptr));
  }

  void Post(UINT message, WPARAM value = 0) { EXPECT_NE(::PostMessageW(window_, message, value, 0), 0); }

  std::vector<WPARAM> heard;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM value, LPARAM data) noexcept {
    auto* self = reinterpret_cast<Listener*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr || message < WM_APP) return ::DefWindowProcW(window, message, value, data);
    if (message == kEndless) self->Post(kEndless);
    self->heard.push_back(value);
    return 0;
  }

  HWND window_;
};

using Values = std::vector<WPARAM>;

// After a wait, since one tick has one pass.
void Pass(WindowsMessagePump& pump) {
  pump.WaitForInput(0);
  pump.ProcessMessages();
}

TEST(MessagePumpOfWindows, DispatchesWhatIsPendingAndKeepsTheEndForTheHost) {
  WindowsMessagePump pump;
  Listener listener;
  Pass(pump);
  EXPECT_EQ(listener.heard, Values());
  for (const WPARAM value : {1, 2}) listener.Post(Listener::kHeard, value);
  Pass(pump);
  EXPECT_EQ(listener.heard, (Values{1, 2}));

  ::PostQuitMessage(7);
  listener.Post(Listener::kHeard, 3);
  for (int pass = 0; pass < 2; ++pass) Pass(pump);
  EXPECT_EQ(listener.heard, (Values{1, 2, 3}));
  MSG message;
  EXPECT_EQ(::GetMessageW(&message, nullptr, 0, 0), 0);
  EXPECT_EQ(message.wParam, 7u);
}

TEST(MessagePumpOfWindows, LooksAtTheQueueOnceATick) {
  WindowsMessagePump pump;
  Listener listener;
  const uint32_t begin = pump.TickCount();
  std::size_t passes = 0;
  while (pump.TickCount() - begin < 100) {
    const std::size_t heard = listener.heard.size();
    listener.Post(Listener::kHeard);
    pump.ProcessMessages();
    if (listener.heard.size() > heard) ++passes;
  }
  EXPECT_GT(passes, 1u);
  EXPECT_LE(passes, 101u);
}

TEST(MessagePumpOfWindows, EndsAPassAlthoughMessagesNeverEnd) {
  WindowsMessagePump pump;
  Listener listener;
  listener.Post(Listener::kEndless);
  pump.ProcessMessages();
  EXPECT_GT(listener.heard.size(), 0u);
}

TEST(MessagePumpOfWindows, WaitsForInputOrTime) {
  constexpr uint32_t kLong = 60'000;
  WindowsMessagePump pump;
  Listener listener;
  pump.ProcessMessages();
  const uint32_t begin = pump.TickCount();
  pump.WaitForInput(20);
  EXPECT_GE(pump.TickCount() - begin, 10u);  // ticks are up to 16 ms apart
  listener.Post(Listener::kHeard, 1);
  pump.WaitForInput(kLong);
  // What another look at the queue has seen is no news to Windows, and ends the wait all the same.
  MSG message;
  EXPECT_NE(::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE), 0);
  pump.WaitForInput(kLong);
  EXPECT_LT(pump.TickCount() - begin, kLong);
  pump.ProcessMessages();
  EXPECT_EQ(listener.heard, Values{1});
}

TEST(HelpOfWindows, HasNoWindowForWhatIsNoHelpFile) {
  const TempFolder folder;
  folder.Write("broken.chm", "no help");
  WindowsHelp help;
  for (const char* name : {"missing.chm", "broken.chm", "."}) {
    const auto file = ToUtf16((folder.Path() / name).string());
    EXPECT_EQ(help.HtmlHelp(file, host::HelpCommand::DisplayTopic, 0), 0) << name;
    EXPECT_EQ(help.HtmlHelp(file, host::HelpCommand::HelpContext, 1200), 0) << name;
  }
}

TEST(WindowSystemOfWindows, OpensWebAndMailAddressesAlone) {
  for (const auto* link : {u"http://a", u"HTTPS://a/b?c", u"mailto:a@b"}) {
    EXPECT_TRUE(WindowsWindowSystem::MayOpen(link)) << ToUtf8(link);
  }
  for (const auto* link : {u"", u"http", u"httpx://a", u"file:///C:/a.exe", u"C:\\a.exe", u"\\\\a\\b",
                           u"calc", u" http://a", u"javascript:a", u"ms-settings:"}) {
    EXPECT_FALSE(WindowsWindowSystem::MayOpen(link)) << ToUtf8(link);
  }
}

TEST(WindowSystemOfWindows, TellsScreensAndWindows) {
  const WindowsWindowSystem windows;
  const auto screens = windows.Screens();
  ASSERT_EQ(screens.size(), static_cast<std::size_t>(::GetSystemMetrics(SM_CMONITORS)));
  RECT area{};
  ASSERT_NE(::SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0), 0);
  const int resolution = ::GetDeviceCaps(*ScreenContext(::GetDC(nullptr)), LOGPIXELSX);
  EXPECT_EQ(screens[0].left, area.left * 1440 / resolution);
  EXPECT_EQ(screens[0].width, (area.right - area.left) * 1440 / resolution);

  EXPECT_EQ(windows.WindowOfClass(u"RowlarkNoSuchClass"), 0);
  EXPECT_EQ(windows.WindowOfClass(u"#32769"), reinterpret_cast<intptr_t>(::FindWindowW(L"#32769", nullptr)));
}

}  // namespace
}  // namespace rowlark::windows
