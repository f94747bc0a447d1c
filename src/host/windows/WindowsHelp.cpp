#include "host/windows/WindowsHelp.h"

#include <bit>
#include <string>

#include "util/windows/Handles.h"
#include "util/windows/WideText.h"

namespace rowlark::windows {

WindowsHelp::Function* WindowsHelp::Load() const {
  // With its full path, so that no other folder is searched for a library of that name or for those it needs.
  wchar_t folder[MAX_PATH];
  const UINT length = ::GetSystemDirectoryW(folder, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return nullptr;
  const std::wstring path = std::wstring(folder, length) + L"\\hhctrl.ocx";
  LoadedLibrary library(::LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
  const auto function = library ? std::bit_cast<Function*>(::GetProcAddress(*library, "HtmlHelpW")) : nullptr;
  if (function == nullptr) {
    TraceNumber(trace_, static_cast<int32_t>(::GetLastError()));
  } else {
    static_cast<void>(library.release());  // stays loaded
  }
  return function;
}

intptr_t WindowsHelp::HtmlHelp(std::u16string_view file, host::HelpCommand command,
                               int32_t context) noexcept {
  return AttemptOr(trace_, intptr_t{0}, [&]() -> intptr_t {
    // Of a missing file HTML Help itself tells the user, and so does the caller.
    const std::wstring path = ToWide(file);
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return 0;
    if (html_help_ == nullptr) html_help_ = Load();
    if (html_help_ == nullptr) return 0;
    return reinterpret_cast<intptr_t>(html_help_(nullptr, path.c_str(), static_cast<UINT>(command),
                                                 static_cast<DWORD_PTR>(static_cast<uint32_t>(context))));
  });
}

}  // namespace rowlark::windows
