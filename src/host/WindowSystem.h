// The windows that the logic asks for.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "controls/View.h"

namespace rowlark::host {

// Icon of a message box (MB_ICON... of winuser.h).
enum class MsgBoxIcon : int32_t {
  Critical = 16,
  Exclamation = 48,
};

// Message boxes belong to the active window and wait until they are closed; meanwhile messages are processed.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  // Makes windows for a form and its controls, hidden at first, which follow the form until it is unloaded:
  // attaches a view to it. False where there are no windows: the form is then not opened.
  virtual bool Realise(controls::Form& form) noexcept = 0;

  // Shows a text with an OK button.
  virtual void MsgBox(std::u16string_view text, MsgBoxIcon icon, std::u16string_view title) noexcept = 0;
  // The same for a text that the help says more about, which `help` opens as often as the user asks for it
  // while the box is there. Where the windows have no way to ask, just the text.
  virtual void MsgBoxWithHelp(std::u16string_view text, MsgBoxIcon icon, std::u16string_view title,
                              const std::function<void()>& help) noexcept {
    static_cast<void>(help);
    MsgBox(text, icon, title);
  }
  // Asks with the buttons OK and Cancel; true for OK.
  virtual bool Ask(std::u16string_view text, std::u16string_view title) noexcept = 0;

  // Opens a web address or "mailto:..." with the user's program for it; a failure is of no interest.
  virtual void OpenLink(controls::Form& parent, std::u16string_view link) noexcept = 0;

  // The system's sound for what can not be done.
  virtual void Beep() noexcept = 0;

  // The parts of the connected screens that windows may cover, the primary screen first. Empty where there is
  // no screen.
  virtual std::vector<controls::TwipRect> Screens() const noexcept = 0;

  // The first top-level window of that class; 0 when there is none.
  virtual intptr_t WindowOfClass(std::u16string_view class_name) const noexcept = 0;
};

}  // namespace rowlark::host
