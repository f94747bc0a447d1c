#include "FileBytes.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace rowlark {
namespace {

[[noreturn]] void FailWithErrno(const std::filesystem::path& path) {
  throw std::runtime_error(path.string() + ": " + std::error_code(errno, std::generic_category()).message());
}

class FileDescriptor {
 public:
  explicit FileDescriptor(const char* path) : fd_(::open(path, O_RDONLY | O_CLOEXEC)) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int Get() const noexcept { return fd_; }

 private:
  int fd_;
};

}  // namespace

// Maps a regular file; reads anything else (a pipe, a device) to its end.
Bytes ReadBytes(const std::filesystem::path& path) {
  const FileDescriptor file(path.c_str());
  struct stat status {};
  if (file.Get() < 0 || ::fstat(file.Get(), &status) != 0) FailWithErrno(path);

  if (S_ISREG(status.st_mode) && status.st_size > 0) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const address = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file.Get(), 0);
    if (address != MAP_FAILED) {
      auto unmap = [size](const void* mapped) { ::munmap(const_cast<void*>(mapped), size); };
      return {{static_cast<const void*>(address), unmap}, {static_cast<const char*>(address), size}};
    }
  }
  std::string text;
  std::array<char, 1 << 16> buffer{};
  for (;;) {
    const ssize_t count = ::read(file.Get(), buffer.data(), buffer.size());
    if (count > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0) {
      return Own(std::move(text));
    } else if (errno != EINTR) {
      FailWithErrno(path);
    }
  }
}

}  // namespace rowlark
