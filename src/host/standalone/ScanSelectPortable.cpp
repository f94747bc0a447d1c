#include "host/standalone/Scan.h"

namespace rowlark::standalone {

const ScanKernel& SelectScan() { return kPortableScan; }

}  // namespace rowlark::standalone
