// How keys arrive: as codes of the terminal library, as characters, or as sequences that the library does not
// know and is taught.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/terminal/Input.h"

namespace rowlark::terminal {

// A code that stands for a key with modifiers: above the library's, and within the 15 bits that it keeps.
constexpr int32_t kOwnCodes = 0x1000;
constexpr int32_t OwnCode(int32_t key, int32_t shift) { return kOwnCodes + key * 8 + shift; }

constexpr int32_t kMouseCode = OwnCode(0, 0);

struct KeySequence {
  std::string bytes;
  int32_t code;
};
// Keys with modifiers, as terminals in xterm's tradition send them.
std::vector<KeySequence> KeySequences();

// What a code of the library stands for; nothing for one that is not known.
std::optional<KeyPress> FromCode(int32_t code);
// What a character stands for that was typed, with Alt or without. `backspace` is what that key sends: where
// it is not 8, that comes from Ctrl+Backspace.
KeyPress FromCharacter(char32_t character, bool alt, char32_t backspace);

}  // namespace rowlark::terminal
