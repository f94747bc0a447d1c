#include "MatchWalk.h"

#include <algorithm>

namespace rowlark {

bool MatchWalk::GoOn(const Matches& matches, std::chrono::steady_clock::time_point until) {
  while (!Look(matches) && Step(matches)) {
    if (std::chrono::steady_clock::now() >= until) return true;
  }
  return false;
}

// The row of the beginning comes twice: at first the rest of it, at the end all of it.
bool MatchWalk::Look(const Matches& matches) {
  const auto columns = matches.ColumnsIn(row_);
  auto begin = columns.begin();
  auto end = columns.end();
  if (row_ == from_.row && !turned_) {
    if (back_) {
      end = std::ranges::lower_bound(columns, from_.column);
    } else {
      begin = std::ranges::upper_bound(columns, from_.column);
    }
  }
  if (begin == end) return false;
  found_ = sheetview::Cell{row_, back_ ? *(end - 1) : *begin};
  return true;
}

bool MatchWalk::Step(const Matches& matches) {
  auto next = matches.RowBeside(row_, back_);
  if (!next) {
    if (std::exchange(turned_, true)) return false;
    next = matches.EndRow(back_);
  }
  if (!next || (turned_ && (back_ ? *next < from_.row : *next > from_.row))) return false;
  row_ = *next;
  return true;
}

}  // namespace rowlark
