// The classes of the object model, one table each, and what several of them give.
#pragma once

#include "Call.h"
#include "Members.h"

namespace rowlark::workbench {

extern const Class kApplication;
extern const Class kWorkbooks;  // of the application
extern const Class kWorkbook;
extern const Class kWorksheets;  // of a workbook
extern const Class kCharts;      // of a workbook
extern const Class kWorksheet;
extern const Class kChart;
extern const Class kRange;
extern const Class kRangeRows;     // a range that counts in rows
extern const Class kRangeColumns;  // a range that counts in columns
extern const Class kAreas;         // of a range
extern const Class kAutoFilter;
extern const Class kFilters;  // of an AutoFilter
extern const Class kFilter;
extern const Class kCommandBars;  // of the application
extern const Class kCommandBar;
extern const Class kBarControls;    // of a command bar
extern const Class kPopupControls;  // of a pop-up
extern const Class kCommandBarButton;
extern const Class kCommandBarPopup;

// A sheet of cells or a chart, or Nothing.
void ReturnSheet(Call& call, const Ref<host::Worksheet>& sheet);
// What a sheet's Range(Cell1, [Cell2]) gives.
void ReturnRange(Call& call, const host::Worksheet& sheet);
// For the member "Application".
void ReturnApplication(Call& call);

}  // namespace rowlark::workbench
