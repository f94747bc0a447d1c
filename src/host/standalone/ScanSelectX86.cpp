#include "host/standalone/Scan.h"
#include "host/standalone/ScanAvx2.h"

namespace rowlark::standalone {

ScanFunction SelectScan() {
  return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 ? &ScanAvx2
                                                                                   : &ScanPortable;
}

}  // namespace rowlark::standalone
