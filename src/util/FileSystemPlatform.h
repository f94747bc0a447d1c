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

namespace rowlark::platform {

// A path in the platform's own form as text, and back.
std::filesystem::path ToPath(std::u16string_view text);
std::u16string ToText(const std::filesystem::path& path);

// Whether the platform itself has a drive ("C:").
bool DriveExists(std::u16string_view drive);

// Text in the code page of programs that know no Unicode.
std::u16string FromAnsi(std::string_view bytes);

// In local time.
struct FileTimes {
  std::optional<std::chrono::local_seconds> creation;
  std::optional<std::chrono::local_seconds> access;
  std::optional<std::chrono::local_seconds> write;
};

// Sets the times given. A creation time is passed over where the platform cannot set one.
std::error_code SetTimes(const std::filesystem::path& file, const FileTimes& times);

// Gives a file new content, or makes the file. Whatever happens, and wherever the process ends, the file
// holds the old content whole or the new content whole, on disk. A link is followed; the file keeps its
// permissions. Only a regular file that may be written is replaced. `between_steps` is called at every point
// where the process may end.
std::error_code ReplaceContent(const std::filesystem::path& file, std::string_view bytes,
                               const std::function<void()>& between_steps);
// The same for content that comes in pieces, with an empty one at the end. What `next_piece` throws passes
// through, and then nothing has been replaced.
std::error_code ReplaceContent(const std::filesystem::path& file,
                               const std::function<std::string_view()>& next_piece,
                               const std::function<void()>& between_steps);

// While it lives, no other process holds the lock of that file, which is made when missing. Waits for its
// turn.
class FileLock {
 public:
  explicit FileLock(const std::filesystem::path& file);
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

  // False when the file could not be locked.
  bool Held() const noexcept { return handle_ != kNone; }

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t handle_ = kNone;
};

}  // namespace rowlark::platform
