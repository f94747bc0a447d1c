#include "sheetview/SheetCursor.h"

#include <algorithm>
#include <utility>

namespace rowlark::sheetview {
namespace {

Block Between(Cell a, Cell b, Span span) {
  Block area = Join(Block::OfCell(a.row, a.column), Block::OfCell(b.row, b.column));
  if (span == Span::Rows || span == Span::Sheet) {
    area.first_column = kWholeSheet.first_column;
    area.last_column = kWholeSheet.last_column;
  }
  if (span == Span::Columns || span == Span::Sheet) {
    area.first_row = kWholeSheet.first_row;
    area.last_row = kWholeSheet.last_row;
  }
  return area;
}

}  // namespace

Cell SheetCursor::Active() const {
  const Block active = sheet_->ActiveCell();
  return {active.first_row, active.first_column};
}

Cell SheetCursor::MovingCorner() const {
  const Cell here = Active();
  const auto& areas = sheet_->Selection();
  const auto area = std::find_if(areas.rbegin(), areas.rend(),
                                 [&](const Block& each) { return each.Contains(here.row, here.column); });
  if (area == areas.rend()) return here;
  return {here.row == area->first_row ? area->last_row : area->first_row,
          here.column == area->first_column ? area->last_column : area->first_column};
}

bool SheetCursor::IsSelected(Cell cell) const {
  return std::ranges::any_of(sheet_->Selection(),
                             [&](const Block& area) { return area.Contains(cell.row, cell.column); });
}

bool SheetCursor::MoveTo(Cell cell, Span span, bool add) {
  Follow();
  beside_.clear();
  if (std::exchange(keep_, false) || add) beside_ = selected_;
  return Select(cell, cell, span);
}

bool SheetCursor::ExtendTo(Cell corner, Span span) {
  Follow();
  return Select(active_, corner, span);
}

bool SheetCursor::Select(Cell active, Cell corner, Span span) {
  at_ = corner;
  auto areas = beside_;
  areas.push_back(Between(active, corner, span));
  if (areas == selected_ && active == active_) return false;
  selected_ = areas;
  active_ = active;
  sheet_->Select(std::move(areas), active);
  return true;
}

bool SheetCursor::Follow() {
  if (sheet_->Selection() == selected_ && Active() == active_) return false;
  selected_ = sheet_->Selection();
  at_ = active_ = Active();
  beside_ = selected_;
  const auto area = std::find_if(beside_.rbegin(), beside_.rend(),
                                 [&](const Block& each) { return each.Contains(at_.row, at_.column); });
  if (area != beside_.rend()) beside_.erase(std::next(area).base());
  return true;
}

}  // namespace rowlark::sheetview
