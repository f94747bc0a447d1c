#include "host/cells/Scan.h"
#include "host/cells/ScanAvx2.h"

namespace rowlark::cells {

const ScanKernel& SelectScan() {
  const bool avx2 = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 &&
                    __builtin_cpu_supports("popcnt") != 0;
  return avx2 ? kAvx2Scan : kPortableScan;
}

}  // namespace rowlark::cells
