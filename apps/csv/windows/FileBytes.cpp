#include "FileBytes.h"

#include <windows.h>

#include <stdexcept>
#include <system_error>

namespace rowlark {
namespace {

[[noreturn]] void FailWithLastError(const std::filesystem::path& path) {
  const auto code = static_cast<int>(::GetLastError());
  throw std::runtime_error(path.string() + ": " + std::error_code(code, std::system_category()).message());
}

class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle_ != nullptr) ::CloseHandle(handle_);
  }
  HANDLE get() const noexcept { return handle_; }

 private:
  HANDLE handle_;
};

}  // namespace

Bytes ReadBytes(const std::filesystem::path& path) {
  const Handle file(::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  LARGE_INTEGER size{};
  if (file.get() == nullptr || !::GetFileSizeEx(file.get(), &size)) FailWithLastError(path);
  if (size.QuadPart == 0) return Own("");  // nothing that could be mapped

  const Handle mapping(::CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
  const void* view =
      mapping.get() == nullptr ? nullptr : ::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0);
  if (view == nullptr) FailWithLastError(path);
  return {{view, [](const void* mapped) { ::UnmapViewOfFile(mapped); }},
          {static_cast<const char*>(view), static_cast<std::size_t>(size.QuadPart)}};
}

}  // namespace rowlark
