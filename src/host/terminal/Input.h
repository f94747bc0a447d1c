// What the user does at a terminal.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "controls/Keys.h"
#include "host/terminal/Canvas.h"

namespace rowlark::terminal {

using controls::kKeyF1;

// Virtual key codes (VK_... of winuser.h) beside those of controls/Keys.h.
enum Key : int32_t {
  kKeyPageUp = 33,
  kKeyPageDown = 34,
  kKeyInsert = 45,
  kKeyF12 = 123,
  kKeyPacket = 231,  // a character that no key stands for
};

struct KeyPress {
  int32_t key = 0;
  int32_t shift = controls::kNoShift;
  char32_t character = 0;  // that it types; 0: none

  bool Is(int32_t code, int32_t modifiers = controls::kNoShift) const {
    return key == code && shift == modifiers;
  }
};

struct MouseAction {
  enum class Kind { Press, Drag, Release, WheelUp, WheelDown };
  Kind kind = Kind::Press;
  Point at;
  int32_t shift = controls::kNoShift;
};

// Text from the clipboard, its line breaks as "\n".
struct Pasted {
  std::u16string text;
};

using Input = std::variant<KeyPress, MouseAction, Pasted>;

}  // namespace rowlark::terminal
