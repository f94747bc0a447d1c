// Events of Excel's workbooks.
#pragma once

#include <functional>

#include <oaidl.h>

#include "util/Event.h"
#include "util/Trace.h"

namespace rowlark::windows {

// SheetSelectionChange of a workbook, until the connection goes. What the handler throws the trace is told,
// which may be null. Throws host::Error when the workbook raises no events.
[[nodiscard]] Connection ListenToSelection(IDispatch& workbook,
                                           std::function<void(IDispatch& sheet, IDispatch& target)> handler,
                                           Trace* trace);

}  // namespace rowlark::windows
