// Where keys lead on a sheet. Hidden rows are passed over. Rows and columns count from 1.
#pragma once

#include <cstdint>

#include "host/standalone/Worksheet.h"

namespace rowlark::sheetview {

enum class Direction { Up, Down, Left, Right };

using standalone::Cell;

inline constexpr Block kWholeSheet{1, 1, standalone::kMaxRow, standalone::kMaxColumn};

// The visible row that lies so many visible rows below (above, when negative) a row; the last one on the way
// when the rows of `bounds` end before, and the row itself when there is none.
int32_t StepRows(const standalone::Worksheet& sheet, int32_t row, int32_t count,
                 const Block& bounds = kWholeSheet);

// The neighbour in that direction; the cell itself at the sheet's edge.
Cell Step(const standalone::Worksheet& sheet, Cell from, Direction direction);

// The end of the block of cells with a text, or the next such cell, or else the sheet's edge.
Cell StepToEdge(const standalone::Worksheet& sheet, Cell from, Direction direction);

// The last cell in use.
Cell LastUsed(const standalone::Worksheet& sheet);

}  // namespace rowlark::sheetview
