// A text laid out in lines, and the part of it that a box shows.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "controls/TextInput.h"
#include "host/terminal/Canvas.h"

namespace rowlark::terminal {

// Offsets into the text, in UTF-16 units; without the line break or blank it ends in.
struct TextLine {
  int32_t begin = 0;
  int32_t end = 0;
};

// Lines end at line breaks and, at a blank where there is one, where they are full.
std::vector<TextLine> BreakLines(std::u16string_view text, int32_t width);

// What a box of that size shows of its text: the part with the caret.
class TextPane {
 public:
  TextPane(const controls::TextInput& input, Size size);

  // The caret is shown by the canvas's cursor when the box has the keyboard.
  void Draw(Canvas& canvas, Point at, Style style, bool focused) const;
  // The offset in the text of a place in the box.
  int32_t OffsetAt(Point place) const;

 private:
  const controls::TextInput& input_;
  Size size_;
  std::vector<TextLine> lines_;
  std::size_t first_ = 0;
};

}  // namespace rowlark::terminal
