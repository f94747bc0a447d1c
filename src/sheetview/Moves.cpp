#include "sheetview/Moves.h"

#include <algorithm>

namespace rowlark::sheetview {
namespace {

using standalone::kMaxColumn;
using standalone::kMaxRow;
using standalone::Worksheet;

bool HasText(const Worksheet& sheet, Cell cell) { return !sheet.Text().Cell(cell.row, cell.column).empty(); }

// The cell of the used range that is met first on the way, or nothing: all cells there are empty.
bool EntersUsedRange(const Block& used, Cell& cell, Direction direction) {
  const bool in_columns = cell.column >= used.first_column && cell.column <= used.last_column;
  const bool in_rows = cell.row >= used.first_row && cell.row <= used.last_row;
  switch (direction) {
    case Direction::Up:
      cell.row = std::min(cell.row, used.last_row);
      return in_columns && cell.row >= used.first_row;
    case Direction::Down:
      cell.row = std::max(cell.row, used.first_row);
      return in_columns && cell.row <= used.last_row;
    case Direction::Left:
      cell.column = std::min(cell.column, used.last_column);
      return in_rows && cell.column >= used.first_column;
    case Direction::Right:
      cell.column = std::max(cell.column, used.first_column);
      return in_rows && cell.column <= used.last_column;
  }
  return false;
}

Cell SheetEdge(const Worksheet& sheet, Cell from, Direction direction) {
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

int32_t StepRows(const Worksheet& sheet, int32_t row, int32_t count, const Block& bounds) {
  const auto& hidden = sheet.HiddenRows();
  for (; count > 0; --count) {
    const int32_t next = hidden.Next(std::max(row + 1, bounds.first_row), bounds.last_row, false);
    if (next > bounds.last_row) break;
    row = next;
  }
  for (; count < 0; ++count) {
    const int32_t previous = hidden.Previous(std::min(row - 1, bounds.last_row), bounds.first_row, false);
    if (previous < bounds.first_row) break;
    row = previous;
  }
  return row;
}

Cell Step(const Worksheet& sheet, Cell from, Direction direction) {
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

Cell StepToEdge(const Worksheet& sheet, Cell from, Direction direction) {
  const auto used = sheet.Text().Used();
  const Cell edge = SheetEdge(sheet, from, direction);
  if (!used) return edge;
  Cell next = Step(sheet, from, direction);
  if (HasText(sheet, from) && HasText(sheet, next)) {
    for (;;) {
      const Cell beyond = Step(sheet, next, direction);
      if (beyond == next || !HasText(sheet, beyond)) return next;
      next = beyond;
    }
  }
  if (!EntersUsedRange(*used, next, direction)) return edge;
  if (sheet.HiddenRows().Contains(next.row)) next = Step(sheet, next, direction);
  while (used->Contains(next.row, next.column)) {
    if (HasText(sheet, next)) return next;
    const Cell beyond = Step(sheet, next, direction);
    if (beyond == next) break;
    next = beyond;
  }
  return edge;
}

Cell LastUsed(const Worksheet& sheet) {
  const auto used = sheet.UsedBlock();
  const int32_t row = sheet.HiddenRows().Previous(used.last_row, 1, false);
  return {std::max(row, used.first_row), used.last_column};
}

}  // namespace rowlark::sheetview
