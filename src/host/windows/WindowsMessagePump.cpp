#include "host/windows/WindowsMessagePump.h"

#include <windows.h>

namespace rowlark::windows {
namespace {

// A window that never finishes painting, or a handler that posts itself its next message, always has one
// pending; a pass ends all the same.
constexpr int kMessagesOfAPass = 1000;

}  // namespace

void WindowsMessagePump::ProcessMessages() noexcept {
  const uint32_t now = TickCount();
  if (last_pass_ == now) return;
  last_pass_ = now;
  MSG message;
  for (int count = 0; count < kMessagesOfAPass; ++count) {
    if (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) == 0) return;
    if (message.message == WM_QUIT) {
      ::PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
}

void WindowsMessagePump::WaitForInput(uint32_t milliseconds) noexcept {
  last_pass_.reset();
  // Also input that an earlier look at the queue has seen and left there ends the wait.
  ::MsgWaitForMultipleObjectsEx(0, nullptr, milliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
}

uint32_t WindowsMessagePump::TickCount() const noexcept { return ::GetTickCount(); }

}  // namespace rowlark::windows
