#include "util/posix/Folders.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "util/FileSystemPlatform.h"

namespace rowlark::platform {
namespace {

namespace fs = std::filesystem;

std::string_view Environment(const char* name) {
  const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

// The folder that a variable names or, where it names none, one of the user's home; empty without a home.
// Relative folders are to be passed over.
fs::path UserFolder(const char* variable, const char* in_home) {
  if (fs::path folder = Environment(variable); folder.is_absolute()) return folder;
  if (const fs::path home = Environment("HOME"); home.is_absolute()) return home / in_home;
  const passwd* const account = ::getpwuid(::geteuid());  // NOLINT(concurrency-mt-unsafe)
  const fs::path home = account != nullptr && account->pw_dir != nullptr ? account->pw_dir : "";
  std::error_code missing;
  // Accounts that are nobody's have a home that is not there.
  return home.is_absolute() && fs::is_directory(home, missing) ? home / in_home : fs::path();
}

}  // namespace

fs::path ConfigurationFolder() { return UserFolder("XDG_CONFIG_HOME", ".config"); }

std::vector<fs::path> DataFolders() {
  std::vector<fs::path> folders;
  std::error_code unknown;
  const auto program = fs::read_symlink("/proc/self/exe", unknown).parent_path();
  if (!unknown) folders = {program, (program / ROWLARK_DATA_FOLDER).lexically_normal()};
  if (const auto own = UserFolder("XDG_DATA_HOME", ".local/share"); !own.empty()) {
    folders.push_back(own / "rowlark");
  }
  auto system = Environment("XDG_DATA_DIRS");
  if (system.empty()) system = "/usr/local/share:/usr/share";
  while (!system.empty()) {
    const fs::path folder = system.substr(0, system.find(':'));
    system.remove_prefix(std::min(folder.native().size() + 1, system.size()));
    if (folder.is_absolute()) folders.push_back(folder / "rowlark");
  }
  if (folders.empty()) folders.emplace_back("/usr/share/rowlark");
  return folders;
}

}  // namespace rowlark::platform
