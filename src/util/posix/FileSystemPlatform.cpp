#include "util/FileSystemPlatform.h"

#include <cerrno>
#include <ctime>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <linux/limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "util/Utf.h"
#include "util/posix/Descriptor.h"

namespace rowlark::platform {
namespace {

namespace fs = std::filesystem;

std::error_code LastError() { return {errno, std::generic_category()}; }

constexpr char32_t kByte = 0xDC00;  // of a name, which is no text

mode_t FileMode(Access access) { return access == Access::Private ? 0600 : 0666; }

// A new file in a folder, removed again unless it was renamed. It is locked as long as its process needs it.
class TemporaryFile {
 public:
  TemporaryFile(const fs::path& folder, mode_t mode) : file_(Create(folder, mode, path_)), is_there_(file_) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (is_there_) ::unlink(path_.c_str());
  }

  // Removes what processes left in a folder that did not come to the end; others hold their locks.
  static void RemoveLeftovers(const fs::path& folder) {
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
      const fs::path& path = entry->path();
      if (!IsTemporary(path.filename().native())) continue;
      const Descriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
      if (file && ::flock(*file, LOCK_EX | LOCK_NB) == 0 && IsLinked(*file)) ::unlink(path.c_str());
    }
  }

  bool IsThere() const { return is_there_; }

  [[nodiscard]] bool Write(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t written = ::write(*file_, bytes.data(), bytes.size());
      if (written > 0) {
        bytes.remove_prefix(static_cast<std::size_t>(written));
      } else if (written == 0 || errno != EINTR) {
        return false;
      }
    }
    return true;
  }

  // As far as the user may: an owner that cannot be kept is no reason to refuse the content. What the group
  // might do is for no other one; beside an access list its bits say what those in the list might.
  [[nodiscard]] bool TakePermissions(const fs::path& from, const struct stat& of) {
    constexpr uid_t kAsItIs = static_cast<uid_t>(-1);
    const bool has_group = ::fchown(*file_, of.st_uid, of.st_gid) == 0 ||
                           ::fchown(*file_, kAsItIs, of.st_gid) == 0 || GroupOf(*file_) == of.st_gid;
    const bool has_list = has_group && TakeAccessList(from);
    return ::fchmod(*file_, of.st_mode & (has_list ? 0777 : 0707)) == 0;
  }

  [[nodiscard]] bool Flush() { return ::fsync(*file_) == 0; }

  // Some file systems report only when a file is closed that a write failed. The lock stays.
  [[nodiscard]] bool ReportFailedWrites() { return ::close(::dup(*file_)) == 0; }

  [[nodiscard]] bool RenameTo(const fs::path& target) {
    if (::rename(path_.c_str(), target.c_str()) != 0) return false;
    is_there_ = false;
    return true;
  }

 private:
  // A name is never used again, since whoever takes a file for a leftover removes it by its name a little
  // later.
  static Descriptor Create(const fs::path& folder, mode_t mode, fs::path& path) {
    for (int attempt = 0; attempt < 10'000; ++attempt) {
      const auto now = std::chrono::system_clock::now().time_since_epoch().count();
      path =
          folder /
          std::string(kPrefix).append(std::to_string(::getpid()) + "-" + std::to_string(now)).append(kSuffix);
      Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
      if (!file && errno != EEXIST) return file;
      if (!file) continue;
      // Where there are no locks, nothing is ever taken for a leftover.
      const bool is_taken = ::flock(*file, LOCK_EX | LOCK_NB) != 0 ? errno == EWOULDBLOCK : !IsLinked(*file);
      if (!is_taken) return file;
      file.reset();
      ::unlink(path.c_str());
    }
    return {};
  }

  // False when it has a list that cannot be kept. Without one, that of new files in the folder goes.
  bool TakeAccessList(const fs::path& from) {
    constexpr const char* kName = "system.posix_acl_access";
    std::string list(XATTR_SIZE_MAX, '\0');
    const ssize_t size = ::getxattr(from.c_str(), kName, list.data(), list.size());
    if (size > 0) return ::fsetxattr(*file_, kName, list.data(), static_cast<std::size_t>(size), 0) == 0;
    ::fremovexattr(*file_, kName);
    return true;
  }

  static bool IsTemporary(std::string_view name) {
    return name.starts_with(kPrefix) && name.ends_with(kSuffix) &&
           name.find_first_not_of("0123456789-", kPrefix.size()) == name.size() - kSuffix.size();
  }

  static bool IsLinked(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 0;
  }

  static std::optional<gid_t> GroupOf(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 ? std::optional(status.st_gid) : std::nullopt;
  }

  static constexpr std::string_view kPrefix = ".rowlark-";
  static constexpr std::string_view kSuffix = ".tmp";

  fs::path path_;
  Descriptor file_;
  bool is_there_;
};

// Where a path leads, the file itself need not exist.
fs::path FollowLinks(fs::path path, std::error_code& error) {
  constexpr int kMaxLinks = 40;
  for (int links = 0; links < kMaxLinks; ++links) {
    std::error_code none;
    if (!fs::is_symlink(path, none)) return path;
    path = path.parent_path() / fs::read_symlink(path, error);
    if (error) return path;
  }
  error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
  return path;
}

