// What the classes of ranges are built on: the range behind an object, and the parts that its indices name.
#pragma once

#include "Classes.h"

namespace rowlark::workbench {

// Both fail once the workbook has been closed.
inline standalone::Range& RangeOf(const Object& object) {
  auto& range = object.Core<standalone::Range>();
  range.Sheet().RequireOpen();
  return range;
}
inline standalone::Range& RangeOf(const Call& call) { return RangeOf(call.Self()); }

inline Ref<host::Range> MakeRange(const Call& call, const Block& area) {
  return RangeOf(call).Sheet().MakeRange(area);
}

inline bool IsOneCell(const Block& area) { return area.Rows() == 1 && area.Columns() == 1; }
inline bool SpansColumns(const Block& area) { return area.Columns() == standalone::kMaxColumn; }
inline bool SpansRows(const Block& area) { return area.Rows() == standalone::kMaxRow; }

// Item(RowIndex, [ColumnIndex]): counted in cells, rows or columns, as the class of the range says; rows and
// columns by their names too.
void RangeItem(Call& call);

// Of all areas, one after the other, each row after row.
int64_t CountRangeCells(Object& range);
void RangeCellAt(Call& call, int64_t index);
// Of the first area.
void RangeRowAt(Call& call, int64_t index);
void RangeColumnAt(Call& call, int64_t index);

}  // namespace rowlark::workbench
