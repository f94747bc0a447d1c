// Cells as spreadsheet programs put them on the clipboard: a line a row, tabs between the cells, quotes
// around those that hold tabs, quotes or line breaks.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "host/Block.h"
#include "host/standalone/Worksheet.h"

namespace rowlark {

// Of a block the rows that show, as far as the sheet is in use; nothing where that takes `most` bytes or
// more.
std::optional<std::string> ClipboardText(const standalone::Worksheet& sheet, Block block, std::size_t most);

}  // namespace rowlark
