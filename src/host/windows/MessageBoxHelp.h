// The way from a message box to the help: its Help button and F1.
#pragma once

#include <windows.h>

#include <functional>

#include "util/Trace.h"

namespace rowlark::windows {

// For the one message box with a Help button (MB_HELP) that this thread shows next. It lives until the box is
// closed.
class MessageBoxHelp {
 public:
  MessageBoxHelp(const std::function<void()>& help, Trace* trace);
  MessageBoxHelp(const MessageBoxHelp&) = delete;
  MessageBoxHelp& operator=(const MessageBoxHelp&) = delete;
  ~MessageBoxHelp();

 private:
  static LRESULT CALLBACK HerePosted(HWND window, UINT message, WPARAM first, LPARAM second, UINT_PTR,
                                     DWORD_PTR self) noexcept;
  static LRESULT CALLBACK BoxProcedure(HWND window, UINT message, WPARAM first, LPARAM second, UINT_PTR,
                                       DWORD_PTR self) noexcept;
  static BOOL CALLBACK WatchBox(HWND window, LPARAM self) noexcept;

  const std::function<void()>& help_;
  Trace* const trace_;
  // A box asks nobody for its help but its owner, a window of the host. What is posted here is the first
  // message that the box takes from the queue, and so the time to listen to the box itself.
  const HWND post_;
};

}  // namespace rowlark::windows
