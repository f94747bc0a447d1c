// What a terminal sends, as keys, mouse actions and pasted text. Sequences are told apart by their grammar
// (ECMA-48), so that one which means nothing here is passed over whole and never taken for typing.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "host/terminal/Input.h"

namespace rowlark::terminal {

class InputDecoder {
 public:
  // Sequences of keys that the terminal's description names; they go before what terminals have in common.
  std::map<std::string, KeyPress, std::less<>> Named;
  // What the backspace key sends, 127 or 8: where it is not 8, that comes from Ctrl+Backspace.
  char32_t Backspace = 127;

  // Bytes in the encoding of the locale, in pieces of any size.
  void Feed(std::string_view bytes) { bytes_ += bytes; }
  // The next thing that the user has done; nothing where that can not be told yet. `late`: bytes that are
  // missing did not come in time, so that an Escape is the key of that name.
  std::optional<Input> Next(bool late);
  // Something has begun, and the rest of it comes at once.
  bool Waiting() const { return !bytes_.empty(); }

 private:
  struct Taken {
    std::size_t length = 0;      // bytes that it took; 0: more are needed
    std::optional<Input> input;  // nothing: they mean nothing here
  };

  Taken Take(bool late);
  Taken TakeControlSequence(bool late);
  Taken TakeSingleShift(bool late) const;
  Taken TakeString(bool late) const;
  Taken TakeCharacter(std::size_t at, bool late) const;
  std::optional<Input> TakePasted(bool late);

  std::optional<Input> FromControlSequence(std::string_view sequence);
  std::optional<Input> FromCode(char32_t code, int32_t shift) const;
  KeyPress FromCharacter(char32_t character, bool alt) const;

  std::string bytes_;
  bool pasting_ = false;
};

}  // namespace rowlark::terminal
