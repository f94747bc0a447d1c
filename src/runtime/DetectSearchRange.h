#pragma once

#include "host/spreadsheet.h"
#include "settings/clsVTRLKItem.h"

namespace rowlark {

// Completes the profile's range: from the sheet's AutoFilter, whose range without the header overrides the
// profile, or else, bound by bound where the profile leaves one open (0 or below), from the used range.
// Throws host::Error.
void DetectSearchRange(host::Worksheet& sheet, clsVTRLKItem& profile);

}  // namespace rowlark
