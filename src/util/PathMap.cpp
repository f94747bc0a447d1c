#include "util/PathMap.h"

#include <algorithm>

#include "util/FileSystemPlatform.h"
#include "util/Text.h"

namespace rowlark {
namespace {

constexpr bool kPlatformHasDrives = std::filesystem::path::preferred_separator == '\\';

}  // namespace

std::u16string_view PathMap::RootName(std::u16string_view path) {
  const auto isLetter = [](char16_t c) { return (c | 0x20) >= u'a' && (c | 0x20) <= u'z'; };
  if (path.size() >= 2 && path[1] == u':' && isLetter(path[0])) return path.substr(0, 2);
  if (path.starts_with(u"\\\\") && path.find_first_not_of(kSeparators) == 2) {
    return path.substr(0, path.find_first_of(kSeparators, 2));
  }
  return {};
}

char16_t PathMap::Separator(std::u16string_view path) {
  const bool isSystemForm = !RootName(path).empty() || path.find(u'\\') != path.npos;
  return isSystemForm || kPlatformHasDrives ? u'\\' : u'/';
}

const PathMap::Drive* PathMap::FindDrive(std::u16string_view name) const {
  const auto found = std::find_if(drives_.begin(), drives_.end(), [name](const Drive& drive) {
    return Compare(drive.name, name, CompareMode::Text) == 0;
  });
  return found == drives_.end() ? nullptr : &*found;
}

bool PathMap::HasDrive(std::u16string_view name) const {
  return FindDrive(name) != nullptr || platform::DriveExists(name);
}

std::filesystem::path PathMap::ToNative(std::u16string_view path) const {
  const std::u16string_view root = RootName(path);
  const Drive* const drive = root.empty() ? nullptr : FindDrive(root);
  if (drive == nullptr && kPlatformHasDrives) return platform::ToPath(path);
  if (drive == nullptr && !root.empty()) return {};

  std::u16string rest(path.substr(root.size()));
  std::replace(rest.begin(), rest.end(), u'\\', u'/');
  if (drive == nullptr) return platform::ToPath(rest);
  // ".." does not lead out of a drive.
  return drive->folder / platform::ToPath(u"/" + rest).lexically_normal().relative_path();
}

}  // namespace rowlark
