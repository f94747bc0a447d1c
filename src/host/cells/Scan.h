// The inner loops of every search over a sheet: finding a literal in a buffer of bytes, counting a byte.
#pragma once

#include <cstddef>
#include <cstdint>

namespace rowlark::cells {

// Bytes that must be readable behind the end of what is scanned, so that a whole vector may be loaded there.
inline constexpr std::size_t kScanPadding = 64;

struct ScanKernel {
  // The first occurrence of the needle that starts at or after `begin` and ends at or before `end`; `end`
  // when there is none. `rare1` and `rare2` are the offsets of the two bytes of the needle (one and the same
  // only when it is one byte long) that are rarest in the text: they are looked for first.
  const char* (*find)(const char* begin, const char* end, const char* needle, std::size_t length,
                      std::size_t rare1, std::size_t rare2);
  // How often `byte` stands between `begin` and `end`.
  int32_t (*count)(const char* begin, const char* end, char byte);
};

extern const ScanKernel kPortableScan;

// The fastest kernel that this processor runs.
const ScanKernel& SelectScan();

}  // namespace rowlark::cells
