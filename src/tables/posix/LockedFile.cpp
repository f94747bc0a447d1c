#include "tables/LockedFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace rowlark {
namespace {

std::error_code LastError() { return {errno, std::generic_category()}; }

// How large the file is that a descriptor and a name stand for; nothing when these are two.
std::optional<std::size_t> SizeOf(int file, const std::filesystem::path& path) {
  struct stat own {};
  struct stat named {};
  if (::fstat(file, &own) != 0 || ::lstat(path.c_str(), &named) != 0) return std::nullopt;
  const bool is_same = S_ISREG(own.st_mode) && own.st_dev == named.st_dev && own.st_ino == named.st_ino;
  return is_same ? std::optional(static_cast<std::size_t>(own.st_size)) : std::nullopt;
}

bool WriteWhole(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = ::write(file, bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::optional<LockedFile> LockedFile::Lock(const std::filesystem::path& path, int flags,
                                           std::error_code& failed) {
  constexpr mode_t kUserAlone = 0600;
  failed.clear();
  Descriptor file(
      ::open(path.c_str(), flags | O_RDWR | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, kUserAlone));
  if (!file) {
    failed = LastError();
    return std::nullopt;
  }
  // Where a file system has no locks, it does without.
  if (::flock(*file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    failed = LastError();
    return std::nullopt;
  }
  const auto size = SizeOf(*file, path);
  if (!size) {
    failed = std::make_error_code(std::errc::no_such_file_or_directory);  // gone meanwhile
    return std::nullopt;
  }
  return LockedFile(path, std::move(file), *size);
}

// Between its making and its lock another process may take it for a dead one's, and remove it.
std::optional<LockedFile> LockedFile::Make(const std::filesystem::path& path, std::error_code& failed) {
  auto file = Lock(path, O_CREAT | O_EXCL, failed);
  const bool is_taken =
      failed == std::errc::operation_would_block || failed == std::errc::no_such_file_or_directory;
  std::error_code none;
  if (!file && is_taken && std::filesystem::is_directory(path.parent_path(), none)) {
    failed = std::make_error_code(std::errc::file_exists);
  }
  return file;
}

std::optional<LockedFile> LockedFile::Take(const std::filesystem::path& path, std::error_code& failed) {
  return Lock(path, 0, failed);
}

bool LockedFile::IsThere() const noexcept { return SizeOf(*file_, path_).has_value(); }

std::string LockedFile::Read() const {
  std::string bytes(size_, '\0');
  std::size_t at = 0;
  while (at < bytes.size()) {
    const auto count = ::pread(*file_, bytes.data() + at, bytes.size() - at, static_cast<off_t>(at));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    at += static_cast<std::size_t>(count);
  }
  bytes.resize(at);
  return bytes;
}

std::error_code LockedFile::Append(std::string_view bytes) {
  const bool is_first = size_ == 0;
  if (!WriteWhole(*file_, bytes) || ::fsync(*file_) != 0) {
    const auto failed = LastError();
    // What came of it would stand before what is appended next.
    if (::ftruncate(*file_, static_cast<off_t>(size_)) != 0) return LastError();
    return failed;
  }
  size_ += bytes.size();
  if (is_first) {
    const Descriptor folder(::open(path_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) ::fsync(*folder);
  }
  return {};
}

std::error_code LockedFile::Clear() {
  if (size_ == 0) return {};
  if (::ftruncate(*file_, 0) != 0 || ::fsync(*file_) != 0) return LastError();
  size_ = 0;
  return {};
}

void LockedFile::Remove() noexcept {
  if (IsThere()) ::unlink(path_.c_str());
}

}  // namespace rowlark
