// What tells that a file has been written again: its size and the time it was written.
#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace rowlark {

struct FileStamp {
  std::uintmax_t size = 0;
  std::int64_t time = 0;  // in the file system's own units

  // All zero for what has no size (a pipe, a missing file).
  static FileStamp Of(const std::filesystem::path& file) {
    std::error_code failed;
    const auto size = std::filesystem::file_size(file, failed);
    if (failed) return {};
    const auto time = std::filesystem::last_write_time(file, failed);
    return {size, failed ? 0 : time.time_since_epoch().count()};
  }
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

}  // namespace rowlark
