#include "TableView.h"

#include <algorithm>
#include <string>

#include "host/standalone/Application.h"
#include "host/standalone/CellText.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using namespace controls;  // names of keys
using standalone::CellReader;
using terminal::Canvas;
using terminal::Style;

constexpr int32_t kGap = 2;         // cells between two columns
constexpr int32_t kSample = 300;    // rows that decide how wide a column is at first
constexpr int32_t kLeastWidth = 3;  // of a column

// What of a cell's text may show; a cell can hold very much.
std::u16string Beginning(std::string_view cell) { return ToUtf16(cell.substr(0, 1024)); }

bool IsNumber(std::string_view text) {
  const bool digit = text.find_first_of("0123456789") != text.npos;
  return digit && text.find_first_not_of("0123456789.,+-% ") == text.npos;
}

std::u16string Letters(int32_t column) {
  std::u16string letters;
  for (; column > 0; column = (column - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char16_t>(u'A' + (column - 1) % 26));
  }
  return letters;
}

std::u16string Number(int32_t number) { return ToUtf16(std::to_string(number)); }

}  // namespace

int32_t TableView::VisibleRow(int32_t row, int32_t direction) const {
  const auto used = Used();
  const auto& hidden = sheet_->HiddenRows();
  int32_t next = row + direction;
  if (direction > 0) {
    next = hidden.Next(next, used.last_row, false);
  } else {
    while (next >= used.first_row && hidden.Contains(next)) --next;
  }
  return next < used.first_row || next > used.last_row ? row : next;
}

int32_t TableView::Step(int32_t row, int32_t rows) const {
  const int32_t direction = rows < 0 ? -1 : 1;
  for (; rows != 0; rows -= direction) {
    const int32_t next = VisibleRow(row, direction);
    if (next == row) break;
    row = next;
  }
  return row;
}

void TableView::Follow() {
  const auto& selection = sheet_->Selection();
  const auto active = sheet_->ActiveCell();
  if (selection == selected_ && selected_.back().Contains(row_, column_)) return;
  selected_ = selection;
  kept_.clear();
  row_ = anchor_row_ = active.first_row;
  column_ = anchor_column_ = active.first_column;
  follow_ = true;
}

void TableView::GoTo(int32_t row, int32_t column, bool extend, bool add) {
  if (extend) {
    // The area that grows is replaced.
  } else {
    if (add || keep_) {
      kept_ = selected_;
    } else {
      kept_.clear();
    }
    keep_ = false;
    anchor_row_ = row;
    anchor_column_ = column;
  }
  row_ = row;
  column_ = column;
  follow_ = true;
  selected_ = kept_;
  selected_.push_back(standalone::Join({anchor_row_, anchor_column_, anchor_row_, anchor_column_},
                                       {row, column, row, column}));
  std::u16string address;
  for (const auto& area : selected_) {
    if (!address.empty()) address += u',';
    standalone::AppendAddress(address, area);
  }
  sheet_->Select(address);
}

bool TableView::Navigate(const terminal::KeyPress& press) {
  if ((press.shift & kAlt) != 0) return false;
  Follow();
  const auto used = Used();
  const bool end = (press.shift & kCtrl) != 0;
  const auto page = std::max<int32_t>(1, static_cast<int32_t>(rows_.size()) - 2);
  int32_t row = row_;
  int32_t column = column_;
  switch (press.key) {
    case kKeyUp:
      row = end ? Step(used.first_row - 1, 1) : VisibleRow(row, -1);
      break;
    case kKeyDown:
      row = end ? Step(used.last_row + 1, -1) : VisibleRow(row, 1);
      break;
    case kKeyLeft:
      column = end ? used.first_column : std::max(column - 1, used.first_column);
      break;
    case kKeyRight:
      column = end ? used.last_column : std::min(column + 1, used.last_column);
      break;
    case terminal::kKeyPageUp:
    case terminal::kKeyPageDown:
      if (end) return false;
      row = Step(row, press.key == terminal::kKeyPageUp ? -page : page);
      break;
    case kKeyHome:
      column = used.first_column;
      if (end) row = Step(used.first_row - 1, 1);
      break;
    case kKeyEnd:
      column = used.last_column;
      if (end) row = Step(used.last_row + 1, -1);
      break;
    default:
      return false;
  }
  GoTo(row, column, (press.shift & kShift) != 0);
  return true;
}

