// Stands in for a running Excel: has its window, and the files that it is given open as Excel has, until its
// standard input ends.
#include <windows.h>

#include <cstdio>
#include <string_view>

int wmain(int count, wchar_t** arguments) {
  WNDCLASSW type = {};
  type.lpfnWndProc = DefWindowProcW;
  type.lpszClassName = L"XLMAIN";
  RegisterClassW(&type);
  for (int i = 1; i < count; ++i) {
    const bool is_open = std::wstring_view(arguments[i]).ends_with(L".dll")
                             ? LoadLibraryW(arguments[i]) != nullptr
                             : CreateFileW(arguments[i], GENERIC_READ, FILE_SHARE_READ, nullptr,
                                           OPEN_EXISTING, 0, nullptr) != INVALID_HANDLE_VALUE;
    if (!is_open) return 1;
  }
  // Without files Excel is there, and nothing more.
  if (count == 1 &&
      CreateWindowW(L"XLMAIN", L"Excel", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr) == nullptr) {
    return 2;
  }
  std::puts("open");
  std::fflush(stdout);
  return std::getchar() == EOF ? 0 : 3;
}
