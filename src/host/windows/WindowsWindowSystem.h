// Forms, message boxes, screens and links of the desktop.
#pragma once

#include <functional>
#include <memory>

#include "host/WindowSystem.h"
#include "util/Trace.h"

namespace rowlark::windows {

class FormDesk;

class WindowsWindowSystem final : public host::WindowSystem {
 public:
  // `idle` is called when the form's messages under way have all been handled. It throws nothing, and may end
  // the window system.
  explicit WindowsWindowSystem(
      std::function<void()> idle = [] {}, Trace* trace = nullptr);
  WindowsWindowSystem(const WindowsWindowSystem&) = delete;
  WindowsWindowSystem& operator=(const WindowsWindowSystem&) = delete;
  // Windows of forms that are still loaded go, and their forms hear nothing of it.
  ~WindowsWindowSystem() override;

  // Whether a message of a form is being handled: the form's logic may be on the stack.
  bool Busy() const;

  // Whether OpenLink hands a link to the shell: web addresses and "mailto:" only, never files or programs.
  static bool MayOpen(std::u16string_view link);

  // With native controls, in the user's font and at the resolution of the monitor, in the thread that calls:
  // the one that processes the messages of the host. Destroying the window, as the end of its owner does,
  // unloads the form.
  bool Realise(controls::Form& form) noexcept override;

  // Without an active window of this thread a box belongs to none, and the thread's windows wait for it.
  void MsgBox(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title) noexcept override;
  void MsgBoxWithHelp(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title,
                      const std::function<void()>& help) noexcept override;
  bool Ask(std::u16string_view text, std::u16string_view title) noexcept override;
  void OpenLink(controls::Form& parent, std::u16string_view link) noexcept override;
  void Beep() noexcept override;
  // Twips of the system's resolution, whatever that of the screen.
  std::vector<controls::TwipRect> Screens() const noexcept override;
  intptr_t WindowOfClass(std::u16string_view class_name) const noexcept override;

 private:
  const std::function<void()> idle_;
  Trace* const trace_;
  std::shared_ptr<FormDesk> desk_;  // from the first form on
};

}  // namespace rowlark::windows
