#include "host/cells/Address.h"

#include <algorithm>

#include "util/Text.h"

namespace rowlark::cells {
namespace {

// One side of an address: column letters, row digits or both; 0 stands for what is missing.
struct Corner {
  int32_t row = 0;
  int32_t column = 0;
};

int32_t Letter(char16_t c) {
  if (c >= u'A' && c <= u'Z') return c - u'A' + 1;
  if (c >= u'a' && c <= u'z') return c - u'a' + 1;
  return 0;
}

void SkipDollar(std::u16string_view& text) {
  if (!text.empty() && text.front() == u'$') text.remove_prefix(1);
}

std::optional<Corner> ParseCorner(std::u16string_view text, const SheetSize& size) {
  Corner corner;
  SkipDollar(text);
  while (!text.empty() && Letter(text.front()) != 0) {
    corner.column = corner.column * 26 + Letter(text.front());
    if (corner.column > size.columns) return std::nullopt;
    text.remove_prefix(1);
  }
  if (corner.column != 0) SkipDollar(text);
  if (!text.empty() && text.front() == u'0') return std::nullopt;
  while (!text.empty() && text.front() >= u'0' && text.front() <= u'9') {
    corner.row = corner.row * 10 + (text.front() - u'0');
    if (corner.row > size.rows) return std::nullopt;
    text.remove_prefix(1);
  }
  if (!text.empty() || (corner.row == 0 && corner.column == 0)) return std::nullopt;
  return corner;
}

void AppendColumn(std::u16string& text, int32_t column) {
  text += u'$';
  text += ColumnLetters(column);
}

void AppendRow(std::u16string& text, int32_t row) {
  text += u'$';
  text += ToText(row);
}

}  // namespace

std::optional<Block> ParseArea(std::u16string_view address, const SheetSize& size) {
  const auto colon = address.find(u':');
  const auto first = ParseCorner(address.substr(0, colon), size);
  if (!first) return std::nullopt;
  if (colon == std::u16string_view::npos) {
    if (first->row == 0 || first->column == 0) return std::nullopt;
    return Block::OfCell(first->row, first->column);
  }
  const auto second = ParseCorner(address.substr(colon + 1), size);
  // Both sides are cells, both are rows or both are columns.
  if (!second || (first->row == 0) != (second->row == 0) || (first->column == 0) != (second->column == 0)) {
    return std::nullopt;
  }
  Block area{std::min(first->row, second->row), std::min(first->column, second->column),
             std::max(first->row, second->row), std::max(first->column, second->column)};
  if (area.first_row == 0) area.first_row = 1, area.last_row = size.rows;
  if (area.first_column == 0) area.first_column = 1, area.last_column = size.columns;
  return area;
}

bool ParseAddress(std::u16string_view address, std::vector<Block>& areas, const SheetSize& size) {
  areas.clear();
  for (const auto piece : Pieces(address, u",")) {
    const auto area = ParseArea(piece, size);
    if (!area) return false;
    areas.push_back(*area);
  }
  return true;
}

void AppendAddress(std::u16string& text, const Block& area, const SheetSize& size) {
  if (area.Rows() == size.rows) {
    AppendColumn(text, area.first_column);
    text += u':';
    AppendColumn(text, area.last_column);
    return;
  }
  if (area.Columns() == size.columns) {
    AppendRow(text, area.first_row);
    text += u':';
    AppendRow(text, area.last_row);
    return;
  }
  AppendColumn(text, area.first_column);
  AppendRow(text, area.first_row);
  if (area.Rows() == 1 && area.Columns() == 1) return;
  text += u':';
  AppendColumn(text, area.last_column);
  AppendRow(text, area.last_row);
}

}  // namespace rowlark::cells
