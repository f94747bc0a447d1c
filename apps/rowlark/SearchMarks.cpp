#include "SearchMarks.h"

#include <utility>

#include "host/cells/Address.h"

namespace rowlark {
namespace {

using std::chrono::steady_clock;

// Between two looks at the keyboard.
constexpr auto kSlice = std::chrono::milliseconds(8);

}  // namespace

SearchMarks::SearchMarks(Program& program, terminal::TerminalMessagePump& pump,
                         terminal::TerminalWindowSystem& windows, Tables& tables)
    : program_(program),
      pump_(pump),
      windows_(windows),
      tables_(tables),
      searching_(program.Runtime().SearchingEvent().Connect([this](bool& on) { evtRLRTM_Searching(on); })) {}

std::shared_ptr<clsVTRLKItem> SearchMarks::DetectedProfile() const {
  std::shared_ptr<clsVTRLKItem> profile;
  Attempt(program_.Trace(), [&] {
    auto detected = program_.Items().ForWorkbook(tables_.Active().Workbook()->Name())->Clone();
    program_.Runtime().DetectSearchRange(tables_.View().Sheet(), *detected);
    profile = detected;
  });
  return profile;
}

Highlight SearchMarks::MakeHighlight() const {
  const auto profile = DetectedProfile();
  if (!profile) return {};
  Highlight highlight;  // none where the search will fail
  Attempt(program_.Trace(), [&] {
    highlight = {searched_, *program_.Runtime().SearchOptions, profile->Block(),
                 Columns(profile->SearchCols).On(tables_.View().Sheet())};
  });
  return highlight;
}

void SearchMarks::evtRLRTM_Searching(bool searching) {
  if (searching) {
    search_began_ = steady_clock::now();
    if (const auto form = program_.Forms().Search()) searched_ = form->cboText.Text();
    Forget();
    highlight_ = MakeHighlight();
  } else {
    search_time_ = std::chrono::duration<double, std::milli>(steady_clock::now() - search_began_).count();
  }
  pump_.Invalidate();
}

void SearchMarks::SearchAgain() {
  if (const auto form = program_.Forms().Search()) {
    if (!form->cboText.Text().empty()) form->tmr0.SetEnabled(true);
  } else if (program_.Items().RowsIsGrouped) {
    program_.Runtime().RunSearch(searched_);
  }
}

void SearchMarks::Forget() {
  highlight_ = {};
  matches_.reset();
  StopLooking();
}

bool SearchMarks::Shown() const {
  const auto form = program_.Forms().Search();
  return program_.Items().RowsIsGrouped || (form && !form->cboText.Text().empty());
}

const Matches* SearchMarks::Counted() const {
  return matches_ && matches_->Holds() && matches_->Counted() ? &*matches_ : nullptr;
}

bool SearchMarks::Work() {
  if (!Shown()) {
    matches_.reset();
    StopLooking();
  }
  return Walk() || Count();
}

bool SearchMarks::Count() {
  if (!Shown()) return false;
  if (!matches_ || !matches_->Holds()) matches_.emplace(&tables_.View().Sheet(), highlight_);
  if (matches_->Counted()) return false;
  matches_->Count(steady_clock::now() + kSlice);
  return true;
}

void SearchMarks::GoToNext(bool back) {
  if (!Shown()) return windows_.Beep();
  if (walk_ && walk_->Back() == back) {
    ++walks_left_;
    return;
  }
  StopLooking();
  walk_.emplace(tables_.View().At(), back);
  Walk();
}

bool SearchMarks::StopLooking() {
  walks_left_ = 0;
  return std::exchange(walk_, std::nullopt).has_value();
}

bool SearchMarks::Walk() {
  const auto end = steady_clock::now() + kSlice;
  while (walk_) {
    auto& view = tables_.View();
    if (walk_->GoOn({&view.Sheet(), highlight_}, end)) return true;
    const auto found = walk_->Found();
    pump_.Invalidate();
    if (!found) {
      StopLooking();
      windows_.Beep();
    } else {
      view.GoTo(*found);
      if (walks_left_-- > 0) {
        walk_.emplace(*found, walk_->Back());
      } else {
        StopLooking();
      }
    }
  }
  return false;
}

}  // namespace rowlark
