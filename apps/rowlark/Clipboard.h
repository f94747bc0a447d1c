// Cells as spreadsheet programs put them on the clipboard: a line a row, tabs between the cells, quotes
// around those that hold tabs, quotes or line breaks.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "host/Block.h"
#include "host/standalone/Worksheet.h"

namespace rowlark {

// The cells of blocks in the rows that show, as far as the sheet is in use. Blocks stand beside and below
// each other as on the sheet, without the rows and columns between them. Nothing where that takes `most`
// bytes or more.
std::optional<std::string> ClipboardText(const standalone::Worksheet& sheet, std::span<const Block> blocks,
                                         std::size_t most);

}  // namespace rowlark
