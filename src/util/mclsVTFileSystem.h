// Files and folders by the system's paths (see PathMap), which stand in either form. Whatever fails raises
// AutomationError, except where a member says otherwise: number `kErrorNumber`, the member as the source, and
// a description that begins with the object ("FileFullName = '...'" or "DirFullPath = '...'").
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "util/FileSystemPlatform.h"
#include "util/PathMap.h"
#include "util/mclsVTDictionary.h"

namespace rowlark {

class mclsVTFileSystem {
 public:
  // 901 above the application's error base.
  static constexpr int32_t kErrorNumber = static_cast<int32_t>(0x80040385);

  using DateTime = std::chrono::local_seconds;  // local time

  // What it makes is for the program's user alone unless `access` says otherwise.
  explicit mclsVTFileSystem(PathMap paths = {}, platform::Access access = platform::Access::Private)
      : paths_(std::move(paths)), access_(access) {}
  mclsVTFileSystem(const mclsVTFileSystem&) = delete;
  mclsVTFileSystem& operator=(const mclsVTFileSystem&) = delete;
  virtual ~mclsVTFileSystem() = default;

  // Sets the times given; a creation time only where the platform can set one.
  void FileSetDateTime(std::u16string_view file, std::optional<DateTime> creation,
                       std::optional<DateTime> access, std::optional<DateTime> write) const;
  // When the file was last written; nothing when that cannot be told. Raises nothing.
  std::optional<std::filesystem::file_time_type> FileModified(std::u16string_view file) const;

  // Whether it is a file that can be read, or a folder. Raise nothing.
  bool IsFileExists(std::u16string_view file) const;
  // Whether there is nothing at all of that name; something that can not be read is there. Raises nothing.
  bool IsMissing(std::u16string_view file) const;
  bool IsPathExists(std::u16string_view directory) const;

  // Whether a folder holds nothing but names that begin with a dot, or does not exist.
  bool IsDirEmpty(std::u16string_view directory) const;

  // Waits for the lock of that file; see there. One that another process keeps is a failure, one that cannot
  // be had otherwise is not held.
  platform::FileLock Lock(std::u16string_view file,
                          std::chrono::milliseconds patience = platform::FileLock::kPatience) const;

  // Deletes a file, or a folder with everything in it. Without `force` nothing is deleted when anything of it
  // is read-only.
  void FileKill(std::u16string_view file, bool force = false) const;
  void DirKill(std::u16string_view directory, bool force = false) const;

  // Renames within the same folder; never onto something that exists.
  void FileRename(std::u16string_view file, std::u16string_view new_name) const;
  void DirRename(std::u16string_view directory, std::u16string_view new_name) const;

  // Makes every missing folder of the path. A drive must exist ("Drive is not found X:") and be ready
  // ("Device X: is not ready").
  void DirsMake(std::u16string_view directory) const;

  // Adds the full path of every file in a folder as a key without a value, ordered by name; on demand those
  // of its subfolders behind them. Links to folders are not followed; a missing folder adds nothing.
  void DirScanFiles(std::u16string_view directory, mclsVTDictionary& files, bool recursive) const;

  // The content of a file as bytes. Writing replaces the whole file or makes it, and either succeeds or
  // leaves what was there.
  std::vector<uint8_t> BinaryRead(std::u16string_view file) const;
  void BinaryWrite(std::u16string_view file, std::span<const uint8_t> bytes) const;

  // The same for text. It is read as UTF-8 or UTF-16 by its byte order mark, else as UTF-8 when it is that,
  // else in the platform's ANSI code page. It is written as it stands, in UTF-8 without a mark.
  std::u16string StringRead(std::u16string_view file) const;
  void StringWrite(std::u16string_view file, std::u16string_view text) const;

  // The absolute path without "." and "..", in the form of the part that it begins with; on demand with a
  // separator at its end. A base directory becomes the process's current directory if it can, and relative
  // paths start there.
  std::u16string NormalizePath(std::u16string_view path, bool add_backslash = false,
                               std::u16string_view base_directory = {}) const;

 protected:
  // Called while a file is replaced, wherever the process might end.
  virtual void BetweenSteps() const {}

 private:
  std::string ReadBytes(std::u16string_view file, std::u16string_view member) const;
  void WriteBytes(std::u16string_view file, std::string_view bytes, std::u16string_view member) const;
  // Both return the failure.
  static std::error_code Kill(const std::filesystem::path& path, bool force);
  static std::error_code Rename(std::filesystem::path path, std::u16string_view new_name);

  PathMap paths_;
  platform::Access access_;
};

}  // namespace rowlark
