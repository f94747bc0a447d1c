#include "runtime/DetectSearchRange.h"

#include "runtime/Failure.h"

namespace rowlark {

void DetectSearchRange(host::Worksheet& sheet, clsVTRLKItem& profile) {
  if (sheet.AutoFilterMode()) {
    const auto range = Require(sheet.AutoFilter())->Range();
    profile.SetEndCol(range->Column() + range->ColumnsCount() - 1);
    profile.SetStartCol(range->Column());
    profile.SetStartRow(range->Row() + 1);
    profile.SetEndRow(range->Row() + range->RowsCount() - 1);
    if (profile.StartRow() > profile.EndRow()) profile.SetEndRow(profile.StartRow() + 1);
    return;
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
}

}  // namespace rowlark
