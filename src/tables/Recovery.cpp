#include "tables/Recovery.h"

#include <charconv>
#include <concepts>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "util/AutomationError.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"
#include "util/mclsVTFileSystem.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

constexpr const char16_t* kTitle = u"Rowlark recovery 1";
constexpr std::size_t kHeader = 5;  // title, document, its size and time, number of edits
constexpr std::size_t kFields = 4;  // of an edit

std::u16string Text(std::integral auto number) { return ToUtf16(std::to_string(number)); }

bool Read(const std::u16string& text, std::integral auto& number) {
  const std::string digits = ToUtf8(text);
  const auto [end, failed] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return failed == std::errc() && end == digits.data() + digits.size();
}

}  // namespace

std::filesystem::path RecoveryFile(const std::filesystem::path& folder,
                                   const std::filesystem::path& document) {
  if (folder.empty()) return {};
  // The name has to be the same in every build, so it is no std::hash (this is FNV-1a).
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : std::filesystem::absolute(document).lexically_normal().string()) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  }
  char digits[16] = {};
  char* const end = std::to_chars(digits, digits + sizeof digits, hash, 16).ptr;
  return folder / (std::string(std::begin(digits), end) + ".recovery");
}

void WriteRecovery(const std::filesystem::path& file, const Recovery& recovery) {
  std::vector<std::u16string> list = {
      kTitle, platform::ToText(std::filesystem::absolute(recovery.document).lexically_normal()),
      Text(recovery.stamp.size), Text(recovery.stamp.time), Text(recovery.edits.size())};
  for (const auto& edit : recovery.edits) {
    list.insert(list.end(), {edit.sheet, Text(edit.row), Text(edit.column), edit.text});
  }
  try {
    const mclsVTFileSystem files;
    files.DirsMake(platform::ToText(file.parent_path()));
    files.StringWrite(platform::ToText(file), mclsVTString::ArrayJoin(list));
  } catch (const AutomationError& error) {
    throw std::runtime_error(ToUtf8(error.Description()));
  }
}

std::optional<Recovery> ReadRecovery(const std::filesystem::path& file,
                                     const std::filesystem::path& document) {
  std::error_code failed;
  if (!std::filesystem::exists(file, failed)) return std::nullopt;
  std::vector<std::u16string> list;
  try {
    list = mclsVTString::ArraySalvage(mclsVTFileSystem().StringRead(platform::ToText(file)));
  } catch (const AutomationError& error) {
    throw std::runtime_error(ToUtf8(error.Description()));
  }

  Recovery recovery;
  recovery.damaged = true;
  recovery.document = document;
  std::size_t count = 0;
  if (list.size() < kHeader || list[0] != kTitle) return recovery;
  if (platform::ToPath(list[1]) != std::filesystem::absolute(document).lexically_normal())
    return std::nullopt;
  if (!Read(list[2], recovery.stamp.size) || !Read(list[3], recovery.stamp.time) || !Read(list[4], count)) {
    return recovery;
  }
  for (std::size_t i = kHeader; i + kFields <= list.size(); i += kFields) {
    Recovery::Edit edit{list[i], 0, 0, list[i + 3]};
    if (!Read(list[i + 1], edit.row) || !Read(list[i + 2], edit.column)) return recovery;
    recovery.edits.push_back(std::move(edit));
  }
  recovery.damaged = recovery.edits.size() != count;
  return recovery;
}

}  // namespace rowlark
