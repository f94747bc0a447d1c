// A file that its process alone reads and writes, under a lock that ends with the process, however that ends.
// For the user alone.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "util/posix/Descriptor.h"

namespace rowlark {

class LockedFile {
 public:
  // Makes a file of that name. Nothing, and `failed` set, where there is one already.
  static std::optional<LockedFile> Make(const std::filesystem::path& path, std::error_code& failed);
  // Takes one that is there. Nothing where that can not be; std::errc::operation_would_block while a process
  // has it.
  static std::optional<LockedFile> Take(const std::filesystem::path& path, std::error_code& failed);

  const std::filesystem::path& Path() const noexcept { return path_; }
  std::size_t Size() const noexcept { return size_; }
  // Whether it has its name still: others may remove it.
  bool IsThere() const noexcept;

  // All of it, as far as it can be read.
  std::string Read() const;
  // Both are on disk when they return; one that fails has changed nothing.
  [[nodiscard]] std::error_code Append(std::string_view bytes);
  [[nodiscard]] std::error_code Clear();
  void Remove() noexcept;

 private:
  LockedFile(std::filesystem::path path, Descriptor file, std::size_t size)
      : path_(std::move(path)), file_(std::move(file)), size_(size) {}
  static std::optional<LockedFile> Lock(const std::filesystem::path& path, int flags,
                                        std::error_code& failed);

  std::filesystem::path path_;
  Descriptor file_;
  std::size_t size_;
};

}  // namespace rowlark
