#include "runtime/Searches.h"

#include <utility>

#include "runtime/modMain.h"

namespace rowlark {

OperationResult Searches::Search(const std::shared_ptr<clsVTRLKItems>& items,
                                 const std::shared_ptr<clsVTRLKOptions>& options, std::u16string_view text) {
  if (entry_guard_) return {Outcome::Refused, {}};
  shared_.GiveBackFlags();
  if (searching_) {
    given_up_ = false;
    if (!End(true)) return {Outcome::Refused, {}};
    if (shared_.Terminating || abandoned_ || given_up_) {
      shared_.GiveBackFlags();
      return {Outcome::Stopped, {}};
    }
  }
  stop_request_ = false;
  SearchRun run(shared_, items, *options, stop_request_, text, rows_);
  run_ = &run;
  searching_ = true;
  Raise(true);
  while (Advance(run)) PumpMessages(shared_);
  return run.Result();
}

// Takes a run one step farther; false when it has ended. Two calls may drive the same run in turn, but only
// the step that ends it says so.
bool Searches::Advance(SearchRun& run) {
  if (run.Done()) return false;
  run.Resume();
  if (!run.Done()) return true;
  run_ = nullptr;
  searching_ = false;
  Raise(false);
  return false;
}

void Searches::Stop() {
  stop_request_ = true;
  given_up_ = entry_guard_;
  PumpMessages(shared_);
}

bool Searches::End(bool superseded) {
  if (!searching_) return true;
  // The host has called back from inside an operation; the run that called it can not go on before we return.
  if (run_->OnStack()) return false;
  if (superseded) run_->Supersede(!abandoned_);
  const bool waiting = std::exchange(entry_guard_, true);
  stop_request_ = true;
  while (searching_) {
    if (!shared_.Terminating && !abandoned_) PumpMessages(shared_);
    if (searching_) Advance(*run_);
  }
  entry_guard_ = waiting;
  return true;
}

// The run lives beneath us on the stack, also when it is done or another one has taken over.
bool Searches::Finish() {
  const SearchRun* const run = run_;
  if (run == nullptr) return true;
  if (run->OnStack()) return false;
  while (searching_ && !shared_.Terminating && !abandoned_) {
    PumpMessages(shared_);
    Wait();
  }
  return run->Done() && run->Result().outcome == Outcome::Done;
}

void Searches::Wait() {
  if (run_ != nullptr && !run_->OnStack()) {
    Advance(*run_);
  } else {
    shared_.Platform.Pump.WaitForInput(1);
  }
}

void Searches::Abandon() {
  abandoned_ = true;
  if (End(true)) return;
  stop_request_ = true;
  run_->Supersede(false);
}

}  // namespace rowlark
