#include "TableView.h"

#include <algorithm>
#include <string>
#include <vector>

#include "host/cells/CellText.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using namespace controls;  // names of keys
using sheetview::Cell;
using sheetview::SheetView;
using sheetview::StepRows;
using standalone::CellReader;
using terminal::Canvas;
using terminal::Style;

// What of a cell's text may show; a cell can hold very much.
std::u16string Beginning(std::string_view cell) { return ToUtf16(cell.substr(0, 1024)); }

bool IsNumber(std::string_view text) {
  const bool digit = text.find_first_of("0123456789") != text.npos;
  return digit && text.find_first_not_of("0123456789.,+-% ") == text.npos;
}

}  // namespace

TableView::TableView(Ref<standalone::Worksheet> sheet)
    : view_(
          std::move(sheet), [](std::string_view text) { return terminal::WidthOf(Beginning(text)); },
          SheetView::Extent::Table) {}

void TableView::Follow() { reveal_ |= view_.Cursor().Follow(); }

bool TableView::Navigate(const terminal::KeyPress& press) {
  if ((press.shift & kAlt) != 0) return false;
  Follow();
  auto& cursor = view_.Cursor();
  const bool extend = (press.shift & kShift) != 0;
  const bool end = (press.shift & kCtrl) != 0;
  const auto bounds = view_.Bounds();
  const auto [row, column] = extend ? cursor.MovingCorner() : cursor.At();
  const auto down = [&](int32_t from, int32_t rows) { return StepRows(Sheet(), from, rows, bounds); };
  // The first and last visible rows; without one the row is of no matter, as long as there is one.
  const int32_t first = std::max(down(bounds.first_row - 1, 1), bounds.first_row);
  const int32_t last = std::min(down(bounds.last_row + 1, -1), bounds.last_row);
  const int32_t page = std::max(view_.PageRows() - 1, 1);
  Cell to{row, column};
  switch (press.key) {
    case kKeyUp:
      to.row = end ? first : down(row, -1);
      break;
    case kKeyDown:
      to.row = end ? last : down(row, 1);
      break;
    case kKeyLeft:
      to.column = end ? view_.StepColumn(bounds.first_column - 1, 1) : view_.StepColumn(column, -1);
      break;
    case kKeyRight:
      to.column = end ? view_.StepColumn(bounds.last_column + 1, -1) : view_.StepColumn(column, 1);
      break;
    case terminal::kKeyPageUp:
    case terminal::kKeyPageDown:
      if (end) return false;
      to.row = down(row, press.key == terminal::kKeyPageUp ? -page : page);
      break;
    case kKeyHome:
      to = {end ? first : row, bounds.first_column};
      break;
    case kKeyEnd:
      to = {end ? last : row, bounds.last_column};
      break;
    default:
      return false;
  }
  if (extend) {
    cursor.ExtendTo(to);
  } else {
    cursor.MoveTo(to);
  }
  Moved();
  return true;
}

void TableView::GoTo(Cell cell) {
  view_.Cursor().MoveTo(cell);
  view_.ShowColumn(cell.column);
  Moved();
}

void TableView::WidenColumn(int32_t by) {
  const int32_t column = view_.Cursor().At().column;
  if (!view_.IsColumnHidden(column))
    view_.SetColumnWidth(column, std::max(view_.ColumnWidth(column) + by, 1));
  reveal_ = true;
}

// One at least stays.
void TableView::HideColumn() {
  const Cell at = view_.Cursor().At();
  const int32_t right = view_.StepColumn(at.column, 1);
  const int32_t next = right != at.column ? right : view_.StepColumn(at.column, -1);
  if (next == at.column) return;
  view_.SetColumnWidth(at.column, 0);
  GoTo({at.row, next});
}

void TableView::FreezeColumns() {
  view_.FreezeColumns(
      view_.FrozenColumns() > 0 ? 0 : view_.Cursor().At().column - view_.Bounds().first_column + 1);
  reveal_ = true;
}

