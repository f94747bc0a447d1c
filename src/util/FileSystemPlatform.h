// What the file system helpers need and the standard library lacks. Every platform has its own source file.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace rowlark::platform {

// A path in the platform's own form as text, and back, without loss. Where names are bytes, one that no text
// holds, or that would separate folders in it ("\\"), stands as the unpaired surrogate U+DC00 + byte.
std::filesystem::path ToPath(std::u16string_view text);
std::u16string ToText(const std::filesystem::path& path);

// Whether the platform itself has a drive ("C:").
bool DriveExists(std::u16string_view drive);

// Where programs keep the settings of their user; empty when there is no such place.
std::filesystem::path ConfigurationFolder();

// Text in the code page of programs that know no Unicode.
std::u16string FromAnsi(std::string_view bytes);

// In local time.
struct FileTimes {
  std::optional<std::chrono::local_seconds> creation;
  std::optional<std::chrono::local_seconds> access;
  std::optional<std::chrono::local_seconds> write;
};

// Sets the times given. A creation time is passed over where the platform cannot set one.
[[nodiscard]] std::error_code SetTimes(const std::filesystem::path& file, const FileTimes& times);

// Who may use what is made: its user alone, or everybody whom the user admits to new files. Platforms whose
// folders decide that make no difference.
enum class Access { Private, Ordinary };

// Makes a folder; one that is there is none to make.
[[nodiscard]] std::error_code MakeFolder(const std::filesystem::path& folder, Access access);

// Gives a file new content, or makes the file. Whatever happens, and wherever the process ends, the file
// holds the old content whole or the new content whole, on disk. A link is followed; a file that is there
// keeps its permissions, and rights of a group that cannot be kept pass to no other one. Only a regular file
// that may be written is replaced. What killed processes left in the folder is removed. `between_steps` is
// called at every point where the process may end.
[[nodiscard]] std::error_code ReplaceContent(const std::filesystem::path& file, std::string_view bytes,
                                             Access access, const std::function<void()>& between_steps);
// The same for content that comes in pieces, with an empty one at the end. What `next_piece` throws passes
// through, and then nothing has been replaced.
[[nodiscard]] std::error_code ReplaceContent(const std::filesystem::path& file,
                                             const std::function<std::string_view()>& next_piece,
                                             Access access, const std::function<void()>& between_steps);

// While it lives, no other process holds the lock of that file, which is made when missing. Waits for its
// turn, which takes moments unless the process that holds the lock has been stopped.
class [[nodiscard]] FileLock {
 public:
  static constexpr std::chrono::milliseconds kPatience{5000};

  FileLock(const std::filesystem::path& file, Access access, std::chrono::milliseconds patience = kPatience);
  FileLock(FileLock&& other) noexcept
      : handle_(std::exchange(other.handle_, kNone)), is_taken_(other.is_taken_) {}
  FileLock& operator=(FileLock&&) = delete;
  ~FileLock();

  // False when the file could not be locked: another process held it all the time, or it knows no locks.
  bool Held() const noexcept { return handle_ != kNone; }
  bool IsTaken() const noexcept { return is_taken_; }

 private:
  static constexpr std::intptr_t kNone = -1;
  static constexpr std::chrono::milliseconds kPause{5};
  std::intptr_t handle_ = kNone;
  bool is_taken_ = false;
};

}  // namespace rowlark::platform
