#include "sheetview/ColumnWidths.h"

#include <algorithm>

#include "host/cells/CellText.h"

namespace rowlark::sheetview {

int32_t ColumnWidths::TextWidth(int32_t column, int32_t head) {
  if (!widths_.contains(column)) MeasureFirstRows(column, head);
  return widths_[column];
}

void ColumnWidths::Include(int32_t row, int32_t first_column, int32_t last_column) {
  standalone::CellReader reader(sheet_->Text(), false);
  for (int32_t column = first_column; column <= last_column; ++column) {
    const auto known = widths_.find(column);
    const auto text = reader.Cell(row, column);
    if (known != widths_.end() && !text.empty()) known->second = std::max(known->second, measure_(text));
  }
}

// Measures some columns at once, since a row is read from its first cell on.
void ColumnWidths::MeasureFirstRows(int32_t column, int32_t head) {
  constexpr int32_t kRows = 300;
  constexpr int32_t kColumns = 32;
  const auto& used = sheet_->Text().Used();
  const int32_t last_column = used ? std::min(column + kColumns, used->last_column) : 0;
  const int32_t last_row = used ? std::min(used->last_row, used->first_row + kRows - 1) : 0;
  for (int32_t each = column; each <= last_column; ++each) widths_.try_emplace(each, 0);
  for (int32_t row = used ? used->first_row : 1; row <= last_row; ++row) {
    standalone::CellReader reader(sheet_->Text(), false);
    for (int32_t each = column; each <= last_column; ++each) {
      const auto text = reader.Cell(row, each);
      if (text.empty()) continue;
      auto& width = widths_[each];
      width = std::max(width, measure_(text) + (row == used->first_row ? head : 0));
    }
  }
}

}  // namespace rowlark::sheetview
