// Finds a literal in a buffer of bytes. The inner loop of every search over a sheet.
#pragma once

#include <cstddef>

namespace rowlark::standalone {

// Bytes that must lie behind the last one scanned, so that a vector may be loaded there.
inline constexpr std::size_t kScanPadding = 64;

// The first occurrence of the needle that starts at or after `begin` and ends at or before `end`; `end` when
// there is none. `rare1` and `rare2` are the offsets of the two bytes of the needle (one and the same only
// when it is one byte long) that are rarest in the text: they are looked for first. kScanPadding bytes behind
// `end` are readable.
using ScanFunction = const char* (*)(const char* begin, const char* end, const char* needle,
                                     std::size_t length, std::size_t rare1, std::size_t rare2);

const char* ScanPortable(const char* begin, const char* end, const char* needle, std::size_t length,
                         std::size_t rare1, std::size_t rare2);

// The fastest scan that this processor runs.
ScanFunction SelectScan();

}  // namespace rowlark::standalone
