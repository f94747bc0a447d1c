// Finds the rows that hold a match one cell after the other, with Find and FindNext: for hosts that do not
// find them in bulk. Every match is a piece of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/spreadsheet.h"

namespace rowlark {

class FindLoop final : public host::RowSearch {
 public:
  // `width` is the number of columns that the range spans, `visible` that none of its rows is hidden;
  // `columns` ascend.
  FindLoop(Ref<host::Range> range, int32_t width, bool visible, const host::FindArguments& arguments,
           std::optional<std::vector<int32_t>> columns);

  // A match counts in one of the columns and in a visible row; one that does not is a match all the same.
  Piece Next(std::vector<int32_t>& rows) override;

 private:
  Piece Begin(std::vector<int32_t>& rows);
  Piece GoOn(std::vector<int32_t>& rows);
  bool GoesInCircles(int32_t row);
  void Take(const host::Range& cell, int32_t row, std::vector<int32_t>& rows) const;

  const Ref<host::Range> range_;
  const int32_t width_;
  const bool visible_;
  const std::u16string what_;
  host::FindArguments arguments_;
  const std::optional<std::vector<int32_t>> columns_;

  Ref<host::Range> cell_;  // the last match
  int32_t first_row_ = 0;  // of the first match
  std::u16string first_address_;
  int32_t last_row_ = 0;  // of the last match
  int32_t in_row_ = 1;    // how many matches in succession stand in that row
  int32_t rounds_ = 0;    // how often the rows have begun anew
};

}  // namespace rowlark