void TableView::UseMouse(const terminal::MouseAction& action) {
  using Kind = terminal::MouseAction::Kind;
  constexpr int32_t kWheel = 3;  // rows
  if (action.kind == Kind::WheelUp || action.kind == Kind::WheelDown) {
    top_ = std::max(Step(top_, action.kind == Kind::WheelUp ? -kWheel : kWheel), Header() + 1);
    return;
  }
  if (action.kind == Kind::Release) return;
  const auto at = [](const std::vector<Shown>& shown, int32_t place) -> const Shown* {
    const auto hit = std::ranges::find_if(
        shown, [place](const Shown& s) { return place >= s.at && place < s.at + std::max(s.size, 1); });
    return hit == shown.end() ? nullptr : &*hit;
  };
  const auto* row = at(rows_, action.at.y);
  const auto* column = at(columns_, action.at.x);
  if (row == nullptr || column == nullptr) return;
  const bool extend = action.kind == Kind::Drag || (action.shift & kShift) != 0;
  GoTo(row->number, column->number, extend, (action.shift & kCtrl) != 0);
}

void TableView::Widen(int32_t column, int32_t width) {
  auto& known = widths_[static_cast<std::size_t>(column - Used().first_column)];
  known = std::clamp(width, known, widest_);
}

// Looks at the first rows for columns up to that one.
void TableView::Measure(int32_t column) {
  constexpr int32_t kAtOnce = 32;
  const auto used = Used();
  const auto known = static_cast<int32_t>(widths_.size());
  if (column < used.first_column + known) return;
  const int32_t first = used.first_column + known;
  const int32_t last = std::max(column, std::min(column + kAtOnce, used.last_column));
  const int32_t count = last - used.first_column + 1;
  widths_.resize(static_cast<std::size_t>(count), kLeastWidth);
  CellReader reader(sheet_->Text(), false);
  for (int32_t row = used.first_row; row <= std::min(used.last_row, used.first_row + kSample); ++row) {
    for (int32_t c = first; c <= last; ++c) Widen(c, terminal::WidthOf(Beginning(reader.Cell(row, c))));
  }
}

int32_t TableView::Width(int32_t column) {
  Measure(column);
  return std::min(widths_[static_cast<std::size_t>(column - Used().first_column)], widest_);
}

void TableView::ScrollToActive(int32_t height, int32_t width) {
  const auto used = Used();
  const int32_t first = used.first_row + 1;
  left_ = std::clamp(left_, used.first_column, used.last_column);
  top_ = std::max(top_, first);
  if (follow_ && row_ < first) top_ = first;
  if (IsHidden(top_) || top_ > used.last_row) {
    const int32_t next = VisibleRow(top_, 1);
    top_ = next != top_ ? next : std::max(first, VisibleRow(top_, -1));
  }
  if (follow_ && row_ >= first && !IsHidden(row_)) {
    if (row_ < top_) top_ = row_;
    if (Step(top_, height - 1) < row_) top_ = std::max(first, Step(row_, 1 - height));
  }
  // No empty rows at the end while there are some above.
  int32_t behind = height;
  for (int32_t row = top_; behind > 0 && row <= used.last_row; --behind) {
    const int32_t next = VisibleRow(row, 1);
    row = next == row ? used.last_row + 1 : next;
  }
  if (behind > 0) {
    const int32_t up = Step(top_, -behind);
    top_ = up >= first ? up : IsHidden(first) ? VisibleRow(first, 1) : first;
  }
  if (!follow_ || column_ < used.first_column || column_ > used.last_column) return;
  left_ = std::min(left_, column_);
  int32_t needed = 0;
  for (int32_t c = column_; c >= left_; --c) {
    needed += Width(c) + kGap;
    if (needed - kGap > width && c < column_) {
      left_ = c + 1;
      break;
    }
  }
}

bool TableView::IsSelected(int32_t row, int32_t column) const {
  return std::ranges::any_of(selected_, [&](const auto& area) { return area.Contains(row, column); });
}

