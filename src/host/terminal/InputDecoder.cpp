#include "host/terminal/InputDecoder.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <utility>

#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::terminal {
namespace {

using namespace controls;  // names of keys

constexpr char kEscape = 27;
constexpr std::size_t kLongest = 65'536;  // bytes of a sequence whose end never comes

constexpr int32_t FKey(int32_t number) { return kKeyF1 + number - 1; }

struct Final {
  char final;
  int32_t key;
};
// Of "ESC [ 1 ; modifiers final", and of "ESC O final" from a keypad in application mode.
constexpr Final kFinals[] = {{'A', kKeyUp},   {'B', kKeyDown}, {'C', kKeyRight}, {'D', kKeyLeft},
                             {'H', kKeyHome}, {'F', kKeyEnd},  {'P', FKey(1)},   {'Q', FKey(2)},
                             {'R', FKey(3)},  {'S', FKey(4)}};
// The arrows of rxvt, with Shift after "ESC [" and with Ctrl after "ESC O".
constexpr Final kSmallFinals[] = {{'a', kKeyUp}, {'b', kKeyDown}, {'c', kKeyRight}, {'d', kKeyLeft}};

struct Number {
  int32_t number;
  int32_t key;
  int32_t shift = kNoShift;
};
// Of "ESC [ number ; modifiers ~".
constexpr Number kNumbers[] = {
    {1, kKeyHome},         {2, kKeyInsert},       {3, kKeyDelete},       {4, kKeyEnd},
    {5, kKeyPageUp},       {6, kKeyPageDown},     {7, kKeyHome},         {8, kKeyEnd},
    {11, FKey(1)},         {12, FKey(2)},         {13, FKey(3)},         {14, FKey(4)},
    {15, FKey(5)},         {17, FKey(6)},         {18, FKey(7)},         {19, FKey(8)},
    {20, FKey(9)},         {21, FKey(10)},        {23, FKey(11)},        {24, FKey(12)},
    {25, FKey(3), kShift}, {26, FKey(4), kShift}, {28, FKey(5), kShift}, {29, FKey(6), kShift},
    {31, FKey(7), kShift}, {32, FKey(8), kShift}, {33, FKey(9), kShift}, {34, FKey(10), kShift}};

// What the keys of a keypad in application mode type, from "j" on.
constexpr std::string_view kKeypad = "*+,-./0123456789";

template <typename Known>
std::optional<int32_t> KeyIn(const Known& known, char final) {
  const auto found = std::ranges::find(known, final, &Final::final);
  return found == std::end(known) ? std::nullopt : std::optional(found->key);
}

// The key of a letter or digit; of anything else, none in particular.
int32_t KeyOf(char32_t c) {
  if (c >= U'a' && c <= U'z') return static_cast<int32_t>(c - U'a' + U'A');
  const bool own = (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9') || c == U' ';
  return own ? static_cast<int32_t>(c) : kKeyPacket;
}

// On the wire the bits are 1 for Shift, 2 for Alt, 4 for Ctrl, and one is added; 0 stands for nothing said.
int32_t Modifiers(int32_t wire) {
  const int32_t bits = std::max(wire, 1) - 1;
  return ((bits & 1) != 0 ? kShift : 0) | ((bits & 2) != 0 ? kAlt : 0) | ((bits & 4) != 0 ? kCtrl : 0);
}

// Up to three numbers between semicolons; what is missing counts as 0, and of "1:2" the first counts.
std::array<int32_t, 3> Numbers(std::string_view parameters) {
  std::array<int32_t, 3> numbers{};
  std::size_t at = 0;
  bool first = true;
  for (const char c : parameters) {
    if (c == ';') {
      if (++at == numbers.size()) break;
      first = true;
    } else if (c < '0' || c > '9') {
      first = false;
    } else if (first && numbers[at] < 10'000'000) {
      numbers[at] = numbers[at] * 10 + (c - '0');
    }
  }
  return numbers;
}

// Column and row count from 1.
std::optional<Input> Mouse(int32_t state, int32_t column, int32_t row, bool released) {
  constexpr int32_t kMoved = 32;
  constexpr int32_t kWheel = 64;
  using Kind = MouseAction::Kind;
  MouseAction action;
  action.at = {column - 1, row - 1};
  if ((state & 4) != 0) action.shift |= kShift;
  if ((state & 8) != 0) action.shift |= kAlt;
  if ((state & 16) != 0) action.shift |= kCtrl;
  const int32_t button = state & 3;
  if ((state & kWheel) != 0) {
    if (button > 1) return std::nullopt;
    action.kind = button == 0 ? Kind::WheelUp : Kind::WheelDown;
  } else if (button != 0) {
    return std::nullopt;  // only the left one means anything
  } else {
    action.kind = released ? Kind::Release : (state & kMoved) != 0 ? Kind::Drag : Kind::Press;
  }
  return action;
}

// "ESC [ M" and three bytes, of terminals that know no other way: none of them tells which button came up.
std::optional<Input> Mouse(std::string_view bytes) {
  const auto number = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]) - 32; };
  const bool released = (number(0) & 0x43) == 3;
  return Mouse(released ? number(0) & ~3 : number(0), number(1), number(2), released);
}

