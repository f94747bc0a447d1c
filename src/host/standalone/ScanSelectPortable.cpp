#include "host/standalone/Scan.h"

namespace rowlark::standalone {

ScanFunction SelectScan() { return &ScanPortable; }

}  // namespace rowlark::standalone
