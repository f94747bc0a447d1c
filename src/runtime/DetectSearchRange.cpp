#include "runtime/DetectSearchRange.h"

#include <algorithm>

#include "runtime/Failure.h"

namespace rowlark {

namespace {

// Closes the bounds of one direction; asks the host for no more than it needs.
template <class First, class Count>
void Close(int32_t& first, int32_t& last, First used_first, Count used_count) {
  if (first > 0 && last > 0) return;
  const int32_t start = used_first();
  if (last <= 0) last = start + used_count() - 1;
  if (first <= 0) first = start;
}

}  // namespace

DetectedRange DetectSearchRange(const host::Worksheet& sheet, Block block) {
  DetectedRange detected{block};
  auto& closed = detected.block;
  if (sheet.AutoFilterMode()) {
    detected.filtered = true;
    closed = Block::Of(*Require(sheet.AutoFilter())->Range());
    ++closed.first_row;
    if (closed.first_row > closed.last_row) closed.last_row = closed.first_row + 1;
    return detected;
  }
  if (block.IsClosed()) return detected;
  detected.automatic =
      block.first_row <= 0 && block.first_column <= 0 && block.last_row <= 0 && block.last_column <= 0;
  detected.ends_used = block.last_row <= 0;
  const auto used = sheet.UsedRange();
  Close(
      closed.first_column, closed.last_column, [&] { return used->Column(); },
      [&] { return used->ColumnsCount(); });
  Close(
      closed.first_row, closed.last_row, [&] { return used->Row(); }, [&] { return used->RowsCount(); });
  return detected;
}

Ref<host::Range> RangeOnSheet(const host::Worksheet& sheet, Block& block) {
  try {
    return sheet.Range(block.Address());
  } catch (const host::Error&) {
    const auto first = CellOnSheet(sheet, block.first_row, block.first_column);
    const auto last = CellOnSheet(sheet, block.last_row, block.last_column);
    return sheet.Range(*first, *last);
  }
}

Ref<host::Range> CellOnSheet(const host::Worksheet& sheet, int32_t& row, int32_t& column) {
  try {
    return sheet.Cells(row, column);
  } catch (const host::Error&) {
    // Asked for only now: every search forms cells, and hardly any lies off the sheet.
    const auto cells = sheet.Cells();
    row = std::clamp(row, 1, cells->RowsCount());
    column = std::clamp(column, 1, cells->ColumnsCount());
    return sheet.Cells(row, column);
  }
}

}  // namespace rowlark
