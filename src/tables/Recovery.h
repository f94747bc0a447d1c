// Edits that were not saved, kept in a file of their own for as long as they are not: a process that ends,
// however it does, leaves them to the next one that opens the document. Every instance has files of its own,
// locked while it lives, which also tells others that the document is open.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "tables/FileStamp.h"
#include "tables/LockedFile.h"

namespace rowlark {

struct Recovery {
  struct Edit {
    std::u16string sheet;
    int32_t row = 0;  // from 1, as the column
    int32_t column = 0;
    std::u16string text;
  };

  std::filesystem::path document;
  FileStamp stamp;  // of the document when it was loaded: with another one, edits may meet other cells
  std::vector<Edit> edits;  // in the order in which they were made
  bool damaged = false;     // the file ends early or makes no sense; these are the edits before the damage
};

// A recovery file as bytes: what begins it, and what an edit adds.
std::string RecoveryHead(const std::filesystem::path& document, const FileStamp& stamp);
std::string RecoveryEdit(const Recovery::Edit& edit);
Recovery ParseRecovery(std::string_view bytes);

using Folders = std::vector<std::filesystem::path>;

// What this process keeps of a document. No member throws; where nothing can be kept, `Failed` says why.
class RecoveryFile {
 public:
  // In the first of the folders that takes it; these are made.
  RecoveryFile(Folders folders, std::filesystem::path document);
  RecoveryFile(const RecoveryFile&) = delete;
  RecoveryFile& operator=(const RecoveryFile&) = delete;
  // A file that holds edits stays.
  ~RecoveryFile();

  const Folders& In() const noexcept { return folders_; }
  // Empty where nothing is kept.
  std::filesystem::path Path() const { return file_ ? file_->Path() : std::filesystem::path(); }
  // Whether the last edit could not be kept.
  std::error_code Failed() const noexcept { return failed_; }
  // Whether an edit can be added to what is there; otherwise all are to be written.
  bool Continues() const noexcept { return !failed_ && file_ && file_->Size() > 0 && file_->IsThere(); }

  void Write(const FileStamp& stamp, const std::vector<Recovery::Edit>& all);
  void Append(const Recovery::Edit& edit);
  // There is nothing to keep so far.
  void Clear();
  // And there will be nothing.
  void Remove();

 private:
  std::optional<LockedFile> MakeIn(const std::filesystem::path& folder);

  Folders folders_;
  std::filesystem::path document_;
  std::optional<LockedFile> file_;
  std::error_code failed_;
};

// What instances that have ended left of a document, the oldest first, and whether another one has it open.
struct Leftovers {
  struct Left {
    LockedFile file;
    Recovery recovery;
  };
  std::vector<Left> left;
  bool is_open_elsewhere = false;
};
// `own` is the file of who asks.
Leftovers FindLeftovers(const Folders& folders, const std::filesystem::path& document,
                        const std::filesystem::path& own);

}  // namespace rowlark
