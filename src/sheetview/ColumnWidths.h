// How wide columns are: as wide as the text of their first rows, and of other rows that show. Only the
// columns that are asked for are looked at.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <unordered_map>

#include "host/standalone/Worksheet.h"

namespace rowlark::sheetview {

// The width that a cell's text takes, in the screen's unit.
using Measure = std::function<int32_t(std::string_view text)>;

class ColumnWidths {
 public:
  ColumnWidths(Ref<standalone::Worksheet> sheet, Measure measure)
      : sheet_(std::move(sheet)), measure_(std::move(measure)) {}

  // Of the widest text known of a column, with `head` beside that of the first row in use; 0 without a text.
  int32_t TextWidth(int32_t column, int32_t head);
  // Lets a row decide on these columns as well.
  void Include(int32_t row, int32_t first_column, int32_t last_column);
  // Begins anew: the text or what measures it has changed.
  void Forget() { widths_.clear(); }

 private:
  void MeasureFirstRows(int32_t column, int32_t head);

  Ref<standalone::Worksheet> sheet_;
  Measure measure_;
  std::unordered_map<int32_t, int32_t> widths_;
};

}  // namespace rowlark::sheetview