struct Character {
  std::size_t length;  // 0: more bytes are needed
  std::optional<char32_t> character;
};
Character Decode(std::string_view bytes) {
  std::mbstate_t state{};
  wchar_t c = 0;
  const std::size_t length = std::mbrtowc(&c, bytes.data(), bytes.size(), &state);
  if (length == static_cast<std::size_t>(-2)) return {0, std::nullopt};
  if (length == static_cast<std::size_t>(-1)) return {1, std::nullopt};
  return {std::max<std::size_t>(length, 1), static_cast<char32_t>(c)};
}

}  // namespace

std::optional<Input> InputDecoder::Next(bool late) {
  while (!bytes_.empty()) {
    if (pasting_) {
      const std::size_t before = bytes_.size();
      if (auto pasted = TakePasted(late)) return pasted;
      if (bytes_.size() == before) return std::nullopt;
      continue;
    }
    const auto taken = Take(late || bytes_.size() > kLongest);
    if (taken.length == 0) return std::nullopt;
    bytes_.erase(0, taken.length);
    if (taken.input) return taken.input;
  }
  return std::nullopt;
}

InputDecoder::Taken InputDecoder::Take(bool late) {
  if (bytes_[0] != kEscape) return TakeCharacter(0, late);
  Taken escape{1, FromCharacter(U'\x1B', false)};
  if (bytes_.size() == 1) return late ? escape : Taken{};
  if (const auto named = Named.find(std::string_view(bytes_).substr(0, 2)); named != Named.end())
    return {2, named->second};
  const char next = bytes_[1];
  const bool alone = late && bytes_.size() == 2;  // with Alt held a terminal sends Escape first
  if (next == '[' && !alone) return TakeControlSequence(late);
  if (next == 'O' && !alone) return TakeSingleShift(late);
  if (std::string_view("P]X^_").find(next) != std::string_view::npos && !alone) return TakeString(late);
  if (static_cast<unsigned char>(next) < ' ' || next == 127) return escape;
  const auto taken = TakeCharacter(1, false);
  return taken.length == 0 && late ? escape : taken;
}

// "ESC [ parameters final". What can not belong to it breaks it off.
InputDecoder::Taken InputDecoder::TakeControlSequence(bool late) {
  std::size_t end = 2;
  const auto within = [&](char first, char last) {
    return end < bytes_.size() && bytes_[end] >= first && bytes_[end] <= last;
  };
  while (within(' ', '?')) ++end;
  if (end == bytes_.size() && !late) return {};
  if (within('@', '~')) ++end;
  if (end == 3 && bytes_[2] == '[') {  // F1 to F5 of the Linux console
    if (end == bytes_.size()) return {late ? end : 0, std::nullopt};
    const bool known = within('A', 'E');
    return {end + 1, known ? std::optional<Input>(KeyPress{kKeyF1 + bytes_[end] - 'A'}) : std::nullopt};
  }
  if (end == 3 && bytes_[2] == 'M') {
    if (bytes_.size() < end + 3) return {late ? bytes_.size() : 0, std::nullopt};
    return {end + 3, Mouse(std::string_view(bytes_).substr(end, 3))};
  }
  return {end, FromControlSequence(std::string_view(bytes_).substr(0, end))};
}

std::optional<Input> InputDecoder::FromControlSequence(std::string_view sequence) {
  if (const auto named = Named.find(sequence); named != Named.end()) return named->second;
  const char final = sequence.back();
  const auto parameters = sequence.substr(2, sequence.size() - 3);
  const auto [first, second, third] = Numbers(parameters.substr(parameters.starts_with('<') ? 1 : 0));
  if (parameters.starts_with('<')) {
    const bool mouse = final == 'M' || final == 'm';
    return mouse ? Mouse(first, second, third, final == 'm') : std::nullopt;
  }
  if (!parameters.empty() && parameters[0] > ';') return std::nullopt;  // what a terminal says of itself
  switch (final) {
    case 'u':
      return FromCode(static_cast<char32_t>(first), Modifiers(second));
    case 'Z':
      return KeyPress{kKeyTab, kShift};
    case '~':
    case '$':  // rxvt has finals for the modifiers
    case '^':
    case '@': {
      if (final == '~' && first == 27) return FromCode(static_cast<char32_t>(third), Modifiers(second));
      pasting_ = final == '~' && first == 200;
      const auto known = std::ranges::find(kNumbers, first, &Number::number);
      if (known == std::end(kNumbers)) return std::nullopt;
      const int32_t shift = final == '~'   ? Modifiers(second)
                            : final == '$' ? kShift
                            : final == '^' ? kCtrl
                                           : kShift | kCtrl;
      return KeyPress{known->key, known->shift | shift};
    }
    default:
      if (first > 1) return std::nullopt;  // as a cursor's place
      if (const auto key = KeyIn(kFinals, final)) return KeyPress{*key, Modifiers(second)};
      if (const auto key = KeyIn(kSmallFinals, final)) return KeyPress{*key, kShift};
      return std::nullopt;
  }
}

