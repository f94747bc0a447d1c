#include "host/terminal/TextLines.h"

#include <algorithm>

namespace rowlark::terminal {
std::vector<TextLine> BreakLines(std::u16string_view text, int32_t width) {
  std::vector<TextLine> lines;
  const auto offset = [whole = text.size()](std::u16string_view rest) {
    return static_cast<int32_t>(whole - rest.size());
  };
  int32_t begin = 0;
  int32_t used = 0;
  int32_t blank = -1;  // the last one in the line
  std::u16string_view rest = text;
  while (!rest.empty()) {
    const int32_t at = offset(rest);
    if (rest.front() == u'\r' || rest.front() == u'\n') {
      rest.remove_prefix(rest.starts_with(u"\r\n") ? 2 : 1);
      lines.push_back({begin, at});
      begin = offset(rest);
      used = 0;
      blank = -1;
      continue;
    }
    if (rest.front() == u' ') blank = at;
    const auto glyph = TakeGlyph(rest);
    used += glyph.width;
    if (used <= width || at == begin) continue;
    const int32_t end = blank >= 0 ? blank : at;
    lines.push_back({begin, end});
    begin = blank >= 0 ? blank + 1 : at;
    used =
        WidthOf(text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(offset(rest) - begin)));
    blank = -1;
  }
  lines.push_back({begin, offset(rest)});
  return lines;
}

TextPane::TextPane(const controls::TextInput& input, Size size) : input_(input), size_(size) {
  const std::u16string_view text = input.Text();
  const int32_t caret = input.Caret();
  if (input.HasLines()) {
    lines_ = BreakLines(text, size.width - (input.ReadOnly ? 0 : 1));
    std::size_t line = 0;
    while (line + 1 < lines_.size() && lines_[line + 1].begin <= caret) ++line;
    if (const auto height = static_cast<std::size_t>(size.height); line >= height) first_ = line - height + 1;
    return;
  }
  // Of a single line, what ends with the caret where that would lie outside.
  auto before = text.substr(0, static_cast<std::size_t>(caret));
  int32_t width = WidthOf(before);
  int32_t begin = 0;
  while (width >= size.width && !before.empty()) {
    const auto length = before.size();
    width -= TakeGlyph(before).width;
    begin += static_cast<int32_t>(length - before.size());
  }
  lines_.push_back({begin, input.End()});
}

void TextPane::Draw(Canvas& canvas, Point at, Style style, bool focused) const {
  const std::u16string_view text = input_.Text();
  const int32_t first = input_.SelStart();
  const int32_t last = focused ? first + input_.SelLength() : first;
  for (std::size_t i = first_; i < lines_.size() && static_cast<int32_t>(i - first_) < size_.height; ++i) {
    const auto [begin, end] = lines_[i];
    int32_t offset = begin;
    int32_t x = 0;
    const int32_t y = at.y + static_cast<int32_t>(i - first_);
    // The caret may stand within what is one character on the screen.
    const auto caret = [&](int32_t next) {
      const bool here = input_.Caret() >= offset && input_.Caret() < next && x < size_.width;
      if (focused && here && !input_.ReadOnly) canvas.Cursor = Point{at.x + x, y};
    };
    auto rest = text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
    while (!rest.empty()) {
      const auto left = rest.size();
      const auto glyph = TakeGlyph(rest);
      const int32_t next = offset + static_cast<int32_t>(left - rest.size());
      if (x + glyph.width > size_.width) break;
      caret(next);
      canvas.Put({at.x + x, y}, glyph, offset >= first && offset < last ? Style::Focus : style);
      x += glyph.width;
      offset = next;
    }
    if (offset == end) caret(end + 1);
  }
}

int32_t TextPane::OffsetAt(Point place) const {
  const auto line = std::min(first_ + static_cast<std::size_t>(std::max(place.y, 0)), lines_.size() - 1);
  const auto [begin, end] = lines_[line];
  auto rest = std::u16string_view(input_.Text())
                  .substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
  int32_t x = 0;
  while (!rest.empty()) {
    auto behind = rest;
    x += TakeGlyph(behind).width;
    if (x > place.x) break;
    rest = behind;
  }
  return end - static_cast<int32_t>(rest.size());
}

}  // namespace rowlark::terminal
