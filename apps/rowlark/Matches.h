// The cells that hold what was searched for, in the rows that show: where they are and how many there are.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

#include "Highlight.h"
#include "host/standalone/Worksheet.h"
#include "sheetview/Moves.h"

namespace rowlark {

class Matches {
 public:
  Matches(Ref<standalone::Worksheet> sheet, const Highlight& highlight);

  // Whether it still looks at what is there: nothing was hidden, shown, changed or loaded since.
  bool Holds() const;

  // Counts on until then; false when nothing is left to count.
  bool Count(std::chrono::steady_clock::time_point until);
  bool Counted() const { return next_row_ > last_row_; }
  int32_t Cells() const { return cells_; }
  int32_t Rows() const { return rows_; }
  // Which one a cell is, from 1; 0 for one that does not match. Of counted ones.
  int32_t Number(sheetview::Cell cell) const;

  // In ascending order; empty for a row that does not show.
  std::vector<int32_t> ColumnsIn(int32_t row) const;
  // Of the rows that may hold matches and show the one below a row, or above it; nothing beyond the last one.
  std::optional<int32_t> RowBeside(int32_t row, bool above) const;
  // The lowest of those rows, or the highest one.
  std::optional<int32_t> EndRow(bool lowest) const {
    return RowBeside(lowest ? last_row_ + 1 : first_row_ - 1, lowest);
  }

 private:
  struct Mark {
    int32_t row;    // that shows
    int32_t cells;  // in those above
  };

  Ref<standalone::Worksheet> sheet_;
  Highlight highlight_;
  uint64_t layout_;
  uint64_t version_;
  int32_t first_row_;
  int32_t last_row_;
  int32_t next_row_;  // to count in
  int32_t cells_ = 0;
  int32_t rows_ = 0;
  std::vector<Mark> marks_;  // one for some hundred rows
};

}  // namespace rowlark
