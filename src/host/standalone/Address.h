// Rectangles of cells and their A1 addresses.
#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark::standalone {

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

// Rows and columns count from 1; both corners belong to the rectangle.
struct Rect {
  int32_t first_row = 1;
  int32_t first_column = 1;
  int32_t last_row = 1;
  int32_t last_column = 1;

  int32_t Rows() const { return last_row - first_row + 1; }
  int32_t Columns() const { return last_column - first_column + 1; }
  bool Contains(int32_t row, int32_t column) const {
    return row >= first_row && row <= last_row && column >= first_column && column <= last_column;
  }
  friend bool operator==(const Rect&, const Rect&) = default;
};

inline bool IsCell(int32_t row, int32_t column, const SheetSize& size) {
  return row >= 1 && row <= size.rows && column >= 1 && column <= size.columns;
}

// The smallest rectangle that holds both.
inline Rect Join(const Rect& a, const Rect& b) {
  return {std::min(a.first_row, b.first_row), std::min(a.first_column, b.first_column),
          std::max(a.last_row, b.last_row), std::max(a.last_column, b.last_column)};
}

// "A1", "$B$3:F200", "1:5", "A:C" in either letter case; corners in any order. Nothing for anything else, and
// beyond the sheet.
std::optional<Rect> ParseArea(std::u16string_view address, const SheetSize& size = {});

// One or more areas joined by commas, into `areas`, which is emptied first; false for anything else.
bool ParseAddress(std::u16string_view address, std::vector<Rect>& areas, const SheetSize& size = {});

// "A" to "XFD".
std::u16string ColumnLetters(int32_t column);

// Absolute ("$B$3:$F$200"); whole columns and rows as "$A:$C" and "$1:$5".
void AppendAddress(std::u16string& text, const Rect& area, const SheetSize& size = {});

}  // namespace rowlark::standalone
