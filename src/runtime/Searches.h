// The searches of a runtime object: one is under way at most, and the last one asked for wins.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/SearchRun.h"
#include "settings/SharedState.h"
#include "util/Event.h"

namespace rowlark {

// Messages that its operations process may destroy the runtime object: whoever calls one holds the searches.
class Searches {
 public:
  explicit Searches(SharedState& shared) : shared_(shared) {}
  Searches(const Searches&) = delete;
  Searches& operator=(const Searches&) = delete;

  OperationResult Search(const std::shared_ptr<clsVTRLKItems>& items,
                         const std::shared_ptr<clsVTRLKOptions>& options, std::u16string_view text);
  bool Searching() const { return searching_; }
  Event<bool&>& SearchingEvent() { return searching_event_; }

  // Asks the run under way to end at its next stop check.
  void Stop();
  // Stops the run under way and brings it to its end; false when this comes from inside an operation of the
  // host that the run has called. Nobody will look at the rows of a superseded run.
  bool End(bool superseded);
  // Brings the run under way to its own end; whether it found rows, true where there is none, false where it
  // was stopped or can not be waited for.
  bool Finish();
  // Waits for a moment: takes the run under way a step farther, or else waits for input.
  void Wait();

  // The runtime object goes: nothing waits any longer.
  void Abandon();
  bool Abandoned() const { return abandoned_; }

 private:
  bool Advance(SearchRun& run);
  void Raise(bool searching) { searching_event_.Raise(searching); }

  SharedState& shared_;
  SearchRun* run_ = nullptr;  // the run under way; it lives in the call of Search that began it
  bool searching_ = false;
  bool stop_request_ = false;
  bool entry_guard_ = false;  // an earlier run is being brought to its end
  bool given_up_ = false;     // the search that waits for that was stopped as well
  bool abandoned_ = false;
  std::vector<int32_t> rows_;  // that the run finds
  Event<bool&> searching_event_{shared_.Platform.Trace};
};

}  // namespace rowlark
