// Any bytes from a terminal are taken, and the same in two pieces as in one.
#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "host/terminal/InputDecoder.h"
#include "util/Utf.h"

namespace {

using namespace rowlark::terminal;

// What was typed and pasted, with every key and action as a line.
std::string Read(InputDecoder& decoder, std::string_view bytes, bool late) {
  decoder.Feed(bytes);
  std::string told;
  while (const auto input = decoder.Next(late)) {
    if (const auto* pasted = std::get_if<Pasted>(&*input)) told += rowlark::ToUtf8(pasted->text);
    if (const auto* press = std::get_if<KeyPress>(&*input))
      told += '\n' + std::to_string(press->key) + ' ' + std::to_string(press->shift) + ' ' +
              std::to_string(press->character) + '\n';
    if (const auto* action = std::get_if<MouseAction>(&*input))
      told += '\n' + std::to_string(action->at.x) + ',' + std::to_string(action->at.y) + '\n';
  }
  return told;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto half = std::min<std::size_t>(data[0], bytes.size());
  InputDecoder whole;
  InputDecoder pieces;
  const auto told = Read(whole, bytes, false) + Read(whole, {}, true);
  const auto first = Read(pieces, bytes.substr(0, half), false);
  if (first + Read(pieces, bytes.substr(half), false) + Read(pieces, {}, true) != told) std::abort();
  if (whole.Waiting() || pieces.Waiting()) std::abort();
  return 0;
}
