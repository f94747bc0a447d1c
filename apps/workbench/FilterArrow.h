// The button in the head of a column that has a filter.
#pragma once

#include <optional>

#include "sheetview/SheetView.h"

namespace rowlark::workbench {

// Where it stands; nothing where there is none on the screen.
std::optional<sheetview::Box> FilterArrow(const sheetview::SheetView& view, int32_t column);

inline bool Contains(const sheetview::Box& box, int32_t x, int32_t y) {
  return x >= box.left && x < box.right && y >= box.top && y < box.bottom;
}

}  // namespace rowlark::workbench
