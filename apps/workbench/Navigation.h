// Where keys lead on a sheet. Hidden rows are passed over.
#pragma once

#include <vector>

#include "host/standalone/Worksheet.h"

namespace rowlark::workbench {

enum class Direction { Up, Down, Left, Right };

// One cell, or the corner of a selection that moves; rows and columns from 1.
struct Place {
  int32_t row = 1;
  int32_t column = 1;
  friend bool operator==(const Place&, const Place&) = default;
};

// The visible row that lies so many visible rows below (above, when negative) a row; the last one on the way
// when the sheet ends before.
int32_t StepRows(const standalone::Worksheet& sheet, int32_t row, int32_t count);

// The neighbour in that direction; the place itself at the sheet's edge.
Place Step(const standalone::Worksheet& sheet, Place from, Direction direction);

// The end of the block of cells with a text, or the next such cell, or else the sheet's edge.
Place StepToEdge(const standalone::Worksheet& sheet, Place from, Direction direction);

// The last cell in use.
Place LastUsed(const standalone::Worksheet& sheet);

// The corner of the active area that lies opposite to the active cell: what Shift and a key move.
Place MovingCorner(const standalone::Worksheet& sheet);

// Selects one cell, or what lies between the active cell and `corner`; the active cell stays. Raises the
// sheet's event only where the selection changes.
void MoveTo(standalone::Worksheet& sheet, Place cell);
void ExtendTo(standalone::Worksheet& sheet, Place corner);
// Selects an area, beside others or alone, and makes one of its cells the active one.
void SelectArea(standalone::Worksheet& sheet, const standalone::Rect& area, Place active,
                std::vector<standalone::Rect> others = {});

}  // namespace rowlark::workbench
