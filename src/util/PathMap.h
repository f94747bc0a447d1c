// The one place where a path of the system meets the platform. The system's paths use "\" and may begin with
// a drive ("C:\Data") or a server ("\\server\share"); where the platform knows neither, a table says which
// folders they are. A path without either belongs to the platform, with "\" as good as its own separator.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark {

class PathMap {
 public:
  struct Drive {
    std::u16string name;  // "C:" or "\\server"; letter case does not matter
    std::filesystem::path folder;
  };

  static constexpr std::u16string_view kSeparators = u"\\/";

  PathMap() = default;
  explicit PathMap(std::vector<Drive> drives) : drives_(std::move(drives)) {}

  // The drive or server at the front of a path ("C:", "\\server"), or nothing.
  static std::u16string_view RootName(std::u16string_view path);

  // The separator of the form in which a path is written.
  static char16_t Separator(std::u16string_view path);

  // Whether there is such a drive or server, in the table or on the platform.
  bool HasDrive(std::u16string_view name) const;

  // The path for the platform; empty, which no file has, on a drive that does not exist.
  std::filesystem::path ToNative(std::u16string_view path) const;

 private:
  const Drive* FindDrive(std::u16string_view name) const;

  std::vector<Drive> drives_;
};

}  // namespace rowlark
