#include "util/FileSystemPlatform.h"

#include <cerrno>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "util/Utf.h"

namespace rowlark::platform {
namespace {

namespace fs = std::filesystem;

std::error_code LastError() { return {errno, std::generic_category()}; }

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int operator*() const { return number_; }
  // Some file systems report only here that a write failed.
  bool Close() { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

// A new file in a folder, removed again unless it was renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const fs::path& folder) : file_(Create(folder, path_)), is_there_(*file_ >= 0) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (is_there_) ::unlink(path_.c_str());
  }

  bool IsThere() const { return is_there_; }

  bool Write(std::string_view bytes) {
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

  // As far as the user may: an owner that cannot be kept is no reason to refuse the content.
  bool TakePermissions(const struct stat& of) {
    if (::fchown(*file_, of.st_uid, of.st_gid) != 0 && errno != EPERM) return false;
    return ::fchmod(*file_, of.st_mode & 0777) == 0;
  }

  bool Flush() { return ::fsync(*file_) == 0; }

  bool Close() { return file_.Close(); }

  bool RenameTo(const fs::path& target) {
    if (::rename(path_.c_str(), target.c_str()) != 0) return false;
    is_there_ = false;
    return true;
  }

 private:
  // Another process cannot have the name, but a file left by an earlier one of the same number can.
  static int Create(const fs::path& folder, fs::path& path) {
    for (int attempt = 0; attempt < 10'000; ++attempt) {
      path = folder / (".rowlark-" + std::to_string(::getpid()) + "-" + std::to_string(attempt) + ".tmp");
      const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
      if (file >= 0 || errno != EEXIST) return file;
    }
    return -1;
  }

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
  if (*descriptor >= 0) ::fsync(*descriptor);
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

fs::path ToPath(std::u16string_view text) { return ToUtf8(text); }

std::u16string ToText(const fs::path& path) { return ToUtf16(path.native()); }

bool DriveExists(std::u16string_view) { return false; }

std::u16string FromAnsi(std::string_view bytes) { return FromWindows1252(bytes); }

std::error_code SetTimes(const fs::path& file, const FileTimes& times) {
  std::error_code error;
  const timespec set[] = {ToTimespec(times.access, error), ToTimespec(times.write, error)};
  if (!error && ::utimensat(AT_FDCWD, file.c_str(), set, 0) != 0) error = LastError();
  return error;
}

std::error_code ReplaceContent(const fs::path& file, std::string_view bytes,
                               const std::function<void()>& between_steps) {
  return ReplaceContent(
      file, [&] { return std::exchange(bytes, {}); }, between_steps);
}

std::error_code ReplaceContent(const fs::path& file, const std::function<std::string_view()>& next_piece,
                               const std::function<void()>& between_steps) {
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
  TemporaryFile beside(folder);
  if (!beside.IsThere()) return LastError();
  between_steps();
  for (std::string_view piece = next_piece(); !piece.empty(); piece = next_piece()) {
    if (!beside.Write(piece)) return LastError();
  }
  between_steps();
  if (is_there && !beside.TakePermissions(old)) return LastError();
  between_steps();
  if (!beside.Flush()) return LastError();
  between_steps();
  if (!beside.Close()) return LastError();
  between_steps();
  if (!beside.RenameTo(target)) return LastError();
  between_steps();
  Flush(folder);
  return {};
}

FileLock::FileLock(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  if (descriptor < 0) return;
  int result = 0;
  do {
    result = ::flock(descriptor, LOCK_EX);
  } while (result != 0 && errno == EINTR);
  if (result == 0) {
    handle_ = descriptor;
  } else {
    ::close(descriptor);
  }
}

FileLock::~FileLock() {
  if (Held()) ::close(static_cast<int>(handle_));
}

}  // namespace rowlark::platform
