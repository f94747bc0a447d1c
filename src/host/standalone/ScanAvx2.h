#pragma once

#include "host/standalone/Scan.h"

namespace rowlark::standalone {

extern const ScanKernel kAvx2Scan;

}  // namespace rowlark::standalone
