#include <algorithm>
#include <cstring>

#include "host/cells/Scan.h"

namespace rowlark::cells {
namespace {

const char* Find(const char* begin, const char* end, const char* needle, std::size_t length,
                 std::size_t rare1, std::size_t rare2) {
  if (static_cast<std::size_t>(end - begin) < length) return end;
  const char* const last = end - length;  // the last place where it can start
  while (begin <= last) {
    const auto* hit = static_cast<const char*>(
        std::memchr(begin + rare1, needle[rare1], static_cast<std::size_t>(last - begin) + 1));
    if (hit == nullptr) return end;
    begin = hit - rare1;
    if (begin[rare2] == needle[rare2] && std::memcmp(begin, needle, length) == 0) return begin;
    ++begin;
  }
  return end;
}

int32_t Count(const char* begin, const char* end, char byte) {
  return static_cast<int32_t>(std::count(begin, end, byte));
}

}  // namespace

const ScanKernel kPortableScan = {Find, Count};

}  // namespace rowlark::cells
