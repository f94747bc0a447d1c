// Characters as a terminal shows them: each takes one cell or two, and marks that combine take none of their
// own.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace rowlark::terminal {

struct Glyph {
  static constexpr std::size_t kMost = 4;
  std::array<char32_t, kMost> text{};  // a base and its marks; further marks are dropped
  uint8_t count = 0;                   // 0: the right half of what stands to the left
  uint8_t width = 1;                   // cells
  friend bool operator==(const Glyph&, const Glyph&) = default;
};

Glyph MakeGlyph(char32_t base);

// The glyph at the front of `text` (not empty), which is shortened by it. Controls, and what would turn the
// direction of the line, come as a harmless picture. Widths are those of the locale, which has to be one of
// UTF-8.
Glyph TakeGlyph(std::u16string_view& text);

// In cells, of one line.
int32_t WidthOf(std::u16string_view text);

}  // namespace rowlark::terminal