void TableView::Draw(Canvas& canvas, const terminal::Rect& area, const Highlight& highlight, bool focused) {
  Follow();
  const auto used = Used();
  rows_.clear();
  columns_.clear();
  const bool letters = area.height >= 6;
  int32_t y = area.top;
  number_width_ = std::max<int32_t>(3, static_cast<int32_t>(std::to_string(used.last_row).size())) + 1;
  const int32_t x = area.left + number_width_ + 2;
  const int32_t width = area.left + area.width - x;
  widest_ = std::clamp(area.width / 2, 8, 40);
  const int32_t body = area.height - (letters ? 2 : 1);
  if (body < 1 || width < 1) return;
  ScrollToActive(body, width);
  follow_ = false;

  // The rows that show decide on widths as well.
  std::vector<int32_t> numbers{Header()};
  for (int32_t row = top_; row <= used.last_row && static_cast<int32_t>(numbers.size()) <= body;) {
    if (!IsHidden(row)) numbers.push_back(row);
    const int32_t next = VisibleRow(row, 1);
    if (next == row) break;
    row = next;
  }
  Measure(left_);
  CellReader reader(sheet_->Text(), false);
  for (const int32_t row : numbers) {
    int32_t taken = 0;
    for (int32_t c = left_; c <= used.last_column && taken < width; ++c) {
      Measure(c);
      Widen(c, terminal::WidthOf(Beginning(reader.Cell(row, c))));
      taken += kLeastWidth;
    }
  }
  int32_t at = x;
  for (int32_t c = left_; c <= used.last_column && at < area.left + area.width; ++c) {
    const int32_t size = std::min(Width(c), area.left + area.width - at);
    columns_.push_back({c, at, size});
    at += size + kGap;
  }

  if (letters) {
    for (const auto& column : columns_) {
      const Style style = column.number == column_ ? Style::Bold : Style::Dim;
      canvas.Write({column.at, y}, Letters(column.number), style, column.size);
    }
    ++y;
  }
  for (const int32_t row : numbers) {
    rows_.push_back({row, y, 1});
    DrawRow(canvas, row, y++, highlight, focused);
  }
}

void TableView::DrawRow(Canvas& canvas, int32_t row, int32_t y, const Highlight& highlight, bool focused) {
  const bool header = row == Header();
  const auto number = Number(row);
  const Style number_style = row == row_ ? Style::Bold : Style::Dim;
  canvas.Write({number_width_ - static_cast<int32_t>(number.size()), y}, number, number_style);
  const bool gap = !header && row - 1 != Header() && IsHidden(row - 1);
  canvas.Put({number_width_, y}, terminal::MakeGlyph(gap ? U'╪' : U'│'), gap ? Style::Gap : Style::Dim);
  CellReader reader(sheet_->Text(), false);
  for (const auto& column : columns_) {
    Style style = header ? Style::Header : Style::Normal;
    if (row == row_ && column.number == column_) {
      style = focused ? Style::Cursor : Style::Selected;
    } else if (IsSelected(row, column.number)) {
      style = Style::Selected;
    }
    DrawCell(canvas, row, column, y, reader.Cell(row, column.number), highlight, style);
  }
}

void TableView::DrawCell(Canvas& canvas, int32_t row, const Shown& column, int32_t y, std::string_view cell,
                         const Highlight& highlight, Style style) const {
  const auto text = Beginning(cell);
  const int32_t width = terminal::WidthOf(text);
  std::vector<TextSpan> spans;
  if (highlight.Covers(row, column.number)) spans = highlight.In(text);
  const Style match = style == Style::Normal || style == Style::Header ? Style::Match : Style::CursorMatch;
  canvas.Fill({column.at, y, column.size, 1}, U' ', style);
  int32_t x = column.at;
  const int32_t end = column.at + column.size - (width > column.size ? 1 : 0);
  if (IsNumber(cell) && width < column.size && row != Header()) x += column.size - width;
  std::u16string_view rest = text;
  auto span = spans.begin();
  while (!rest.empty()) {
    const std::size_t offset = text.size() - rest.size();
    while (span != spans.end() && span->end <= offset) ++span;
    const auto glyph = terminal::TakeGlyph(rest);
    const bool in_match = span != spans.end() && span->begin <= offset;
    if (x + glyph.width > end) {
      // A match that is cut off shows in the sign that something is.
      if (width > column.size)
        canvas.Put({end, y}, terminal::MakeGlyph(U'…'), span != spans.end() ? match : style);
      return;
    }
    canvas.Put({x, y}, glyph, in_match ? match : style);
    x += glyph.width;
  }
}

}  // namespace rowlark
