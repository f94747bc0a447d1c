// Edits that were not saved, kept in a file of their own until the document is opened again: a packed list of
// what the document was, and of sheet, row, column and text of every cell edited.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tables/FileStamp.h"

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
  std::vector<Edit> edits;
  bool damaged = false;  // the file ends early or makes no sense; these are the edits before the damage
};

// Where the edits of a document are kept: no file without a folder.
std::filesystem::path RecoveryFile(const std::filesystem::path& folder,
                                   const std::filesystem::path& document);

// Replaces the file as a whole; for the user alone. Throws std::runtime_error.
void WriteRecovery(const std::filesystem::path& file, const Recovery& recovery);
// Nothing without the file, or when it is about another document. Throws std::runtime_error when it can not
// be read.
std::optional<Recovery> ReadRecovery(const std::filesystem::path& file,
                                     const std::filesystem::path& document);

}  // namespace rowlark
