#include "runtime/DetectSearchRange.h"

#include <algorithm>

#include "runtime/Failure.h"

namespace rowlark {

bool DetectSearchRange(host::Worksheet& sheet, clsVTRLKItem& profile) {
  if (sheet.AutoFilterMode()) {
    const auto range = Require(sheet.AutoFilter())->Range();
    profile.SetEndCol(range->Column() + range->ColumnsCount() - 1);
    profile.SetStartCol(range->Column());
    profile.SetStartRow(range->Row() + 1);
    profile.SetEndRow(range->Row() + range->RowsCount() - 1);
    if (profile.StartRow() > profile.EndRow()) profile.SetEndRow(profile.StartRow() + 1);
    return true;
  }
  const auto used = sheet.UsedRange();
  int taken = 0;
  if (profile.EndCol() <= 0) {
    profile.SetEndCol(used->Column() + used->ColumnsCount() - 1);
    ++taken;
  }
  if (profile.StartCol() <= 0) {
    profile.SetStartCol(used->Column());
    ++taken;
  }
  if (profile.StartRow() <= 0) {
    profile.SetStartRow(used->Row());
    ++taken;
  }
  if (profile.EndRow() <= 0) {
    profile.SetEndRow(used->Row() + used->RowsCount() - 1);
    ++taken;
  }
  profile.UsingAutoRange = taken == 4;
  return false;
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
