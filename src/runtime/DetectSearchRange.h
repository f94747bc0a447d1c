#pragma once

#include "host/Block.h"
#include "host/spreadsheet.h"

namespace rowlark {

struct DetectedRange {
  Block block;             // closed
  bool filtered = false;   // it is that of the sheet's AutoFilter
  bool automatic = false;  // it is the used range, no bound having been given
  bool ends_used = false;  // its last row is that of the used range
};

// Completes a block: from the sheet's AutoFilter, whose range without the header overrides it, or else, bound
// by bound where one is open, from the used range. Throws host::Error.
DetectedRange DetectSearchRange(const host::Worksheet& sheet, Block block);

// The range of a closed block, and the cell of a bound. A profile may have been made on a larger sheet
// (65,536 rows and 256 columns, or 1,048,576 and 16,384): a bound beyond this one is moved to its edge. Both
// throw host::Error.
Ref<host::Range> RangeOnSheet(const host::Worksheet& sheet, Block& block);
Ref<host::Range> CellOnSheet(const host::Worksheet& sheet, int32_t& row, int32_t& column);

}  // namespace rowlark
