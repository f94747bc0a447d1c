// The windows that the logic asks for.
#pragma once

#include <cstdint>
#include <string_view>

namespace rowlark::host {

// Icon of a message box (MB_ICON... of winuser.h).
enum class MsgBoxIcon : int32_t {
  Critical = 16,
  Exclamation = 48,
};

class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  // Shows a text with an OK button and waits until it is closed.
  virtual void MsgBox(std::u16string_view text, MsgBoxIcon icon, std::u16string_view title) noexcept = 0;

  // The first top-level window of that class; 0 when there is none.
  virtual intptr_t WindowOfClass(std::u16string_view class_name) const noexcept = 0;
};

}  // namespace rowlark::host