// "ESC O final", before which some terminals say modifiers.
InputDecoder::Taken InputDecoder::TakeSingleShift(bool late) const {
  const std::size_t end = bytes_.find_first_not_of("0123456789;", 2);
  if (end == std::string::npos) return {late ? bytes_.size() : 0, std::nullopt};
  const char final = bytes_[end];
  if (final < '@' || final > '~') return {end, std::nullopt};
  const auto sequence = std::string_view(bytes_).substr(0, end + 1);
  Taken taken{sequence.size(), std::nullopt};
  const auto [first, second, third] = Numbers(sequence.substr(2));
  if (const auto named = Named.find(sequence); named != Named.end()) {
    taken.input = named->second;
  } else if (const auto key = KeyIn(kFinals, final)) {
    taken.input = KeyPress{*key, Modifiers(std::max(first, second))};
  } else if (const auto small = KeyIn(kSmallFinals, final)) {
    taken.input = KeyPress{*small, kCtrl};
  } else if (final == 'M') {
    taken.input = FromCharacter(U'\r', false);
  } else if (final >= 'j' && static_cast<std::size_t>(final - 'j') < kKeypad.size()) {
    taken.input = FromCharacter(static_cast<char32_t>(kKeypad[static_cast<std::size_t>(final - 'j')]), false);
  }
  return taken;
}

// A command or a report that ends in "ESC \" or BEL.
InputDecoder::Taken InputDecoder::TakeString(bool late) const {
  const std::size_t end = bytes_.find_first_of("\a\030\032\033", 2);
  if (end == std::string::npos) return {late ? bytes_.size() : 0, std::nullopt};
  if (bytes_[end] != kEscape) return {end + 1, std::nullopt};
  if (end + 1 == bytes_.size() && !late) return {};
  return {bytes_.compare(end, 2, "\033\\") == 0 ? end + 2 : end, std::nullopt};
}

// With Alt where an Escape stands before it.
InputDecoder::Taken InputDecoder::TakeCharacter(std::size_t at, bool late) const {
  const auto [length, character] = Decode(std::string_view(bytes_).substr(at));
  if (length == 0) return {late ? at + 1 : 0, std::nullopt};
  return {at + length, character ? std::optional<Input>(FromCharacter(*character, at != 0)) : std::nullopt};
}

// As much of it as is there, up to its end. Whoever is kept waiting for that comes out with the Escape key.
std::optional<Input> InputDecoder::TakePasted(bool late) {
  constexpr std::string_view kEnd = "\033[201~";
  Pasted pasted;
  while (!bytes_.empty()) {
    const std::string_view bytes(bytes_);
    std::size_t length = 1;
    if (bytes.starts_with(kEnd) || (late && bytes == "\033")) {
      length = std::min(kEnd.size(), bytes.size());
      pasting_ = false;
    } else if (bytes[0] == kEscape) {
      if (kEnd.starts_with(bytes) && !late) break;
    } else {
      const auto [taken, character] = Decode(bytes);
      if (taken == 0 && !late) break;
      length = std::max<std::size_t>(taken, 1);
      // Terminals send a line break as the Enter key does.
      if (character) AppendUtf16(pasted.text, *character == U'\r' ? U'\n' : *character);
    }
    bytes_.erase(0, length);
    if (!pasting_) break;
  }
  return pasted.text.empty() ? std::nullopt : std::optional<Input>(std::move(pasted));
}

// A code of a character, as terminals send it with modifiers that no character has.
std::optional<Input> InputDecoder::FromCode(char32_t code, int32_t shift) const {
  const bool control = code < U' ' || code == 127;
  const bool special = code == 8 || code == U'\t' || code == U'\r' || code == 27 || code == 127;
  const bool own = code >= 0xE000 && code <= 0xF8FF;  // keys that type nothing
  if ((control && !special) || own || code > 0x10FFFF) return std::nullopt;
  if (special || (shift & (kCtrl | kAlt)) == 0) {
    auto press = FromCharacter(code, false);
    if (special) press.shift |= shift;
    return press;
  }
  return KeyPress{code < 0x80 ? KeyOf(code) : static_cast<int32_t>(ToUpper(code)), shift};
}

KeyPress InputDecoder::FromCharacter(char32_t c, bool alt) const {
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
      return Backspace == 8 ? KeyPress{kKeyBack, shift} : KeyPress{kKeyBack, shift | kCtrl, 127};
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
