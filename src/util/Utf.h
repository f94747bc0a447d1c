// Conversions between UTF-16, the text of the system, and the encodings at its edges. Unpaired surrogates
// survive the way to UTF-8 and back (as their generalised three-byte form), so no text is lost.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace rowlark {

inline void AppendUtf8(std::string& text, char32_t c) {
  if (c < 0x80) {
    text += static_cast<char>(c);
    return;
  }
  const auto tail = [c](int shift) { return static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x800) {
    const char bytes[] = {static_cast<char>(0xC0 | (c >> 6)), tail(0)};
    text.append(bytes, sizeof bytes);
  } else if (c < 0x10000) {
    const char bytes[] = {static_cast<char>(0xE0 | (c >> 12)), tail(6), tail(0)};
    text.append(bytes, sizeof bytes);
  } else {
    const char bytes[] = {static_cast<char>(0xF0 | (c >> 18)), tail(12), tail(6), tail(0)};
    text.append(bytes, sizeof bytes);
  }
}

inline void AppendUtf16(std::u16string& text, char32_t c) {
  if (c < 0x10000) {
    text += static_cast<char16_t>(c);
  } else {
    text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
    text += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
  }
}

// The code point at the front of `text` (not empty), which is shortened by it. A malformed byte counts as
// U+FFFD and is skipped alone.
inline char32_t TakeUtf8(std::string_view& text) {
  const auto byte = [&text](std::size_t i) -> char32_t {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  const auto is_tail = [&byte](std::size_t i) { return (byte(i) & 0xC0) == 0x80; };
  const char32_t lead = byte(0);
  char32_t c = 0xFFFD;
  std::size_t length = 1;
  if (lead < 0x80) {
    c = lead;
  } else if (lead < 0xE0) {
    if (lead >= 0xC2 && is_tail(1)) {
      c = ((lead & 0x1F) << 6) | (byte(1) & 0x3F);
      length = 2;
    }
  } else if (lead < 0xF0) {
    const char32_t value = ((lead & 0xF) << 12) | ((byte(1) & 0x3F) << 6) | (byte(2) & 0x3F);
    if (is_tail(1) && is_tail(2) && value >= 0x800) {
      c = value;
      length = 3;
    }
  } else if (lead < 0xF5) {
    const char32_t value =
        ((lead & 7) << 18) | ((byte(1) & 0x3F) << 12) | ((byte(2) & 0x3F) << 6) | (byte(3) & 0x3F);
    if (is_tail(1) && is_tail(2) && is_tail(3) && value >= 0x10000 && value <= 0x10FFFF) {
      c = value;
      length = 4;
    }
  }
  text.remove_prefix(length);
  return c;
}

// The same for UTF-16; an unpaired surrogate is returned as itself.
inline char32_t TakeUtf16(std::u16string_view& text) {
  const char32_t unit = text.front();
  if ((unit & 0xFC00) == 0xD800 && text.size() > 1 && (text[1] & 0xFC00) == 0xDC00) {
    const char32_t c = 0x10000 + ((unit & 0x3FF) << 10) + (text[1] & char32_t{0x3FF});
    text.remove_prefix(2);
    return c;
  }
  text.remove_prefix(1);
  return unit;
}

std::string ToUtf8(std::u16string_view text);
std::u16string ToUtf16(std::string_view utf8);

// Strictly well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
bool IsValidUtf8(std::string_view bytes);

// The ANSI code page of western systems; its five unassigned bytes map to the control of the same number.
std::u16string FromWindows1252(std::string_view bytes);

}  // namespace rowlark
