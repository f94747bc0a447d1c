// Draws the part of a sheet that a view shows.
#pragma once

#include <windows.h>

#include "sheetview/SheetView.h"

namespace rowlark::workbench {

// Draws headers, cells, selection and filter buttons onto `target`, a surface of that size; `font` is that of
// all texts. Colours are the system's.
void PaintGrid(HDC target, SIZE size, HFONT font, const sheetview::SheetView& view);

}  // namespace rowlark::workbench
