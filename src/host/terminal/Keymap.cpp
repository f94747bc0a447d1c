#include "host/terminal/Keymap.h"

#include <curses.h>

#include "util/Text.h"

namespace rowlark::terminal {
namespace {

using namespace controls;  // names of keys

struct Named {
  const char* final;  // of the sequence "ESC [ 1 ; modifier final", or before "~" its number
  int32_t key;
};
constexpr Named kFinals[] = {{"A", kKeyUp},     {"B", kKeyDown},  {"C", kKeyRight}, {"D", kKeyLeft},
                             {"H", kKeyHome},   {"F", kKeyEnd},   {"P", kKeyF1},    {"Q", kKeyF1 + 1},
                             {"R", kKeyF1 + 2}, {"S", kKeyF1 + 3}};
constexpr Named kNumbers[] = {{"2", kKeyInsert},   {"3", kKeyDelete},   {"5", kKeyPageUp},
                              {"6", kKeyPageDown}, {"15", kKeyF1 + 4},  {"17", kKeyF1 + 5},
                              {"18", kKeyF1 + 6},  {"19", kKeyF1 + 7},  {"20", kKeyF1 + 8},
                              {"21", kKeyF1 + 9},  {"23", kKeyF1 + 10}, {"24", kKeyF1 + 11}};

struct Code {
  int32_t code;
  int32_t key;
  int32_t shift = kNoShift;
};
constexpr Code kCodes[] = {{KEY_UP, kKeyUp},
                           {KEY_DOWN, kKeyDown},
                           {KEY_LEFT, kKeyLeft},
                           {KEY_RIGHT, kKeyRight},
                           {KEY_HOME, kKeyHome},
                           {KEY_END, kKeyEnd},
                           {KEY_PPAGE, kKeyPageUp},
                           {KEY_NPAGE, kKeyPageDown},
                           {KEY_DC, kKeyDelete},
                           {KEY_IC, kKeyInsert},
                           {KEY_BACKSPACE, kKeyBack},
                           {KEY_ENTER, kKeyReturn},
                           {KEY_BTAB, kKeyTab, kShift},
                           {KEY_SR, kKeyUp, kShift},
                           {KEY_SF, kKeyDown, kShift},
                           {KEY_SLEFT, kKeyLeft, kShift},
                           {KEY_SRIGHT, kKeyRight, kShift},
                           {KEY_SHOME, kKeyHome, kShift},
                           {KEY_SEND, kKeyEnd, kShift},
                           {KEY_SPREVIOUS, kKeyPageUp, kShift},
                           {KEY_SNEXT, kKeyPageDown, kShift},
                           {KEY_SDC, kKeyDelete, kShift},
                           {KEY_SIC, kKeyInsert, kShift}};

// The key of a letter or digit; of anything else, none in particular.
int32_t KeyOf(char32_t c) {
  if (c >= U'a' && c <= U'z') return static_cast<int32_t>(c - U'a' + U'A');
  const bool own = (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9') || c == U' ';
  return own ? static_cast<int32_t>(c) : kKeyPacket;
}

}  // namespace

std::vector<KeySequence> KeySequences() {
  std::vector<KeySequence> sequences;
  for (int32_t shift = kShift; shift <= (kShift | kCtrl | kAlt); ++shift) {
    // On the wire the bits are 1 for Shift, 2 for Alt, 4 for Ctrl, and one is added.
    const int wire =
        1 + ((shift & kShift) != 0 ? 1 : 0) + ((shift & kAlt) != 0 ? 2 : 0) + ((shift & kCtrl) != 0 ? 4 : 0);
    const std::string modifier = ';' + std::to_string(wire);
    for (const auto& [final, key] : kFinals)
      sequences.push_back({"\033[1" + modifier + final, OwnCode(key, shift)});
    for (const auto& [number, key] : kNumbers) {
      sequences.push_back({std::string("\033[") + number + modifier + '~', OwnCode(key, shift)});
    }
    if ((shift & ~kShift) == 0) continue;
    for (int letter = 'a'; letter <= 'z'; ++letter) {
      const int32_t code = OwnCode(KeyOf(static_cast<char32_t>(letter)), shift);
      const int typed = (shift & kShift) != 0 ? letter - 'a' + 'A' : letter;
      sequences.push_back({"\033[27" + modifier + ';' + std::to_string(typed) + '~', code});
      sequences.push_back({"\033[" + std::to_string(letter) + modifier + 'u', code});
    }
  }
  return sequences;
}

std::optional<KeyPress> FromCode(int32_t code) {
  if (code >= kOwnCodes) return KeyPress{(code - kOwnCodes) / 8, code & 7};
  if (code >= KEY_F(1) && code <= KEY_F(12)) return KeyPress{kKeyF1 + code - KEY_F(1)};
  if (code >= KEY_F(13) && code <= KEY_F(24)) return KeyPress{kKeyF1 + code - KEY_F(13), kShift};
  for (const auto& known : kCodes) {
    if (known.code != code) continue;
    KeyPress press{known.key, known.shift};
    if (code == KEY_ENTER) press.character = U'\r';
    return press;
  }
  return std::nullopt;
}

KeyPress FromCharacter(char32_t c, bool alt, char32_t backspace) {
  const int32_t shift = alt ? kAlt : kNoShift;
  switch (c) {
    case U'\r':
    case U'\n':
      return {kKeyReturn, shift, U'\r'};
    case U'\t':
      return {kKeyTab, shift};
    case 27:
      return {kKeyEscape, shift};
    case 127:
      return {kKeyBack, shift};
    case 8:
      return backspace == 8 ? KeyPress{kKeyBack, shift} : KeyPress{kKeyBack, shift | kCtrl, 127};
    case 0:
      return {kKeySpace, shift | kCtrl};
    default:
      break;
  }
  if (c < U' ') return {KeyOf(c + U'a' - 1), shift | kCtrl};
  if (!alt) return {KeyOf(c), kNoShift, c};
  return {c < 0x80 ? KeyOf(c) : static_cast<int32_t>(ToUpper(c)), shift};
}

}  // namespace rowlark::terminal
