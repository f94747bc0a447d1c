#include "Screen.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "util/windows/Handles.h"

namespace rowlark::gallery {

void SavePicture(HWND window, const std::wstring& file) {
  RECT area{};
  ::GetWindowRect(window, &area);
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = area.right - area.left;
  header.biHeight = area.bottom - area.top;
  header.biPlanes = 1;
  header.biBitCount = 32;
  std::vector<char> pixels(static_cast<std::size_t>(header.biWidth) *
                           static_cast<std::size_t>(header.biHeight) * 4);

  const windows::ScreenContext screen(::GetDC(nullptr));
  const windows::MemoryContext context(::CreateCompatibleDC(*screen));
  const windows::GdiObject<HBITMAP> bitmap(
      ::CreateCompatibleBitmap(*screen, header.biWidth, header.biHeight));
  {
    const windows::SelectedObject selected(*context, *bitmap);
    ::BitBlt(*context, 0, 0, header.biWidth, header.biHeight, *screen, area.left, area.top, SRCCOPY);
  }
  const int lines = ::GetDIBits(*context, *bitmap, 0, static_cast<UINT>(header.biHeight), pixels.data(),
                                reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS);

  BITMAPFILEHEADER start{};
  start.bfType = 0x4D42;  // "BM"
  start.bfOffBits = sizeof start + sizeof header;
  start.bfSize = start.bfOffBits + static_cast<DWORD>(pixels.size());
  std::ofstream out(std::filesystem::path(file), std::ios::binary);
  out.write(reinterpret_cast<const char*>(&start), sizeof start);
  out.write(reinterpret_cast<const char*>(&header), sizeof header);
  out.write(pixels.data(), static_cast<std::streamsize>(pixels.size()));
  if (lines == 0 || !out.flush()) throw std::runtime_error("no picture could be written");
}

}  // namespace rowlark::gallery
