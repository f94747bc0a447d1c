#include "util/Utf.h"

#include <cstdint>
#include <cstring>

namespace rowlark {

std::string ToUtf8(std::u16string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  while (!text.empty()) AppendUtf8(utf8, TakeUtf16(text));
  return utf8;
}

std::u16string ToUtf16(std::string_view utf8) {
  std::u16string text;
  text.reserve(utf8.size());
  while (!utf8.empty()) AppendUtf16(text, TakeUtf8(utf8));
  return text;
}

bool IsValidUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    uint64_t block = 0;
    if (bytes.size() >= sizeof block) {
      std::memcpy(&block, bytes.data(), sizeof block);
      if ((block & 0x8080808080808080) == 0) {
        bytes.remove_prefix(sizeof block);
        continue;
      }
    }
    const std::size_t before = bytes.size();
    const char32_t c = TakeUtf8(bytes);
    const bool is_malformed = c == 0xFFFD && before - bytes.size() == 1;
    const bool is_surrogate = (c & 0xFFFFF800) == 0xD800;
    if (is_malformed || is_surrogate) return false;
  }
  return true;
}

std::u16string FromWindows1252(std::string_view bytes) {
  // What 0x80 to 0x9F stand for.
  constexpr char16_t kHigh[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  std::u16string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto unit = static_cast<unsigned char>(byte);
    text += unit >= 0x80 && unit < 0xA0 ? kHigh[unit - 0x80] : static_cast<char16_t>(unit);
  }
  return text;
}

}  // namespace rowlark
