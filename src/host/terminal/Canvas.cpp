#include "host/terminal/Canvas.h"

#include <algorithm>

namespace rowlark::terminal {

void Canvas::Fill(const Rect& area, char32_t character, Style style) {
  const Glyph glyph = MakeGlyph(character);
  for (int32_t y = area.top; y < area.top + area.height; ++y) {
    for (int32_t x = area.left; x < area.left + area.width; ++x) Put({x, y}, glyph, style);
  }
}

void Canvas::Put(Point at, const Glyph& glyph, Style style) {
  if (!Holds(at)) return;
  // Half of a wide character does not show.
  const auto blank = [this](Point cell) {
    if (Holds(cell)) cells_[Index(cell)].glyph = MakeGlyph(U' ');
  };
  if (At(at).glyph.count == 0) blank({at.x - 1, at.y});
  const Point right{at.x + glyph.width - 1, at.y};
  if (!Holds(right)) return blank(at);
  if (At(right).glyph.width == 2) blank({right.x + 1, right.y});
  cells_[Index(at)] = {glyph, style};
  if (glyph.width == 2) cells_[Index(right)] = {Glyph{}, style};
}

int32_t Canvas::Write(Point at, std::u16string_view text, Style style, int32_t width) {
  if (width < 0) width = std::max(0, size_.width - at.x);
  const bool cut = WidthOf(text) > width;
  const int32_t room = cut ? width - 1 : width;
  int32_t used = 0;
  while (!text.empty()) {
    const Glyph glyph = TakeGlyph(text);
    if (used + glyph.width > room) break;
    Put({at.x + used, at.y}, glyph, style);
    used += glyph.width;
  }
  if (cut && width > 0) Put({at.x + used++, at.y}, MakeGlyph(U'…'), style);
  return used;
}

void Canvas::Box(const Rect& area, Style style) {
  const int32_t right = area.left + area.width - 1;
  const int32_t bottom = area.top + area.height - 1;
  Fill({area.left, area.top, area.width, 1}, U'─', style);
  Fill({area.left, bottom, area.width, 1}, U'─', style);
  Fill({area.left, area.top, 1, area.height}, U'│', style);
  Fill({right, area.top, 1, area.height}, U'│', style);
  Put({area.left, area.top}, MakeGlyph(U'┌'), style);
  Put({right, area.top}, MakeGlyph(U'┐'), style);
  Put({area.left, bottom}, MakeGlyph(U'└'), style);
  Put({right, bottom}, MakeGlyph(U'┘'), style);
}

void Canvas::Copy(const Canvas& from, const Rect& to, int32_t first) {
  for (int32_t y = 0; y < to.height; ++y) {
    for (int32_t x = 0; x < to.width; ++x) {
      const Point source{x, y + first};
      if (!from.Holds(source)) continue;
      const Cell& cell = from.At(source);
      if (cell.glyph.count > 0) Put({to.left + x, to.top + y}, cell.glyph, cell.style);
    }
  }
  if (!from.Cursor) return;
  const Point cursor{to.left + from.Cursor->x, to.top + from.Cursor->y - first};
  if (Contains(to, cursor)) Cursor = cursor;
}

}  // namespace rowlark::terminal
