// Which part of a range its indices name, and how a range is counted.
#include "RangeItems.h"

#include <optional>

namespace rowlark::workbench {
namespace {

using standalone::kMaxColumn;
using standalone::kMaxRow;

// Of the first area: from the given row and column on, which count from its first cell, so many.
Block Part(const Call& call, int64_t row, int64_t column, int32_t rows = 1, int32_t columns = 1) {
  const auto& first = RangeOf(call).Areas().front();
  row += first.first_row - 1;
  column += first.first_column - 1;
  if (row < 1 || row + rows - 1 > kMaxRow || column < 1 || column + columns - 1 > kMaxColumn) {
    Fail(u"Application-defined or object-defined error");
  }
  const auto r = static_cast<int32_t>(row);
  const auto c = static_cast<int32_t>(column);
  return {r, c, r + rows - 1, c + columns - 1};
}

// What a text argument names: "5" and "2:4" whole rows, "B" and "B:D" whole columns.
std::optional<Block> Strip(const Call& call, std::size_t argument) {
  if (!call.IsText(argument)) return std::nullopt;
  const auto text = call.Text(argument);
  return standalone::ParseArea(text.find(u':') == std::u16string::npos ? text + u":" + text : text);
}

int32_t ColumnIndex(const Call& call, std::size_t argument) {
  const auto strip = Strip(call, argument);
  return strip && SpansRows(*strip) && strip->Columns() == 1 ? strip->first_column : call.Int(argument);
}

}  // namespace

int64_t CountRangeCells(Object& object) {
  int64_t count = 0;
  for (const auto& area : RangeOf(object).Areas()) count += int64_t{area.Rows()} * area.Columns();
  return count;
}

void RangeCellAt(Call& call, int64_t index) {
  int64_t rest = index - 1;
  for (const auto& area : RangeOf(call).Areas()) {
    const int64_t cells = int64_t{area.Rows()} * area.Columns();
    if (rest < cells) {
      const auto row = area.first_row + static_cast<int32_t>(rest / area.Columns());
      const auto column = area.first_column + static_cast<int32_t>(rest % area.Columns());
      return call.Return(kRange, MakeRange(call, {row, column, row, column}));
    }
    rest -= cells;
  }
}

void RangeRowAt(Call& call, int64_t index) {
  call.Return(kRangeRows, MakeRange(call, Part(call, index, 1, 1, RangeOf(call).ColumnsCount())));
}

void RangeColumnAt(Call& call, int64_t index) {
  call.Return(kRangeColumns, MakeRange(call, Part(call, 1, index, RangeOf(call).RowsCount(), 1)));
}

void RangeItem(Call& call) {
  const auto& type = call.Self().Type();
  if (call.Has(1)) return call.Return(kRange, MakeRange(call, Part(call, call.Int(0), ColumnIndex(call, 1))));
  const auto strip = &type == &kRange ? std::nullopt : Strip(call, 0);
  if (strip && &type == &kRangeRows && SpansColumns(*strip)) {
    const int32_t columns = RangeOf(call).ColumnsCount();
    return call.Return(type, MakeRange(call, Part(call, strip->first_row, 1, strip->Rows(), columns)));
  }
  if (strip && &type == &kRangeColumns && SpansRows(*strip)) {
    const int32_t rows = RangeOf(call).RowsCount();
    return call.Return(type, MakeRange(call, Part(call, 1, strip->first_column, rows, strip->Columns())));
  }
  const int64_t index = call.Int(0);
  if (&type != &kRange) return type.item(call, index);
  // Row after row of the first area, and on below it or back above it.
  const int64_t columns = RangeOf(call).ColumnsCount();
  const int64_t row = index > 0 ? (index - 1) / columns : -((columns - index) / columns);
  call.Return(kRange, MakeRange(call, Part(call, row + 1, index - row * columns)));
}

}  // namespace rowlark::workbench
