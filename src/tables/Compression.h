// Compressed files: gzip, bzip2, xz and zstd.
#pragma once

#include <string_view>

#include "tables/Chunks.h"

namespace rowlark {

// Whether these bytes are the beginning of a compressed file.
bool IsCompressed(std::string_view beginning);
// Whether more bytes could make them one.
bool MayBeCompressed(std::string_view beginning);

// What the chunks of a compressed file hold. A chunk throws std::runtime_error where the file is damaged or
// ends early.
Chunks Decompressed(Chunks chunks);

}  // namespace rowlark
