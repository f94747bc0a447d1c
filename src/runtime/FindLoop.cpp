#include "runtime/FindLoop.h"

#include <algorithm>
#include <utility>

namespace rowlark {

FindLoop::FindLoop(Ref<host::Range> range, int32_t width, bool visible, const host::FindArguments& arguments,
                   std::optional<std::vector<int32_t>> columns)
    : range_(std::move(range)),
      width_(width),
      visible_(visible),
      what_(arguments.What),
      arguments_(arguments),
      columns_(std::move(columns)) {
  arguments_.What = what_;
}

host::RowSearch::Piece FindLoop::Next(std::vector<int32_t>& rows) { return cell_ ? GoOn(rows) : Begin(rows); }

host::RowSearch::Piece FindLoop::Begin(std::vector<int32_t>& rows) {
  if (!range_->PrepareFind()) return Piece::NoMatch;
  cell_ = range_->Find(arguments_);
  if (!cell_) return Piece::End;
  first_row_ = last_row_ = cell_->Row();
  Take(*cell_, first_row_, rows);
  return Piece::Matches;
}

host::RowSearch::Piece FindLoop::GoOn(std::vector<int32_t>& rows) {
  if (first_address_.empty()) first_address_ = cell_->Address();
  cell_ = range_->FindNext(*cell_);
  if (!cell_) return Piece::End;
  const int32_t row = cell_->Row();
  if (row == first_row_ && cell_->Address() == first_address_) return Piece::End;
  if (GoesInCircles(row)) return Piece::End;
  Take(*cell_, row, rows);
  return Piece::Matches;
}

// FindNext goes round until it comes back to the first match. That cell may have ceased to match, since
// messages are processed in between, and then it would go round for ever. Rows ascend within an area and
// begin anew at most once an area, the last time for the cell at its upper left, which is looked at last; and
// a row has no more matches than cells.
bool FindLoop::GoesInCircles(int32_t row) {
  if (row == last_row_ && ++in_row_ <= width_) return false;
  const bool anew = row <= last_row_;
  last_row_ = row;
  in_row_ = 1;
  return anew && ++rounds_ > 1 && rounds_ > range_->AreasCount();
}

void FindLoop::Take(const host::Range& cell, int32_t row, std::vector<int32_t>& rows) const {
  if (!rows.empty() && rows.back() == row) return;
  if (columns_ && !std::ranges::binary_search(*columns_, cell.Column())) return;
  if (visible_ || !cell.EntireRowHidden()) rows.push_back(row);
}

}  // namespace rowlark
