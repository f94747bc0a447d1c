#include "tables/MemoryBound.h"

#include <unistd.h>

namespace rowlark {

std::uint64_t PhysicalMemory() {
  return static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES)) *
         static_cast<std::uint64_t>(::sysconf(_SC_PAGE_SIZE));
}

}  // namespace rowlark
