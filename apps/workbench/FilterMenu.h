// The menu of a filter button (simple criteria for one column), and filters as a whole.
#pragma once

#include <windows.h>

#include "host/standalone/Worksheet.h"

namespace rowlark::workbench {

// Shows the menu at that place of the screen and applies what the user picks. The column (counted in the
// sheet) has a filter. Throws host::Error.
void ShowFilterMenu(HWND owner, standalone::Worksheet& sheet, int32_t column, POINT where);

// Filters the table around the active cell, or no longer filters. Throws host::Error.
void ToggleFilter(standalone::Worksheet& sheet);
// Shows all rows; the filter stays. Throws host::Error.
void ClearFilters(standalone::Worksheet& sheet);

}  // namespace rowlark::workbench
