// Pictures of windows.
#pragma once

#include <windows.h>

#include <string>

namespace rowlark::gallery {

// Writes what the screen shows of a window, its frame included, as a bitmap. Throws std::runtime_error.
void SavePicture(HWND window, const std::wstring& file);

}  // namespace rowlark::gallery
