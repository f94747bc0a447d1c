#include "host/standalone/Scan.h"
#include "host/standalone/ScanAvx2.h"

namespace rowlark::standalone {

const ScanKernel& SelectScan() {
  const bool avx2 = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 &&
                    __builtin_cpu_supports("popcnt") != 0;
  return avx2 ? kAvx2Scan : kPortableScan;
}

}  // namespace rowlark::standalone
