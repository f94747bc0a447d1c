// Keys as the window system reports them.
#pragma once

#include <cstdint>

namespace rowlark::controls {

// Bits of the modifiers held.
enum Shift : int32_t { kNoShift = 0, kShift = 1, kCtrl = 2, kAlt = 4 };

// Virtual key codes (VK_... of winuser.h). Letters and digits have the code of their capital character.
enum Key : int32_t {
  kKeyBack = 8,
  kKeyTab = 9,
  kKeyReturn = 13,
  kKeyEscape = 27,
  kKeySpace = 32,
  kKeyEnd = 35,
  kKeyHome = 36,
  kKeyLeft = 37,
  kKeyUp = 38,
  kKeyRight = 39,
  kKeyDown = 40,
  kKeyExecute = 43,
  kKeyDelete = 46,
  kKeyF1 = 112,  // and so on to F16
};

}  // namespace rowlark::controls
