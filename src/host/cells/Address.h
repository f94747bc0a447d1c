// Blocks of cells and their A1 addresses; all blocks of the sheet model are closed.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Block.h"

namespace rowlark::cells {

inline constexpr int32_t kMaxRow = 1048576;
inline constexpr int32_t kMaxColumn = 16384;

struct SheetSize {
  int32_t rows = kMaxRow;
  int32_t columns = kMaxColumn;
};
// Of workbooks in the format of versions 8 to 11.
inline constexpr SheetSize kSmallSheet{65536, 256};

// Rows and columns count from 1. Cells are ordered row by row.
struct Cell {
  int32_t row = 0;
  int32_t column = 0;
  // NOLINTNEXTLINE(modernize-use-nullptr): a fault of the check
  friend auto operator<=>(const Cell&, const Cell&) = default;
};

inline bool IsCell(int32_t row, int32_t column, const SheetSize& size) {
  return row >= 1 && row <= size.rows && column >= 1 && column <= size.columns;
}

// "A1", "$B$3:F200", "1:5", "A:C" in either letter case; corners in any order. Nothing for anything else, and
// beyond the sheet.
std::optional<Block> ParseArea(std::u16string_view address, const SheetSize& size = {});

// One or more areas joined by commas, into `areas`, which is emptied first; false for anything else.
bool ParseAddress(std::u16string_view address, std::vector<Block>& areas, const SheetSize& size = {});

// Absolute ("$B$3:$F$200"); whole columns and rows as "$A:$C" and "$1:$5".
void AppendAddress(std::u16string& text, const Block& area, const SheetSize& size = {});

}  // namespace rowlark::cells