// Puts a folder's names on disk. Where that cannot be done the names are right all the same.
void Flush(const fs::path& folder) {
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor) ::fsync(*descriptor);
}

timespec ToTimespec(const std::optional<std::chrono::local_seconds>& time, std::error_code& error) {
  if (!time) return {0, UTIME_OMIT};
  const auto day = std::chrono::floor<std::chrono::days>(*time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(*time - day);
  std::tm parts{};
  parts.tm_year = static_cast<int>(date.year()) - 1900;
  parts.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
  parts.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
  parts.tm_hour = static_cast<int>(clock.hours().count());
  parts.tm_min = static_cast<int>(clock.minutes().count());
  parts.tm_sec = static_cast<int>(clock.seconds().count());
  parts.tm_isdst = -1;  // to be found out
  parts.tm_wday = -1;   // set by success; the result -1 is a time like others
  const std::time_t seconds = std::mktime(&parts);
  if (parts.tm_wday < 0) error = std::make_error_code(std::errc::value_too_large);
  return {seconds, 0};
}

}  // namespace

// No other byte than those that ToText replaces: a text does not bring a "/" or an end into a name.
fs::path ToPath(std::u16string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const char32_t c = TakeUtf16(text);
    const bool is_byte = c == kByte + U'\\' || (c >= kByte + 0x80 && c <= kByte + 0xFF);
    is_byte ? bytes.push_back(static_cast<char>(c - kByte)) : AppendUtf8(bytes, c);
  }
  return bytes;
}

std::u16string ToText(const fs::path& path) {
  std::u16string text;
  for (std::string_view bytes = path.native(); !bytes.empty();) {
    std::string_view rest = bytes;
    const char32_t c = TakeUtf8(rest);
    const std::string_view taken = bytes.substr(0, bytes.size() - rest.size());
    if (c != U'\\' && IsValidUtf8(taken)) {
      AppendUtf16(text, c);
      bytes = rest;
    } else {
      text += static_cast<char16_t>(kByte + static_cast<unsigned char>(bytes.front()));
      bytes.remove_prefix(1);
    }
  }
  return text;
}

bool DriveExists(std::u16string_view) { return false; }

std::u16string FromAnsi(std::string_view bytes) { return FromWindows1252(bytes); }

std::error_code SetTimes(const fs::path& file, const FileTimes& times) {
  std::error_code error;
  const timespec set[] = {ToTimespec(times.access, error), ToTimespec(times.write, error)};
  if (!error && ::utimensat(AT_FDCWD, file.c_str(), set, 0) != 0) error = LastError();
  return error;
}

std::error_code MakeFolder(const fs::path& folder, Access access) {
  if (::mkdir(folder.c_str(), access == Access::Private ? 0700 : 0777) == 0) return {};
  const std::error_code error = LastError();
  std::error_code missing;
  return fs::is_directory(folder, missing) ? std::error_code() : error;
}

std::error_code ReplaceContent(const fs::path& file, std::string_view bytes, Access access,
                               const std::function<void()>& between_steps) {
  return ReplaceContent(
      file, [&] { return std::exchange(bytes, {}); }, access, between_steps);
}

std::error_code ReplaceContent(const fs::path& file, const std::function<std::string_view()>& next_piece,
                               Access access, const std::function<void()>& between_steps) {
  std::error_code error;
  const fs::path target = FollowLinks(file, error);
  if (error) return error;
  if (!target.has_filename()) return std::make_error_code(std::errc::no_such_file_or_directory);

  struct stat old {};
  const bool is_there = ::stat(target.c_str(), &old) == 0;
  if (!is_there && errno != ENOENT) return LastError();
  if (is_there) {
    if (S_ISDIR(old.st_mode)) return std::make_error_code(std::errc::is_a_directory);
    if (!S_ISREG(old.st_mode)) return std::make_error_code(std::errc::operation_not_permitted);
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return LastError();
  }

  between_steps();
  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  TemporaryFile::RemoveLeftovers(folder);
  // Until it has the permissions of the file that it replaces, nobody else is to read it.
  TemporaryFile beside(folder, FileMode(is_there ? Access::Private : access));
  if (!beside.IsThere()) return LastError();
  between_steps();
  for (std::string_view piece = next_piece(); !piece.empty(); piece = next_piece()) {
    if (!beside.Write(piece)) return LastError();
  }
  between_steps();
  if (is_there && !beside.TakePermissions(target, old)) return LastError();
  between_steps();
  if (!beside.Flush()) return LastError();
  between_steps();
  if (!beside.ReportFailedWrites()) return LastError();
  between_steps();
  if (!beside.RenameTo(target)) return LastError();
  between_steps();
  Flush(folder);
  return {};
}

FileLock::FileLock(const fs::path& file, Access access, std::chrono::milliseconds patience) {
  Descriptor descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, FileMode(access)));
  if (!descriptor) return;
  for (; ::flock(*descriptor, LOCK_EX | LOCK_NB) != 0; patience -= kPause) {
    is_taken_ = errno == EWOULDBLOCK;
    if (!is_taken_ || patience <= kPause) return;
    std::this_thread::sleep_for(kPause);
  }
  is_taken_ = false;
  handle_ = descriptor.release();
}

FileLock::~FileLock() { const Descriptor last(static_cast<int>(handle_)); }

}  // namespace rowlark::platform
