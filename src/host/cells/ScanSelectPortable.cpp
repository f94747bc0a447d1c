#include "host/cells/Scan.h"

namespace rowlark::cells {

const ScanKernel& SelectScan() { return kPortableScan; }

}  // namespace rowlark::cells
