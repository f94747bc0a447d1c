// Message boxes, screens and links of the desktop.
#pragma once

#include "host/WindowSystem.h"

namespace rowlark::windows {

class WindowsWindowSystem final : public host::WindowSystem {
 public:
  // Whether OpenLink hands a link to the shell: web addresses and "mailto:" only, never files or programs.
  static bool MayOpen(std::u16string_view link);

  // Forms have no windows yet.
  bool Realise(controls::Form& form) noexcept override;

  // Without an active window of this thread a box belongs to none, and the thread's windows wait for it.
  void MsgBox(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title) noexcept override;
  bool Ask(std::u16string_view text, std::u16string_view title) noexcept override;
  void OpenLink(controls::Form& parent, std::u16string_view link) noexcept override;
  void Beep() noexcept override;
  // Twips of the system's resolution, whatever that of the screen.
  std::vector<controls::Rect> Screens() const noexcept override;
  intptr_t WindowOfClass(std::u16string_view class_name) const noexcept override;
};

}  // namespace rowlark::windows
