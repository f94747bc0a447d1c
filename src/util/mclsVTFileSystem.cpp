#include "util/mclsVTFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <fstream>

#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kSeparators = PathMap::kSeparators;

AutomationError Failure(std::u16string_view member, std::u16string description) {
  return {mclsVTFileSystem::kErrorNumber, std::u16string(u"VTRLKRuntime.mclsVTFileSystem.").append(member),
          std::move(description)};
}

void Check(const std::error_code& error, std::u16string_view member, std::u16string_view kind,
           std::u16string_view path) {
  if (!error) return;
  throw Failure(member, std::u16string(kind).append(u" = '").append(path).append(u"': ").append(
                            ToUtf16(error.message())));
}

void CheckFile(const std::error_code& error, std::u16string_view member, std::u16string_view path) {
  Check(error, member, u"FileFullName", path);
}

void CheckDir(const std::error_code& error, std::u16string_view member, std::u16string_view path) {
  Check(error, member, u"DirFullPath", path);
}

// The failure of an operation that wants a file (or a folder) where it finds something else or nothing.
std::error_code MissingFile(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return std::make_error_code(std::errc::no_such_file_or_directory);
  return fs::is_directory(status) ? std::make_error_code(std::errc::is_a_directory) : std::error_code();
}

std::error_code MissingDir(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) return std::make_error_code(std::errc::no_such_file_or_directory);
  return fs::is_directory(status) ? std::error_code() : std::make_error_code(std::errc::not_a_directory);
}

// Nothing when the bytes are not UTF-8. Unpaired surrogates pass, since texts that hold them are written too.
std::optional<std::u16string> DecodeUtf8(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t before = bytes.size();
    const char32_t c = TakeUtf8(bytes);
    if (c == 0xFFFD && before - bytes.size() == 1) return std::nullopt;
    AppendUtf16(text, c);
  }
  return text;
}

// `low` is the offset of the low byte in each pair.
std::u16string DecodeUtf16(std::string_view bytes, std::size_t low) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const auto byte = [&](std::size_t offset) { return static_cast<unsigned char>(bytes[at + offset]); };
    text += static_cast<char16_t>(byte(1 - low) << 8 | byte(low));
  }
  return text;
}

std::u16string Decode(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) return ToUtf16(bytes.substr(3));
  if (bytes.starts_with("\xFF\xFE")) return DecodeUtf16(bytes.substr(2), 0);
  if (bytes.starts_with("\xFE\xFF")) return DecodeUtf16(bytes.substr(2), 1);
  if (std::optional<std::u16string> text = DecodeUtf8(bytes)) return *std::move(text);
  return platform::FromAnsi(bytes);
}

std::u16string Absolute(std::u16string_view path, std::u16string_view base) {
  if (!PathMap::RootName(path).empty()) return std::u16string(path);
  const bool is_rooted = !path.empty() && kSeparators.find(path.front()) != kSeparators.npos;
  if (is_rooted) return std::u16string(PathMap::RootName(base)).append(path);
  return std::u16string(base).append(1, PathMap::Separator(base)).append(path);
}

}  // namespace

void mclsVTFileSystem::FileSetDateTime(std::u16string_view file, std::optional<DateTime> creation,
                                       std::optional<DateTime> access, std::optional<DateTime> write) const {
  const fs::path path = paths_.ToNative(file);
  std::error_code error = MissingFile(path);
  if (!error) error = platform::SetTimes(path, {creation, access, write});
  CheckFile(error, u"FileSetDateTime", file);
}

std::optional<fs::file_time_type> mclsVTFileSystem::FileModified(std::u16string_view file) const {
  std::error_code error;
  const fs::file_time_type time = fs::last_write_time(paths_.ToNative(file), error);
  return error ? std::nullopt : std::optional(time);
}

bool mclsVTFileSystem::IsFileExists(std::u16string_view file) const {
  const fs::path path = paths_.ToNative(file);
  std::error_code error;
  return fs::is_regular_file(path, error) && std::ifstream(path).is_open();
}

bool mclsVTFileSystem::IsMissing(std::u16string_view file) const {
  std::error_code error;
  return fs::status(paths_.ToNative(file), error).type() == fs::file_type::not_found;
}

