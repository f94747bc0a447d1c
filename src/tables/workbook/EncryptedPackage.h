// Workbooks of Office Open XML that are encrypted, though everybody knows the password: so are those saved as
// "protected" or "read-only recommended" by some programs.
#pragma once

#include <optional>
#include <string>

#include "tables/workbook/CompoundFile.h"

namespace rowlark {

// The archive within; nothing where the file holds none that is encrypted. Throws std::runtime_error where
// the password is another one.
std::optional<std::string> DecryptPackage(const CompoundFile& file);

}  // namespace rowlark
