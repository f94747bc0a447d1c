// Host settings that are changed for speed and must come back on every path.
#pragma once

#include <optional>

#include "host/spreadsheet.h"

namespace rowlark {

// Does what must not be left undone. A busy host refuses calls now and then, so one refusal is not the end.
template <class Action>
void Insist(Action action) noexcept {
  for (int attempt = 0; attempt < 2; ++attempt) {
    try {
      action();
      return;
    } catch (...) {  // NOLINT(bugprone-empty-catch): the host does not take it
    }
  }
}

// Puts a flag of the host back to what it was before Override.
class HostFlag {
 public:
  using Getter = bool (host::Application::*)() const;
  using Setter = void (host::Application::*)(bool);

  HostFlag(const Ref<host::Application>& application, Getter get, Setter set)
      : application_(application), get_(get), set_(set) {}
  HostFlag(const HostFlag&) = delete;
  HostFlag& operator=(const HostFlag&) = delete;
  ~HostFlag() {
    if (remembered_) Insist([&] { (*application_.*set_)(*remembered_); });
  }

  void Override(bool value) {
    remembered_ = (*application_.*get_)();
    (*application_.*set_)(value);
  }

 private:
  Ref<host::Application> application_;
  Getter get_;
  Setter set_;
  std::optional<bool> remembered_;
};

// Switches the screen on if it is off.
inline void EnsureScreenUpdating(host::Application& application) noexcept {
  Insist([&] {
    if (!application.ScreenUpdating()) application.SetScreenUpdating(true);
  });
}

// Does so at the end of a scope.
class ScreenGuard {
 public:
  explicit ScreenGuard(const Ref<host::Application>& application) : application_(application) {}
  ScreenGuard(const ScreenGuard&) = delete;
  ScreenGuard& operator=(const ScreenGuard&) = delete;
  ~ScreenGuard() {
    if (application_) EnsureScreenUpdating(*application_);
  }

 private:
  Ref<host::Application> application_;
};

}  // namespace rowlark