platform::FileLock mclsVTFileSystem::Lock(std::u16string_view file,
                                          std::chrono::milliseconds patience) const {
  platform::FileLock lock(paths_.ToNative(file), access_, patience);
  if (lock.IsTaken()) CheckFile(std::make_error_code(std::errc::device_or_resource_busy), u"Lock", file);
  return lock;
}

bool mclsVTFileSystem::IsPathExists(std::u16string_view directory) const {
  std::error_code error;
  return fs::is_directory(paths_.ToNative(directory), error);
}

bool mclsVTFileSystem::IsDirEmpty(std::u16string_view directory) const {
  if (!IsPathExists(directory)) return true;
  std::error_code error;
  fs::directory_iterator entry(paths_.ToNative(directory), error);
  bool is_empty = true;
  for (; !error && is_empty && entry != fs::directory_iterator(); entry.increment(error)) {
    is_empty = platform::ToText(entry->path().filename()).starts_with(u'.');
  }
  CheckDir(error, u"IsDirEmpty", directory);
  return is_empty;
}

std::error_code mclsVTFileSystem::Kill(const fs::path& path, bool force) {
  std::error_code error;
  const auto permit = [&](const fs::path& entry) {
    const fs::file_status status = fs::symlink_status(entry, error);
    if (error || fs::is_symlink(status)) return;
    if ((status.permissions() & fs::perms::owner_write) != fs::perms::none) return;
    if (!force) {
      error = std::make_error_code(std::errc::permission_denied);
    } else {
      fs::permissions(entry, fs::perms::owner_write, fs::perm_options::add, error);
    }
  };
  permit(path);
  if (!error && fs::is_directory(fs::symlink_status(path, error))) {
    fs::recursive_directory_iterator entry(path, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
      permit(entry->path());
      if (error) break;
    }
  }
  if (!error) fs::remove_all(path, error);
  return error;
}

void mclsVTFileSystem::FileKill(std::u16string_view file, bool force) const {
  const fs::path path = paths_.ToNative(file);
  std::error_code error = MissingFile(path);
  if (!error) error = Kill(path, force);
  CheckFile(error, u"FileKill", file);
}

void mclsVTFileSystem::DirKill(std::u16string_view directory, bool force) const {
  const fs::path path = paths_.ToNative(directory);
  std::error_code error = MissingDir(path);
  if (!error) error = Kill(path, force);
  CheckDir(error, u"DirKill", directory);
}

std::error_code mclsVTFileSystem::Rename(fs::path path, std::u16string_view new_name) {
  if (new_name.empty() || new_name.find_first_of(kSeparators) != new_name.npos) {
    return std::make_error_code(std::errc::invalid_argument);
  }
  if (!path.has_filename()) path = path.parent_path();
  const fs::path renamed = path.parent_path() / platform::ToPath(new_name);
  std::error_code error;
  // The same file is there where letter case does not tell names apart.
  if (fs::exists(fs::symlink_status(renamed, error)) && !fs::equivalent(path, renamed, error)) {
    return std::make_error_code(std::errc::file_exists);
  }
  fs::rename(path, renamed, error);
  return error;
}

void mclsVTFileSystem::FileRename(std::u16string_view file, std::u16string_view new_name) const {
  const fs::path path = paths_.ToNative(file);
  std::error_code error = MissingFile(path);
  if (!error) error = Rename(path, new_name);
  CheckFile(error, u"FileRename", file);
}

void mclsVTFileSystem::DirRename(std::u16string_view directory, std::u16string_view new_name) const {
  const fs::path path = paths_.ToNative(directory);
  std::error_code error = MissingDir(path);
  if (!error) error = Rename(path, new_name);
  CheckDir(error, u"DirRename", directory);
}

void mclsVTFileSystem::DirsMake(std::u16string_view directory) const {
  const std::u16string_view root = PathMap::RootName(directory);
  if (root.ends_with(u':')) {
    const std::u16string drive(root);
    if (!paths_.HasDrive(root)) throw Failure(u"DirsMake", u"Drive is not found " + drive);
    if (!IsPathExists(drive + u"\\")) throw Failure(u"DirsMake", u"Device " + drive + u" is not ready");
  }

  std::size_t end = root.size();
  while ((end = directory.find_first_not_of(kSeparators, end)) != directory.npos) {
    end = std::min(directory.find_first_of(kSeparators, end), directory.size());
    const std::u16string_view level = directory.substr(0, end);
    if (IsPathExists(level)) continue;
    CheckDir(platform::MakeFolder(paths_.ToNative(level), access_), u"DirsMake", level);
  }
}