void TableView::StandInFor(const TableView& before) {
  at_end_ = before.at_end_;
  view_.ShowLike(before.view_);
  // The cell that the user is at, which is another one where columns have gone.
  view_.ShowColumn(Sheet().ActiveCell().first_column);
}

void TableView::Moved() {
  reveal_ = true;
  at_end_ = IsInLastRow();
}

bool TableView::IsInLastRow() const {
  const auto bounds = view_.Bounds();
  return view_.Cursor().At().row >=
         std::min(StepRows(Sheet(), bounds.last_row + 1, -1, bounds), bounds.last_row);
}

bool TableView::KeepToEnd() { return at_end_ && !IsInLastRow() && Navigate({kKeyDown, kCtrl}); }

void TableView::UseMouse(const terminal::MouseAction& action) {
  using Kind = terminal::MouseAction::Kind;
  constexpr int32_t kWheel = 3;  // rows
  if (action.kind == Kind::WheelUp || action.kind == Kind::WheelDown) {
    return view_.ScrollRows(action.kind == Kind::WheelUp ? -kWheel : kWheel);
  }
  if (action.kind == Kind::Release) return;
  const auto hit = view_.HitTest(action.at.x - area_.left, action.at.y - area_.top);
  if (hit.part != SheetView::Part::Cell || !hit.exact) return;
  if (action.kind == Kind::Drag || (action.shift & kShift) != 0) {
    view_.Cursor().ExtendTo(hit.cell);
  } else {
    view_.Cursor().MoveTo(hit.cell, sheetview::Span::Cells, (action.shift & kCtrl) != 0);
  }
  Moved();
}

// The width that a column may have: as much as its text asks while there is room for all of them.
int32_t TableView::MostWidth(int32_t room, int32_t least) const {
  constexpr int32_t kGap = 2;
  const auto bounds = view_.Bounds();
  std::vector<int32_t> widths;
  for (int32_t column = bounds.first_column; column <= bounds.last_column; ++column) {
    room -= kGap;
    if (room < 0) return least;
    if (!view_.IsColumnHidden(column)) widths.push_back(view_.NaturalWidth(column));
  }
  // The narrow ones take what they need, and the others share the rest.
  std::ranges::sort(widths);
  auto left = static_cast<int32_t>(widths.size());
  for (const int32_t width : widths) {
    if (width > room / left) return std::max(room / left, least);
    room -= width;
    --left;
  }
  return widths.empty() ? least : std::max(widths.back(), least);
}

void TableView::Scroll(const terminal::Rect& area, bool letters, const Matches& found) {
  constexpr int32_t kLeastWidth = 3;
  area_ = area;
  view_.Resize(area.width, area.height,
               {.letters_height = letters ? 1 : 0,
                .number_margin = 3,
                .least_width = kLeastWidth,
                .most_width = MostWidth(area.width - view_.HeaderWidth(), std::clamp(area.width / 2, 8, 40)),
                .empty_width = kLeastWidth,
                .text_margin = 0,
                .gap = 2});
  view_.Settle();
  // Where the user is has to show again when other rows do.
  reveal_ |= std::exchange(layout_, Sheet().Layout()) != Sheet().Layout();
  if (!reveal_) return;
  reveal_ = false;
  const Cell at = view_.Cursor().At();
  const auto bounds = view_.Bounds();
  if (!Sheet().HiddenRows().Contains(at.row)) view_.RevealRow(at.row);
  if (at.column >= bounds.first_column && at.column <= bounds.last_column) view_.RevealColumn(at.column);
  const auto matches = found.ColumnsIn(at.row);
  if (!matches.empty() && !std::ranges::binary_search(matches, at.column))
    view_.RevealColumn(matches.front());
  view_.Settle();
}

