// What the screen is to show, cell by cell. Everything draws into a canvas, and what lies outside it is not
// drawn.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "controls/Units.h"
#include "host/terminal/Glyph.h"

namespace rowlark::terminal {

using controls::Point;  // here in cells
using controls::Rect;
using controls::Size;

inline bool Contains(const Rect& area, Point at) {
  return at.x >= area.left && at.x < area.left + area.width && at.y >= area.top &&
         at.y < area.top + area.height;
}

// What something is drawn as; the screen has its looks with many colours, with few and with none.
enum class Style : uint8_t {
  Normal,
  Dim,
  Bold,
  Header,  // of a table
  Cursor,  // the active cell
  Selected,
  Match,
  CursorMatch,
  Gap,  // where rows are hidden
  Status,
  Title,
  Accelerator,
  Field,
  Focus,  // what has the keyboard, and selected text
  Error,
  Link,
  kCount,
};

class Canvas {
 public:
  struct Cell {
    Glyph glyph = MakeGlyph(U' ');
    Style style = Style::Normal;
    friend bool operator==(const Cell&, const Cell&) = default;
  };

  explicit Canvas(terminal::Size size = {})
      : size_(size), cells_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height)) {}

  terminal::Size Size() const { return size_; }
  const Cell& At(Point at) const { return cells_[Index(at)]; }
  // Where the keyboard's cursor stands, if it shows.
  std::optional<Point> Cursor;

  void Fill(const Rect& area, char32_t character, Style style);
  void Put(Point at, const Glyph& glyph, Style style);
  // Writes one line into so many cells (all that are left when it is negative); a text that is wider ends in
  // "…". The cells that it took.
  int32_t Write(Point at, std::u16string_view text, Style style, int32_t width = -1);
  void Box(const Rect& area, Style style);
  // Copies what another canvas shows from the row `first` on.
  void Copy(const Canvas& from, const Rect& to, int32_t first);

 private:
  bool Holds(Point at) const { return Contains({0, 0, size_.width, size_.height}, at); }
  std::size_t Index(Point at) const {
    return static_cast<std::size_t>(at.y) * static_cast<std::size_t>(size_.width) +
           static_cast<std::size_t>(at.x);
  }

  terminal::Size size_;
  std::vector<Cell> cells_;
};

}  // namespace rowlark::terminal
