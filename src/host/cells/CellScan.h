// Walks over the cells of a block of rows that match a pattern, by scanning for the pattern's literal.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/cells/CellText.h"
#include "host/cells/Pattern.h"
#include "host/cells/Scan.h"

namespace rowlark::cells {

// The columns in which a match counts.
class WantedColumns {
 public:
  // From `first` to `last`, those of a list that ascends; `used` is the last column that holds a text.
  WantedColumns(int32_t first, int32_t last, const std::vector<int32_t>* list, int32_t used)
      : first_(first), last_(last), list_(list), all_(list == nullptr && first == 1 && last >= used) {}

  // Whether the column of a text is of no matter.
  bool All() const { return all_; }
  // The first one at or behind `column`; nothing when there is none.
  std::optional<int32_t> From(int32_t column) const;

 private:
  int32_t first_;
  int32_t last_;
  const std::vector<int32_t>* list_;  // null: all of them
  bool all_;
};

class CellScan {
 public:
  // The pattern has a literal. `rare` are the bytes of it that are rarest in the text.
  CellScan(const Pattern& pattern, Pattern::RareBytes rare, const WantedColumns& columns)
      : kernel_(SelectScan()), pattern_(pattern), rare_(rare), columns_(columns) {}

  // Before the first cell of some rows of a block.
  void Start(const CellText::Piece& piece);
  // Before the cell of that column, or a later one, in the row in which it stands.
  void PassTo(int32_t column);
  // Behind the row in which it stands, or before row `row` of the block, which comes later.
  void PassRow() { PassToRow(row_ + 1); }
  void PassToRow(std::size_t row);

  // Goes on to the first cell that matches, from where it stands; false when there is none.
  bool Find();

  // The cell found: its row in the block, from 0, and its column.
  std::size_t Row() const { return row_; }
  int32_t Column();

 private:
  bool IsWanted();

  const ScanKernel& kernel_;
  const Pattern& pattern_;
  const Pattern::RareBytes rare_;
  const WantedColumns& columns_;

  const CellText::Twin* twin_ = nullptr;
  std::size_t end_row_ = 0;
  const char* end_ = nullptr;
  const char* at_ = nullptr;    // where it stands
  const char* text_ = nullptr;  // a place in the text of the cell found
  std::size_t row_ = 0;
  int32_t separators_ = 0;  // from the start of the row to `counted_`
  const char* counted_ = nullptr;
};

}  // namespace rowlark::cells