void TableView::Draw(Canvas& canvas, const terminal::Rect& area, const Highlight& highlight, bool focused) {
  constexpr int32_t kRoomForLetters = 6;  // rows
  const bool letters = area.height >= kRoomForLetters;
  Follow();
  if (area.height < 2 || area.width <= view_.HeaderWidth()) return;
  const Matches found(&Sheet(), highlight);
  Scroll(area, letters, found);
  for (const auto& column : view_.Columns()) {
    if (!letters || column.start >= area.width) break;
    const Style style = column.index == view_.Cursor().At().column ? Style::Bold : Style::Dim;
    canvas.Write({area.left + column.start, area.top}, ColumnLetters(column.index), style,
                 std::min(column.size, area.width - column.start));
  }
  for (const auto& row : view_.Rows()) {
    DrawRow(canvas, row.index, {area.left, area.top + row.start}, highlight, focused);
    MarkMatchesBeside(canvas, row.index, area.top + row.start, found);
  }
}

// At the edges, where matches of a row lie off the screen.
void TableView::MarkMatchesBeside(Canvas& canvas, int32_t row, int32_t y, const Matches& found) const {
  const auto columns = view_.Columns();
  bool left = false;
  bool right = false;
  for (const int32_t match : found.ColumnsIn(row)) {
    if (std::ranges::find(columns, match, &sheetview::Strip::index) != columns.end()) continue;
    (match > columns.back().index ? right : left) = true;
  }
  if (left) canvas.Put({area_.left + view_.HeaderWidth() - 2, y}, terminal::MakeGlyph(U'‹'), Style::Match);
  if (right) canvas.Put({area_.left + area_.width - 1, y}, terminal::MakeGlyph(U'›'), Style::Match);
}

void TableView::DrawRow(Canvas& canvas, int32_t row, terminal::Point at, const Highlight& highlight,
                        bool focused) {
  const int32_t first = FirstRow();
  const bool header = row < first;
  const auto number = ToText(row);
  const Cell here = view_.Cursor().At();
  const int32_t line = at.x + view_.HeaderWidth() - 2;
  canvas.Write({line - static_cast<int32_t>(number.size()), at.y}, number,
               row == here.row ? Style::Bold : Style::Dim);
  const bool gap = row > first && Sheet().HiddenRows().Contains(row - 1);
  canvas.Put({line, at.y}, terminal::MakeGlyph(gap ? U'╪' : U'│'), gap ? Style::Gap : Style::Dim);
  CellReader reader(Sheet().Text(), false);
  for (const auto& column : view_.Columns()) {
    const Cell cell{row, column.index};
    Style style = header ? Style::Header : Style::Normal;
    if (cell == here) {
      style = focused ? Style::Cursor : Style::Selected;
    } else if (view_.Cursor().IsSelected(cell)) {
      style = Style::Selected;
    }
    const int32_t size = std::min(column.size, area_.width - column.start);
    DrawCell(canvas, cell, {at.x + column.start, at.y, size, 1}, reader.Cell(row, column.index), highlight,
             style);
  }
}

void TableView::DrawCell(Canvas& canvas, Cell cell, const terminal::Rect& place, std::string_view stored,
                         const Highlight& highlight, Style style) const {
  const auto text = Beginning(stored);
  const int32_t width = terminal::WidthOf(text);
  std::vector<TextSpan> spans;
  if (highlight.Covers(cell.row, cell.column)) spans = highlight.In(text);
  const Style match = style == Style::Normal || style == Style::Header ? Style::Match : Style::CursorMatch;
  canvas.Fill(place, U' ', style);
  int32_t x = place.left;
  const int32_t end = place.left + place.width - (width > place.width ? 1 : 0);
  if (IsNumber(stored) && width < place.width && cell.row >= FirstRow()) x += place.width - width;
  std::u16string_view rest = text;
  auto span = spans.begin();
  while (!rest.empty()) {
    const std::size_t offset = text.size() - rest.size();
    while (span != spans.end() && span->end <= offset) ++span;
    const auto glyph = terminal::TakeGlyph(rest);
    const bool in_match = span != spans.end() && span->begin <= offset;
    if (x + glyph.width > end) {
      // A match that is cut off shows in the sign that something is.
      if (width > place.width)
        canvas.Put({end, place.top}, terminal::MakeGlyph(U'…'), span != spans.end() ? match : style);
      return;
    }
    canvas.Put({x, place.top}, glyph, in_match ? match : style);
    x += glyph.width;
  }
}

}  // namespace rowlark
