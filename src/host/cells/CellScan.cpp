#include "host/cells/CellScan.h"

#include <algorithm>
#include <cstring>

namespace rowlark::cells {
namespace {

// The row that holds the byte at `offset`, at or behind row `from`; near rows are found first.
std::size_t RowAt(const std::vector<std::size_t>& start, std::size_t from, std::size_t offset) {
  std::size_t step = 1;
  while (from + step < start.size() && start[from + step] <= offset) {
    from += step;
    step *= 2;
  }
  const auto begin = start.begin() + static_cast<std::ptrdiff_t>(from);
  const auto end = start.begin() + static_cast<std::ptrdiff_t>(std::min(from + step, start.size()));
  return static_cast<std::size_t>(std::upper_bound(begin, end, offset) - start.begin()) - 1;
}

// The next separator, or `end`.
const char* Separator(const char* from, const char* end) {
  const auto* found =
      static_cast<const char*>(std::memchr(from, CellText::kSeparator, static_cast<std::size_t>(end - from)));
  return found == nullptr ? end : found;
}

// Where the text of the cell begins that a place lies in.
const char* CellBegin(const char* place) {
  while (place[-1] != CellText::kSeparator) --place;
  return place;
}

}  // namespace

std::optional<int32_t> WantedColumns::From(int32_t column) const {
  column = std::max(column, first_);
  if (list_ != nullptr) {
    const auto next = std::ranges::lower_bound(*list_, column);
    if (next == list_->end()) return std::nullopt;
    column = *next;
  }
  return column <= last_ ? std::optional(column) : std::nullopt;
}

void CellScan::Start(const CellText::Piece& piece) {
  twin_ = &piece.TwinFor(pattern_.MatchCase());
  end_row_ = piece.end;
  end_ = twin_->Row(end_row_);
  PassToRow(piece.first);
}

void CellScan::PassToRow(std::size_t row) {
  row_ = std::min(row, end_row_);
  at_ = counted_ = twin_->Row(row_);
  separators_ = 0;
}

void CellScan::PassTo(int32_t column) {
  const char* const row_end = twin_->Row(row_ + 1);
  counted_ = Separator(counted_, row_end);
  for (; separators_ + 1 < column && counted_ < row_end; ++separators_) {
    counted_ = Separator(counted_ + 1, row_end);
  }
  at_ = counted_;
}

bool CellScan::Find() {
  const std::string& literal = pattern_.Literal();
  while ((at_ = kernel_.find(at_, end_, literal.data(), literal.size(), rare_.first, rare_.second)) != end_) {
    const auto offset = static_cast<std::size_t>(at_ - twin_->bytes.data());
    if (offset >= twin_->start[row_ + 1]) {
      row_ = RowAt(twin_->start, row_, offset);
      counted_ = twin_->Row(row_);
      separators_ = 0;
    }
    text_ = at_ + pattern_.LiteralLead();
    if (!columns_.All() && !IsWanted()) continue;
    if (pattern_.LiteralSuffices()) return true;
    const char* const cell_end = Separator(text_, end_);
    if (pattern_.Matches({CellBegin(text_), cell_end})) return true;
    at_ = cell_end;
  }
  return false;
}

// Whether the cell found stands in a column that is wanted; goes on to the next one otherwise.
bool CellScan::IsWanted() {
  const int32_t column = Column();
  const auto wanted = columns_.From(column);
  if (!wanted) {
    PassRow();
  } else if (*wanted != column) {
    PassTo(*wanted);
  }
  return wanted == column;
}

int32_t CellScan::Column() {
  separators_ += kernel_.count(counted_, text_, CellText::kSeparator);
  counted_ = text_;
  return separators_;
}

}  // namespace rowlark::cells
