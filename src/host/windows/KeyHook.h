// Lets the forms see the keys first, in a host whose message loop knows nothing of them.
#pragma once

#include <windows.h>

#include "util/windows/Handles.h"

namespace rowlark::windows {

// Watches the messages that the thread takes from its queue, until it goes. One a thread is enough.
class KeyHook {
 public:
  // May handle a message with a key, and then makes it WM_NULL.
  using Filter = void(MSG& message) noexcept;

  // `Take` is a parameter since Windows hands a hook nothing of ours.
  template <Filter Take>
  static LRESULT CALLBACK Procedure(int code, WPARAM removal, LPARAM data) noexcept {
    auto& message = *reinterpret_cast<MSG*>(data);
    const bool is_taken = code == HC_ACTION && (removal & PM_REMOVE) != 0;
    if (is_taken && message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST) Take(message);
    return ::CallNextHookEx(nullptr, code, removal, data);
  }

  explicit KeyHook(HOOKPROC procedure)
      : handle_(::SetWindowsHookExW(WH_GETMESSAGE, procedure, nullptr, ::GetCurrentThreadId())) {}

  explicit operator bool() const { return static_cast<bool>(handle_); }

 private:
  Hook handle_;
};

}  // namespace rowlark::windows
