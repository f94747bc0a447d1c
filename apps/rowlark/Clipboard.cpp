#include "Clipboard.h"

#include <algorithm>
#include <string_view>

#include "host/cells/CellText.h"

namespace rowlark {
namespace {

std::string Quoted(std::string_view cell) {
  if (cell.find_first_of("\t\r\n\"") == cell.npos) return std::string(cell);
  std::string quoted = "\"";
  for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

}  // namespace

std::optional<std::string> ClipboardText(const standalone::Worksheet& sheet, Block block, std::size_t most) {
  const auto used = sheet.UsedBlock();
  block.last_row = std::min(block.last_row, used.last_row);
  block.last_column = std::min(block.last_column, used.last_column);
  std::string text;
  const auto& hidden = sheet.HiddenRows();
  const auto next = [&](int32_t row) { return hidden.Next(row, block.last_row, false); };
  cells::CellReader reader(sheet.Text(), false);
  const int32_t first = next(block.first_row);
  for (int32_t row = first; row <= block.last_row; row = next(row + 1)) {
    if (row != first) text += '\n';
    for (int32_t column = block.first_column; column <= block.last_column; ++column) {
      if (column > block.first_column) text += '\t';
      text += Quoted(reader.Cell(row, column));
    }
    if (text.size() >= most) return std::nullopt;
  }
  return text;
}

}  // namespace rowlark
