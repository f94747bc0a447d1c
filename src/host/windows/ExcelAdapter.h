// Microsoft Excel behind the seam: every operation is a late-bound call of the object model, and nothing is
// asked that the operation does not need. A failed call is a host::Error at once, also when Excel is busy
// (a cell is being edited, a dialog is open): who is called from Excel's own thread must not wait for it.
//
// Invocations per operation, where it is not one:
//   RowsCount, ColumnsCount, AreasCount, Areas, EntireRowHidden, SetEntireRowHidden      2
//   FiltersCount, Filters, CommandBars, AddControl                                       2
//   Value                                       1, and one for what the host alone can show
//   SetValue                                    1, and one where the host does not know the user's locale
// Selection, sheets and command bar controls are asked for the id of a name, to tell their class.
//
// HideRows makes 3 (Range, EntireRow, Hidden) for as many runs of rows as an address of 255 characters names.
// The version is asked once.
//
// So a search makes 2 invocations for a match (FindNext, Row; with chosen columns also Column; where rows may
// be hidden also EntireRow and Hidden), 3 for about 20 to 40 runs of rows that it hides, and about 40 for
// itself.
#pragma once

#include <oaidl.h>

#include "host/spreadsheet.h"
#include "util/Ref.h"
#include "util/Trace.h"

namespace rowlark::windows {

// `application` is Excel's Application object; nothing for null. Handles belong to the calling thread and
// hold the objects they stand for. The trace, which outlives them where there is one, is told what handlers
// of events throw.
Ref<host::Application> WrapExcel(IDispatch* application, Trace* trace = nullptr);

// A sheet that a client passes; nothing for null.
Ref<host::Worksheet> WrapWorksheet(IDispatch* sheet);

}  // namespace rowlark::windows
