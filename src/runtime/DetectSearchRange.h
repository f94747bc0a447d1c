#pragma once

#include "host/spreadsheet.h"
#include "settings/clsVTRLKItem.h"

namespace rowlark {

// Completes the profile's range: from the sheet's AutoFilter, whose range without the header overrides the
// profile, or else, bound by bound where the profile leaves one open (0 or below), from the used range. True
// when the sheet has an AutoFilter. Throws host::Error.
bool DetectSearchRange(host::Worksheet& sheet, clsVTRLKItem& profile);

// The cell of a bound. A profile may have been made on a larger sheet (65,536 rows and 256 columns, or
// 1,048,576 and 16,384): a bound beyond this one is moved to its edge. Throws host::Error.
Ref<host::Range> CellOnSheet(const host::Worksheet& sheet, int32_t& row, int32_t& column);

}  // namespace rowlark
