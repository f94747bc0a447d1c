#include "tables/Recovery.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <initializer_list>
#include <iterator>
#include <utility>

#include "util/AutomationError.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark {
namespace {

namespace fs = std::filesystem;
using std::string_view;

// A file is this title and records: the head, then an edit each. A record is a check of its content, the
// content's size, and the content: of each field the size and the bytes. Sizes have nine digits.
constexpr string_view kTitle = "Rowlark recovery 2\n";
constexpr std::size_t kCheck = 16;
constexpr std::size_t kSize = 9;
constexpr string_view kExtension = ".recovery";

// The same in every build, so it is no std::hash (this is FNV-1a).
std::string Hash(string_view bytes) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  char digits[kCheck] = {};
  char* const end = std::to_chars(digits, digits + sizeof digits, hash, 16).ptr;
  const std::string text(digits, end);
  return std::string(kCheck - text.size(), '0') + text;
}

std::string Sized(string_view bytes) {
  const auto size = std::to_string(bytes.size());
  return (std::string(kSize - std::min(kSize, size.size()), '0') + size).append(bytes);
}

std::string Record(std::initializer_list<string_view> fields) {
  std::string content;
  for (const auto field : fields) content += Sized(field);
  return Hash(content) + Sized(content) + '\n';
}

bool Parse(string_view digits, std::integral auto& number) {
  const auto [end, failed] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return failed == std::errc() && end == digits.data() + digits.size();
}

std::optional<string_view> TakeSized(string_view& bytes) {
  std::size_t size = 0;
  if (bytes.size() < kSize || !Parse(bytes.substr(0, kSize), size) || bytes.size() - kSize < size)
    return std::nullopt;
  const auto taken = bytes.substr(kSize, size);
  bytes.remove_prefix(kSize + size);
  return taken;
}

// The fields of the next record; nothing when it is not there whole.
std::optional<std::vector<string_view>> TakeRecord(string_view& bytes) {
  if (bytes.size() < kCheck) return std::nullopt;
  const auto check = bytes.substr(0, kCheck);
  bytes.remove_prefix(kCheck);
  auto content = TakeSized(bytes);
  if (!content || Hash(*content) != check || !bytes.starts_with('\n')) return std::nullopt;
  bytes.remove_prefix(1);
  std::vector<string_view> fields;
  while (const auto field = TakeSized(*content)) fields.push_back(*field);
  return fields;
}

// Links lead to the one document.
fs::path NameOf(const fs::path& document) {
  std::error_code failed;
  const auto path = fs::absolute(document, failed).lexically_normal();
  auto name = fs::weakly_canonical(path, failed);
  return failed ? path : name;
}

std::string FileNameOf(const fs::path& document) { return Hash(NameOf(document).native()) + "-"; }

}  // namespace

std::string RecoveryHead(const fs::path& document, const FileStamp& stamp) {
  return std::string(kTitle) +
         Record({NameOf(document).native(), std::to_string(stamp.size), std::to_string(stamp.time)});
}

std::string RecoveryEdit(const Recovery::Edit& edit) {
  return Record(
      {ToUtf8(edit.sheet), std::to_string(edit.row), std::to_string(edit.column), ToUtf8(edit.text)});
}

Recovery ParseRecovery(string_view bytes) {
  Recovery recovery;
  recovery.damaged = true;
  if (!bytes.starts_with(kTitle)) return recovery;
  bytes.remove_prefix(kTitle.size());
  const auto head = TakeRecord(bytes);
  if (!head || head->size() != 3 || !Parse((*head)[1], recovery.stamp.size) ||
      !Parse((*head)[2], recovery.stamp.time)) {
    return recovery;
  }
  recovery.document = std::string((*head)[0]);
  while (!bytes.empty()) {
    const auto fields = TakeRecord(bytes);
    Recovery::Edit edit;
    if (!fields || fields->size() != 4 || !Parse((*fields)[1], edit.row) ||
        !Parse((*fields)[2], edit.column)) {
      return recovery;
    }
    edit.sheet = ToUtf16((*fields)[0]);
    edit.text = ToUtf16((*fields)[3]);
    recovery.edits.push_back(std::move(edit));
  }
  recovery.damaged = false;
  return recovery;
}

RecoveryFile::RecoveryFile(Folders folders, fs::path document)
    : folders_(std::move(folders)), document_(std::move(document)) {
  for (const auto& folder : folders_) {
    if ((file_ = MakeIn(folder))) break;
  }
}

RecoveryFile::~RecoveryFile() {
  if (file_ && file_->Size() == 0) file_->Remove();
}

std::optional<LockedFile> RecoveryFile::MakeIn(const fs::path& folder) {
  constexpr int kMost = 1000;  // instances that have, or had, the document open
  try {
    mclsVTFileSystem().DirsMake(platform::ToText(folder));
  } catch (const AutomationError&) {
    failed_ = std::make_error_code(std::errc::no_such_file_or_directory);
    return std::nullopt;
  }
  for (int number = 1; number <= kMost; ++number) {
    const auto name = FileNameOf(document_) + std::to_string(number) + std::string(kExtension);
    auto file = LockedFile::Make(folder / name, failed_);
    if (file || failed_ != std::errc::file_exists) return file;
  }
  return std::nullopt;
}

// The edits that were kept before stay until the new ones are.
void RecoveryFile::Write(const FileStamp& stamp, const std::vector<Recovery::Edit>& all) {
  auto bytes = RecoveryHead(document_, stamp);
  for (const auto& edit : all) bytes += RecoveryEdit(edit);
  if (file_ && file_->Size() == 0 && file_->IsThere()) {
    failed_ = file_->Append(bytes);
    if (!failed_) return;
  }
  for (const auto& folder : folders_) {
    auto next = MakeIn(folder);
    if (!next) continue;
    failed_ = next->Append(bytes);
    if (failed_) {
      next->Remove();
      continue;
    }
    if (file_) file_->Remove();
    file_ = std::move(next);
    return;
  }
  if (!failed_) failed_ = std::make_error_code(std::errc::no_such_file_or_directory);  // there is no folder
}

void RecoveryFile::Append(const Recovery::Edit& edit) { failed_ = file_->Append(RecoveryEdit(edit)); }

void RecoveryFile::Clear() { failed_ = file_ ? file_->Clear() : std::error_code(); }

void RecoveryFile::Remove() {
  if (file_) file_->Remove();
  file_.reset();
}

Leftovers FindLeftovers(const Folders& folders, const fs::path& document, const fs::path& own) {
  Leftovers found;
  const auto name = FileNameOf(document);
  for (const auto& folder : folders) {
    std::error_code failed;
    fs::directory_iterator entry(folder, failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
      const auto& path = entry->path();
      if (path == own || path.extension() != kExtension) continue;
      const bool is_of_document = path.filename().native().starts_with(name);
      std::error_code unknown;
      if (!is_of_document && entry->file_size(unknown) != 0) continue;
      std::error_code refused;
      auto file = LockedFile::Take(path, refused);
      if (!file) {
        found.is_open_elsewhere |= is_of_document && refused == std::errc::operation_would_block;
      } else if (file->Size() == 0) {
        file->Remove();
      } else if (is_of_document) {
        auto recovery = ParseRecovery(file->Read());
        found.left.push_back({std::move(*file), std::move(recovery)});
      }
    }
  }
  const auto time = [](const Leftovers::Left& one) {
    std::error_code unknown;
    return fs::last_write_time(one.file.Path(), unknown);
  };
  std::ranges::sort(found.left, {}, time);
  return found;
}

}  // namespace rowlark
