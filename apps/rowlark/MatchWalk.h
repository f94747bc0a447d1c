// The way from a cell to the next match, or to the one before; behind the last one comes the first. It is
// gone in pieces, between which rows may come, go and change.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "Matches.h"
#include "sheetview/Moves.h"

namespace rowlark {

class MatchWalk {
 public:
  MatchWalk(sheetview::Cell from, bool back) : from_(from), back_(back), row_(from.row) {}

  bool Back() const { return back_; }
  // The one that is looked at next.
  int32_t Row() const { return row_; }

  // Goes on until then; false at the end.
  bool GoOn(const Matches& matches, std::chrono::steady_clock::time_point until);
  // At the end: the cell where it leads, nothing without any match.
  std::optional<sheetview::Cell> Found() const { return found_; }

 private:
  bool Look(const Matches& matches);
  bool Step(const Matches& matches);

  sheetview::Cell from_;
  bool back_;
  int32_t row_;
  bool turned_ = false;  // it goes on from the other end of the table
  std::optional<sheetview::Cell> found_;
};

}  // namespace rowlark
