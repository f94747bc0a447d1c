#include "tables/FileAccess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <system_error>

namespace rowlark {

namespace fs = std::filesystem;

bool IsReplaceable(const fs::path& file) {
  std::error_code failed;
  const auto target = fs::weakly_canonical(fs::absolute(file, failed), failed);
  if (failed) return false;
  const auto may = [](const fs::path& path, int what) {
    return ::faccessat(AT_FDCWD, path.c_str(), what, AT_EACCESS) == 0;
  };
  const bool is_fit =
      fs::exists(target, failed) ? fs::is_regular_file(target, failed) && may(target, W_OK) : true;
  return is_fit && may(target.parent_path(), W_OK | X_OK);
}

// Others may make files there, also of this name.
fs::path PrivateTemporaryFolder() {
  std::error_code failed;
  const auto folder = fs::temp_directory_path(failed) / ("rowlark-" + std::to_string(::geteuid()));
  if (failed) return {};
  ::mkdir(folder.c_str(), 0700);
  struct stat status {};
  const bool is_ours = ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                       status.st_uid == ::geteuid() && (status.st_mode & 077) == 0;
  return is_ours ? folder : fs::path();
}

}  // namespace rowlark
