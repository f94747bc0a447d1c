// Places on a sheet, as the logic keeps and shows them: blocks of cells, lists of columns, and addresses for
// the user.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/spreadsheet.h"

namespace rowlark {

// Rows and columns count from 1, and both corners belong to the block; a bound of 0 or below is open.
struct Block {
  int32_t first_row = 0;
  int32_t first_column = 0;
  int32_t last_row = 0;
  int32_t last_column = 0;

  // The first area of a range. Throws host::Error.
  static Block Of(const host::Range& range);
  static constexpr Block OfCell(int32_t row, int32_t column) { return {row, column, row, column}; }

  bool IsClosed() const { return first_row > 0 && first_column > 0 && last_row > 0 && last_column > 0; }
  // "B3:F200", of a closed one.
  std::u16string Address() const;
  friend bool operator==(const Block&, const Block&) = default;

  // Of closed ones:
  int32_t Rows() const { return last_row - first_row + 1; }
  int32_t Columns() const { return last_column - first_column + 1; }
  bool Contains(int32_t row, int32_t column) const {
    return row >= first_row && row <= last_row && column >= first_column && column <= last_column;
  }
};

// The smallest block that holds two closed ones.
inline Block Join(const Block& a, const Block& b) {
  return {std::min(a.first_row, b.first_row), std::min(a.first_column, b.first_column),
          std::max(a.last_row, b.last_row), std::max(a.last_column, b.last_column)};
}

// The columns that a text names by their letters, with commas between ("A,C"); an empty text names none.
class Columns {
 public:
  explicit Columns(std::u16string_view text);

  // As they stand in the text; a name need not be one of a column.
  const std::vector<std::u16string>& Names() const& { return names_; }
  std::vector<std::u16string> Names() && { return std::move(names_); }
  // Their numbers on a sheet, ascending. Those that only a larger sheet has are left out; throws host::Error
  // for a name that is no column's.
  std::vector<int32_t> On(const host::Worksheet& sheet) const;

 private:
  std::vector<std::u16string> names_;
};

// "A" to "XFD".
std::u16string ColumnLetters(int32_t column);

// "B3:F200" of "$B$3:$F$200".
std::u16string WithoutDollars(std::u16string address);
// The address of a range without dollar signs. Throws host::Error.
std::u16string PlainAddress(const host::Range& range);

}  // namespace rowlark
