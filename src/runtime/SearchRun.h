// One run of the search engine: finds the rows that match and hides the others, or goes to the first match.
//
// The host is used on one thread, and messages are processed in the middle of a run; what they call may want
// the run to end and can not wait for what lies beneath it on the stack. So a run does not live on anyone's
// stack: it suspends at every stop check, and whoever waits for it processes messages and resumes it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/spreadsheet.h"
#include "runtime/DetectSearchRange.h"
#include "runtime/Outcome.h"
#include "runtime/Resumable.h"
#include "runtime/clsVTRLKOptions.h"
#include "settings/SharedState.h"
#include "settings/clsVTRLKItems.h"

namespace rowlark {

class SearchRun {
 public:
  // `stop_request` ends the run at its next stop check. `rows` is where the run lists what it finds: whoever
  // makes one run after the other keeps the memory for the next.
  SearchRun(SharedState& shared, std::shared_ptr<clsVTRLKItems> items, const clsVTRLKOptions& options,
            const bool& stop_request, std::u16string_view text, std::vector<int32_t>& rows);
  SearchRun(const SearchRun&) = delete;
  SearchRun& operator=(const SearchRun&) = delete;

  // Goes on to the next stop check, where messages are to be processed, or to the end. Does nothing while the
  // run is on the stack already.
  void Resume();
  bool OnStack() const { return on_stack_; }
  bool Done() const { return work_.Done(); }

  // Nobody will look at the rows: whatever the run still finds is of no interest to its caller, and it hides
  // nothing more. The stop request has to be set as well. Where something else that changes the rows follows
  // at once, the screen stays switched off for it.
  void Supersede(bool followed) {
    superseded_ = true;
    followed_ = followed;
  }

  // When done.
  OperationResult Result() const {
    return superseded_ ? OperationResult{Outcome::Stopped, {}} : OperationResult{outcome_, error_};
  }

 private:
  struct StopCheck;

  Resumable Work();
  std::vector<std::u16string> Words() const;
  host::FindArguments What(std::u16string_view word) const;
  Ref<host::Range> SearchRange(const host::Worksheet& sheet, const DetectedRange& detected);
  Ref<host::RowSearch> RowsWith(std::u16string_view word, const Ref<host::Range>& range) const;
  bool HideSome(host::Worksheet& sheet, std::span<const host::RowRun>& runs);

  SharedState& shared_;
  const std::shared_ptr<clsVTRLKLang> language_;  // the library may end during the run
  const std::shared_ptr<clsVTRLKItems> items_;
  const clsVTRLKOptions options_;  // as they are when the run starts
  const bool& stop_request_;
  const std::u16string text_;
  std::vector<int32_t>& rows_;  // of the matches; a row may stand there more than once

  std::optional<std::vector<int32_t>> columns_;  // those searched, ascending, unless all are
  int32_t end_row_ = 0;                          // last row of the search range
  int32_t width_ = 0;                            // its columns
  bool all_visible_ = false;                     // none of its rows is hidden

  Outcome outcome_ = Outcome::Stopped;
  std::u16string error_;
  bool on_stack_ = false;
  bool superseded_ = false;
  bool followed_ = false;
  Resumable work_;
};

}  // namespace rowlark
