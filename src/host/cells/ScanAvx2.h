#pragma once

#include "host/cells/Scan.h"

namespace rowlark::cells {

extern const ScanKernel kAvx2Scan;

}  // namespace rowlark::cells
