#include "FilterArrow.h"

#include <algorithm>

namespace rowlark::workbench {

std::optional<sheetview::Box> FilterArrow(const sheetview::SheetView& view, int32_t column) {
  const auto& sheet = view.Sheet();
  if (!sheet.AutoFilterMode()) return std::nullopt;
  const Block& range = sheet.Filter().range;
  if (!range.Contains(range.first_row, column)) return std::nullopt;
  auto box = view.BoxOf({range.first_row, column, range.first_row, column});
  if (box) box->left = std::max(box->left, box->right - (box->bottom - box->top));
  return box;
}

}  // namespace rowlark::workbench
