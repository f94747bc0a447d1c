// What was searched for last: where it stands in the table that shows, in how many cells and rows, and the
// way from one of them to the next. In large tables that takes a while, so it is done in pieces.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "Highlight.h"
#include "MatchWalk.h"
#include "Matches.h"
#include "Program.h"
#include "Tables.h"
#include "host/terminal/TerminalWindowSystem.h"
#include "util/Event.h"

namespace rowlark {

class SearchMarks {
 public:
  SearchMarks(Program& program, terminal::TerminalMessagePump& pump, terminal::TerminalWindowSystem& windows,
              Tables& tables);

  // Whether it is marked: while its rows show alone, or its text stands in the search form.
  bool Shown() const;
  Highlight Marks() const { return Shown() ? highlight_ : Highlight(); }
  // Null until all of them are counted.
  const Matches* Counted() const;
  // Milliseconds that the search took; nothing before the first one.
  std::optional<double> SearchTime() const { return search_time_; }

  // The profile of the active workbook with what it leaves open filled in; null when that fails.
  std::shared_ptr<clsVTRLKItem> DetectedProfile() const;

  // Another table shows, or other rows: nothing is marked until the next search.
  void Forget();
  // Searches the rows that have come since as well.
  void SearchAgain();

  // Counts, and looks for the match to go to, for a little while; false when nothing is left to do.
  bool Work();
  // Goes to the next match from the active cell, or to the one before, as soon as that is found.
  void GoToNext(bool back);
  // The row that is being looked at for it.
  std::optional<int32_t> LooksAt() const { return walk_ ? std::optional(walk_->Row()) : std::nullopt; }
  // Looks no more for it; false when it did not.
  bool StopLooking();

 private:
  void evtRLRTM_Searching(bool searching);
  Highlight MakeHighlight() const;
  bool Walk();
  bool Count();

  Program& program_;
  terminal::TerminalMessagePump& pump_;
  terminal::TerminalWindowSystem& windows_;
  Tables& tables_;
  Connection searching_;
  std::chrono::steady_clock::time_point search_began_;
  std::optional<double> search_time_;
  std::u16string searched_;  // the text
  Highlight highlight_;
  std::optional<Matches> matches_;
  std::optional<MatchWalk> walk_;
  int32_t walks_left_ = 0;  // how often the user has asked for more meanwhile
};

}  // namespace rowlark
