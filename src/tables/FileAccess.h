// What the user may do with files, and where there is room for what must not be lost.
#pragma once

#include <filesystem>

namespace rowlark {

// Whether a file could be given new content, or made, as far as that can be told beforehand.
bool IsReplaceable(const std::filesystem::path& file);

// A folder that is the user's alone among the temporary files, made when missing; empty where there is none.
std::filesystem::path PrivateTemporaryFolder();

}  // namespace rowlark
