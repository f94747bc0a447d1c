// Where programs find what was installed with them.
#pragma once

#include <filesystem>
#include <vector>

namespace rowlark::platform {

// Folders that may hold data of the program, the likeliest first: where the program lies, where its data is
// installed beside it (../share/rowlark), "rowlark" in the data folders of the user and in those of the
// system. None of them has to be there; there is at least one.
std::vector<std::filesystem::path> DataFolders();

}  // namespace rowlark::platform
