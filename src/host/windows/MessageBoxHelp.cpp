#include "host/windows/MessageBoxHelp.h"

#include <commctrl.h>

namespace rowlark::windows {
namespace {

constexpr UINT kBoxIsUp = WM_APP;

}  // namespace

MessageBoxHelp::MessageBoxHelp(const std::function<void()>& help, Trace* trace)
    : help_(help),
      trace_(trace),
      post_(
          ::CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
  ::SetWindowSubclass(post_, HerePosted, 0, reinterpret_cast<DWORD_PTR>(this));
  ::PostMessageW(post_, kBoxIsUp, 0, 0);
}

MessageBoxHelp::~MessageBoxHelp() { ::DestroyWindow(post_); }

LRESULT CALLBACK MessageBoxHelp::HerePosted(HWND window, UINT message, WPARAM first, LPARAM second, UINT_PTR,
                                            DWORD_PTR self) noexcept {
  if (message == kBoxIsUp) {
    ::EnumThreadWindows(::GetCurrentThreadId(), WatchBox, static_cast<LPARAM>(self));
    return 0;
  }
  return ::DefSubclassProc(window, message, first, second);
}

// The dialog with a Help button; another one has been watched already, or is none of ours.
BOOL CALLBACK MessageBoxHelp::WatchBox(HWND window, LPARAM self) noexcept {
  constexpr uintptr_t kDialogClass = 32770;  // WC_DIALOG
  const bool is_box = ::GetClassLongPtrW(window, GCW_ATOM) == kDialogClass &&
                      ::IsWindowEnabled(window) != 0 && ::GetDlgItem(window, IDHELP) != nullptr;
  if (!is_box) return TRUE;
  ::SetWindowSubclass(window, BoxProcedure, 0, static_cast<DWORD_PTR>(self));
  return FALSE;
}

LRESULT CALLBACK MessageBoxHelp::BoxProcedure(HWND window, UINT message, WPARAM first, LPARAM second,
                                              UINT_PTR, DWORD_PTR self) noexcept {
  if (message == WM_HELP || (message == WM_COMMAND && LOWORD(first) == IDHELP)) {
    const auto& box = *reinterpret_cast<const MessageBoxHelp*>(self);
    Attempt(box.trace_, box.help_);
    return TRUE;
  }
  if (message == WM_NCDESTROY) ::RemoveWindowSubclass(window, BoxProcedure, 0);
  return ::DefSubclassProc(window, message, first, second);
}

}  // namespace rowlark::windows
