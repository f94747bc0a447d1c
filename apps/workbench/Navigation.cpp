#include "Navigation.h"

#include <algorithm>

namespace rowlark::workbench {
namespace {

using standalone::kMaxColumn;
using standalone::kMaxRow;
using standalone::Rect;
using standalone::Worksheet;

bool HasText(const Worksheet& sheet, Place place) {
  return !sheet.Text().Cell(place.row, place.column).empty();
}

// The cell of the used range that is met first on the way, or nothing: all cells there are empty.
bool EntersUsedRange(const Rect& used, Place& place, Direction direction) {
  const bool in_columns = place.column >= used.first_column && place.column <= used.last_column;
  const bool in_rows = place.row >= used.first_row && place.row <= used.last_row;
  switch (direction) {
    case Direction::Up:
      place.row = std::min(place.row, used.last_row);
      return in_columns && place.row >= used.first_row;
    case Direction::Down:
      place.row = std::max(place.row, used.first_row);
      return in_columns && place.row <= used.last_row;
    case Direction::Left:
      place.column = std::min(place.column, used.last_column);
      return in_rows && place.column >= used.first_column;
    case Direction::Right:
      place.column = std::max(place.column, used.first_column);
      return in_rows && place.column <= used.last_column;
  }
  return false;
}

Place SheetEdge(const Worksheet& sheet, Place from, Direction direction) {
  const auto& hidden = sheet.HiddenRows();
  switch (direction) {
    case Direction::Up:
      return {std::min(hidden.Next(1, kMaxRow, false), from.row), from.column};
    case Direction::Down:
      return {std::max(hidden.Previous(kMaxRow, 1, false), from.row), from.column};
    case Direction::Left:
      return {from.row, 1};
    case Direction::Right:
      return {from.row, kMaxColumn};
  }
  return from;
}

}  // namespace

int32_t StepRows(const Worksheet& sheet, int32_t row, int32_t count) {
  const auto& hidden = sheet.HiddenRows();
  for (; count > 0; --count) {
    const int32_t next = hidden.Next(row + 1, kMaxRow, false);
    if (next > kMaxRow) break;
    row = next;
  }
  for (; count < 0; ++count) {
    const int32_t previous = hidden.Previous(row - 1, 1, false);
    if (previous < 1) break;
    row = previous;
  }
  return row;
}

Place Step(const Worksheet& sheet, Place from, Direction direction) {
  switch (direction) {
    case Direction::Up:
      return {StepRows(sheet, from.row, -1), from.column};
    case Direction::Down:
      return {StepRows(sheet, from.row, 1), from.column};
    case Direction::Left:
      return {from.row, std::max(from.column - 1, 1)};
    case Direction::Right:
      return {from.row, std::min(from.column + 1, kMaxColumn)};
  }
  return from;
}

Place StepToEdge(const Worksheet& sheet, Place from, Direction direction) {
  const auto used = sheet.Text().Used();
  const Place edge = SheetEdge(sheet, from, direction);
  if (!used) return edge;
  Place next = Step(sheet, from, direction);
  if (HasText(sheet, from) && HasText(sheet, next)) {
    for (;;) {
      const Place beyond = Step(sheet, next, direction);
      if (beyond == next || !HasText(sheet, beyond)) return next;
      next = beyond;
    }
  }
  if (!EntersUsedRange(*used, next, direction)) return edge;
  if (sheet.HiddenRows().Contains(next.row)) next = Step(sheet, next, direction);
  while (used->Contains(next.row, next.column)) {
    if (HasText(sheet, next)) return next;
    const Place beyond = Step(sheet, next, direction);
    if (beyond == next) break;
    next = beyond;
  }
  return edge;
}

Place LastUsed(const Worksheet& sheet) {
  const auto used = sheet.Text().Used().value_or(Rect{});
  const int32_t row = sheet.HiddenRows().Previous(used.last_row, 1, false);
  return {std::max(row, used.first_row), used.last_column};
}

Place MovingCorner(const Worksheet& sheet) {
  const Rect active = sheet.ActiveCell();
  const Place here{active.first_row, active.first_column};
  const auto& areas = sheet.Selection();
  const auto area =
      std::ranges::find_if(areas, [&](const Rect& each) { return each.Contains(here.row, here.column); });
  if (area == areas.end()) return here;
  return {here.row == area->first_row ? area->last_row : area->first_row,
          here.column == area->first_column ? area->last_column : area->first_column};
}

void MoveTo(Worksheet& sheet, Place cell) {
  SelectArea(sheet, {cell.row, cell.column, cell.row, cell.column}, cell);
}

void ExtendTo(Worksheet& sheet, Place corner) {
  const Rect active = sheet.ActiveCell();
  SelectArea(sheet, Join(active, {corner.row, corner.column, corner.row, corner.column}),
             {active.first_row, active.first_column});
}

void SelectArea(Worksheet& sheet, const Rect& area, Place active, std::vector<Rect> others) {
  const Rect cell{active.row, active.column, active.row, active.column};
  others.push_back(area);
  if (sheet.Selection() == others && sheet.ActiveCell() == cell) return;
  std::u16string address;
  for (const auto& each : others) {
    if (!address.empty()) address += u',';
    AppendAddress(address, each);
  }
  sheet.Select(address);
  sheet.Activate({cell});
}

}  // namespace rowlark::workbench