void mclsVTFileSystem::DirScanFiles(std::u16string_view directory, mclsVTDictionary& files,
                                    bool recursive) const {
  std::vector<std::u16string> pending;
  if (IsPathExists(directory)) pending.push_back(NormalizePath(directory, true));
  while (!pending.empty()) {
    const std::u16string folder = std::move(pending.back());
    pending.pop_back();
    std::vector<std::u16string> names, subfolders;
    std::error_code error;
    fs::directory_iterator entry(paths_.ToNative(folder), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
      std::error_code gone;
      const std::u16string path = folder + platform::ToText(entry->path().filename());
      if (!entry->is_directory(gone)) {
        names.push_back(path);
      } else if (!entry->is_symlink(gone)) {
        subfolders.push_back(path + folder.back());
      }
    }
    CheckDir(error, u"DirScanFiles", folder);
    std::sort(names.begin(), names.end());
    for (const std::u16string& name : names) files.Add(name, {});
    if (!recursive) return;
    std::sort(subfolders.rbegin(), subfolders.rend());
    pending.insert(pending.end(), subfolders.begin(), subfolders.end());
  }
}

std::string mclsVTFileSystem::ReadBytes(std::u16string_view file, std::u16string_view member) const {
  const fs::path path = paths_.ToNative(file);
  CheckFile(MissingFile(path), member, file);
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  std::string bytes;
  char block[1 << 16];
  while (in) {
    in.read(block, sizeof block);
    bytes.append(block, static_cast<std::size_t>(in.gcount()));
  }
  // The stream says that it failed, the system why.
  if (!in.is_open() || in.bad()) {
    CheckFile(std::error_code(errno != 0 ? errno : EIO, std::generic_category()), member, file);
  }
  return bytes;
}

void mclsVTFileSystem::WriteBytes(std::u16string_view file, std::string_view bytes,
                                  std::u16string_view member) const {
  CheckFile(platform::ReplaceContent(paths_.ToNative(file), bytes, access_, [this] { BetweenSteps(); }),
            member, file);
}

std::vector<uint8_t> mclsVTFileSystem::BinaryRead(std::u16string_view file) const {
  const std::string bytes = ReadBytes(file, u"BinaryRead");
  return {bytes.begin(), bytes.end()};
}

void mclsVTFileSystem::BinaryWrite(std::u16string_view file, std::span<const uint8_t> bytes) const {
  WriteBytes(file, std::string(bytes.begin(), bytes.end()), u"BinaryWrite");
}

std::u16string mclsVTFileSystem::StringRead(std::u16string_view file) const {
  return Decode(ReadBytes(file, u"StringRead"));
}

void mclsVTFileSystem::StringWrite(std::u16string_view file, std::u16string_view text) const {
  WriteBytes(file, ToUtf8(text), u"StringWrite");
}

std::u16string mclsVTFileSystem::NormalizePath(std::u16string_view path, bool add_backslash,
                                               std::u16string_view base_directory) const {
  std::error_code ignored;
  const std::u16string current = platform::ToText(fs::current_path(ignored));
  const std::u16string base = Absolute(base_directory, current);
  if (!base_directory.empty()) fs::current_path(paths_.ToNative(base), ignored);

  const std::u16string full = Absolute(path, base);
  const std::u16string_view root = PathMap::RootName(full);
  const char16_t separator = PathMap::Separator(full.substr(0, root.size() + 1));
  // The share of a server counts as part of the root.
  const std::size_t fixed = root.starts_with(u'\\') ? 1 : 0;
  std::vector<std::u16string_view> parts;
  std::u16string_view rest = std::u16string_view(full).substr(root.size());
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of(kSeparators), rest.size());
    const std::u16string_view part = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (part == u"..") {
      if (parts.size() > fixed) parts.pop_back();
    } else if (!part.empty() && part != u".") {
      parts.push_back(part);
    }
  }

  std::u16string normal(root);
  for (const std::u16string_view part : parts) normal.append(1, separator).append(part);
  if (parts.empty() || add_backslash) normal += separator;
  return normal;
}

}  // namespace rowlark
