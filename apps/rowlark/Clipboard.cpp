#include "Clipboard.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include "host/cells/CellText.h"

namespace rowlark {
namespace {

std::string Quoted(std::string_view cell) {
  if (cell.find_first_of("\t\r\n\"") == cell.npos) return std::string(cell);
  std::string quoted = "\"";
  for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

bool Contains(std::span<const Block> blocks, int32_t row, int32_t column) {
  return std::ranges::any_of(blocks, [&](const Block& block) { return block.Contains(row, column); });
}

// The first row of the blocks from a row on.
int32_t RowFrom(std::span<const Block> blocks, int32_t row) {
  int32_t next = std::numeric_limits<int32_t>::max();
  for (const auto& block : blocks) {
    if (row <= block.last_row) next = std::min(next, std::max(row, block.first_row));
  }
  return next;
}

// The columns of the blocks, ascending.
std::vector<int32_t> ColumnsOf(std::span<const Block> blocks) {
  std::vector<int32_t> columns;
  for (const auto& block : blocks) {
    for (int32_t column = block.first_column; column <= block.last_column; ++column)
      columns.push_back(column);
  }
  std::ranges::sort(columns);
  columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
  return columns;
}

}  // namespace

std::optional<std::string> ClipboardText(const standalone::Worksheet& sheet, std::span<const Block> selected,
                                         std::size_t most) {
  const auto used = sheet.UsedBlock();
  std::vector<Block> blocks(selected.begin(), selected.end());
  for (auto& block : blocks) {
    block.last_row = std::min(block.last_row, used.last_row);
    block.last_column = std::min(block.last_column, used.last_column);
  }
  const auto columns = ColumnsOf(blocks);
  const auto& hidden = sheet.HiddenRows();
  cells::CellReader reader(sheet.Text(), false);
  std::string text;
  bool is_first = true;
  for (int32_t row = RowFrom(blocks, 1); row <= used.last_row; row = RowFrom(blocks, row + 1)) {
    if (hidden.Contains(row)) continue;
    if (!std::exchange(is_first, false)) text += '\n';
    for (const int32_t column : columns) {
      if (column != columns.front()) text += '\t';
      if (Contains(blocks, row, column)) text += Quoted(reader.Cell(row, column));
    }
    if (text.size() >= most) return std::nullopt;
  }
  return text;
}

}  // namespace rowlark
