// Events of Excel's workbooks.
#pragma once

#include <functional>

#include <oaidl.h>

#include "util/Event.h"

namespace rowlark::windows {

// SheetSelectionChange of a workbook, until the connection goes. What the handler throws goes nowhere. Throws
// host::Error when the workbook raises no events.
[[nodiscard]] Connection ListenToSelection(IDispatch& workbook,
                                           std::function<void(IDispatch& sheet, IDispatch& target)> handler);

}  // namespace rowlark::windows
