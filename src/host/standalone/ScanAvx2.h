#pragma once

#include <cstddef>

namespace rowlark::standalone {

const char* ScanAvx2(const char* begin, const char* end, const char* needle, std::size_t length,
                     std::size_t rare1, std::size_t rare2);

}  // namespace rowlark::standalone
