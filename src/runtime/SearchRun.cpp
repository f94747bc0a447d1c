#include "runtime/SearchRun.h"

#include <algorithm>
#include <cstdlib>

#include "runtime/Failure.h"
#include "runtime/FindLoop.h"
#include "runtime/ShowAll.h"
#include "util/Scope.h"
#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

using Piece = host::RowSearch::Piece;

// How many runs of rows are hidden before messages are processed again.
constexpr std::size_t kRunsBetweenChecks = 64;

bool MayHideRows(const host::Application& application, const host::Worksheet& sheet) {
  if (application.Version() == u"8.0" && Require(sheet.Parent())->ReadOnly()) return false;
  return !sheet.ProtectScenarios();
}

// The rows first to last that are not listed. The list ascends and may name a row more than once.
std::vector<host::RowRun> Gaps(std::span<const int32_t> rows, int32_t first, int32_t last) {
  std::vector<host::RowRun> gaps;
  const auto others = std::max<std::ptrdiff_t>(last - first + 1 - std::ssize(rows), 0);
  gaps.reserve(std::min(rows.size() + 1, static_cast<std::size_t>(others)));
  for (const int32_t row : rows) {
    if (row > first) gaps.push_back({first, row - 1});
    first = row + 1;
  }
  if (first <= last) gaps.push_back({first, last});
  return gaps;
}

}  // namespace

// `co_await StopCheck` is the place where messages are processed; it tells whether the run is to stop.
struct SearchRun::StopCheck {
  const bool& stop_request;
  bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<>) const noexcept {}
  bool await_resume() const noexcept { return stop_request; }
};

SearchRun::SearchRun(SharedState& shared, std::shared_ptr<clsVTRLKItems> items,
                     const clsVTRLKOptions& options, const bool& stop_request, std::u16string_view text,
                     std::vector<int32_t>& rows)
    : shared_(shared),
      language_(shared.Language),
      items_(std::move(items)),
      options_(options),
      stop_request_(stop_request),
      text_(text),
      rows_(rows),
      work_(Work()) {
  rows_.clear();
}

void SearchRun::Resume() {
  if (on_stack_ || Done()) return;
  const ScopedFlag on_stack(on_stack_);
  work_.Resume();
}

std::vector<std::u16string> SearchRun::Words() const {
  if (options_.SearchWords != xcVT_SEARCH_WORDS_ANY) return {text_};
  const auto text = mclsVTString::Replace(text_, u"  ", u" ", CompareMode::Binary);
  const auto words = Pieces(text, u" ");
  return {words.begin(), words.end()};
}

host::FindArguments SearchRun::What(std::u16string_view word) const {
  host::FindArguments arguments;
  arguments.What = word;
  arguments.LookIn = host::xlValues;
  arguments.LookAt = options_.SearchWords == xcVT_SEARCH_WORDS_CELL ? host::xlWhole : host::xlPart;
  arguments.SearchDirection = host::xlNext;
  arguments.MatchCase = options_.CompareMethod == CompareMode::Binary;
  return arguments;
}

Ref<host::Range> SearchRun::SearchRange(const host::Worksheet& sheet, const DetectedRange& detected) {
  Block block = detected.block;
  if (!detected.ends_used) {
    const auto used = sheet.UsedRange();
    const int32_t limit_row = used->Row() + used->RowsCount();  // one more than the last used row
    block.last_row = block.last_row >= 0 ? std::min(block.last_row, limit_row) : limit_row;
  }
  auto range = RangeOnSheet(sheet, block);
  end_row_ = block.last_row;
  width_ = std::abs(block.last_column - block.first_column) + 1;
  // Rows that an AutoFilter hides are never searched. Of a single cell the host would give the visible cells
  // of the whole sheet; in a hidden row it finds nothing anyhow.
  if (!detected.filtered || (width_ == 1 && block.first_row == end_row_)) return range;
  all_visible_ = true;
  return range->SpecialCells(host::xlCellTypeVisible);
}

// Whoever only goes to the first match of a word wants the one that the host's Find gives first, which need
// not be the one in the highest row.
Ref<host::RowSearch> SearchRun::RowsWith(std::u16string_view word, const Ref<host::Range>& range) const {
  if (options_.UseFilter) {
    if (auto rows = range->FindRows(What(word), columns_)) return rows;
  }
  return MakeRef<FindLoop>(range, width_, all_visible_, What(word), columns_);
}

// Takes those that are hidden off the list; false when the host refuses.
bool SearchRun::HideSome(host::Worksheet& sheet, std::span<const host::RowRun>& runs) {
  try {
    runs = runs.subspan(sheet.HideRows(runs.first(std::min(runs.size(), kRunsBetweenChecks))));
    return true;
  } catch (...) {
    TraceCaught(shared_.Platform.Trace);
    outcome_ = Outcome::Failed;
    error_ = language_->GetText(u"Err.SearchHide", u"Error #%1: Can not hide/unhide rows %2",
                                {u"397", CurrentDescription()});
    return false;
  }
}

Resumable SearchRun::Work() {
  const StopCheck stopped{stop_request_};
  try {
    const auto application = Require(shared_.ExcelApp);
    FlagScope screen(shared_.Flags, application, HostFlag::ScreenUpdating, true);
    // Nobody is to see what this search has come to where another one goes on from there.
    const ScopeExit unseen([&]() noexcept {
      if (followed_ && shared_.ExcelApp == application) screen.Leave();
    });
    FlagScope animations(shared_.Flags, application, HostFlag::EnableAnimations);
    FlagScope events(shared_.Flags, application, HostFlag::EnableEvents);
    const auto sheet = Require(application->ActiveSheet());
    animations.Change(false);
    events.Change(false);

    // As it is now: messages may change the profile.
    const auto profile = ActiveProfile(*application, *items_);
    const Columns searched(profile->SearchCols);
    const int32_t jump_column = profile->SelectCol;
    const auto detected = DetectSearchRange(*sheet, profile->Block());
    if (co_await stopped) co_return;
    // Where rows can not be hidden none are shown either, and the search only goes to the first match.
    const bool hides = options_.UseFilter && MayHideRows(*application, *sheet);
    if (hides) {
      std::u16string discarded;  // a search that can not begin says nothing
      const SearchedSheet searched_sheet{sheet, profile, detected.filtered ? 0 : detected.block.first_column};
      const auto shown = ShowAll(shared_, *application, screen, *items_, true, discarded, &searched_sheet);
      if (shown == Shown::Unknown) {
        outcome_ = Outcome::Failed;
        co_return;
      }
      all_visible_ = shown == Shown::Every;
    }
    if (co_await stopped) co_return;

    if (!searched.Names().empty()) columns_ = searched.On(*sheet);
    const auto range = SearchRange(*sheet, detected);
    bool enough = false;
    for (const auto& word : Words()) {
      const auto search = RowsWith(word, range);
      bool matched = false;  // before this piece
      for (auto piece = Piece::NoMatch; (piece = search->Next(rows_)) != Piece::End;) {
        const bool stop = co_await stopped;
        if (stop && !matched) co_return;
        enough = stop || (shared_.Terminating && (matched || piece == Piece::NoMatch));
        matched |= piece == Piece::Matches;
        if (enough || (matched && !options_.UseFilter)) break;
      }
      if (enough) break;
    }
    if (superseded_) co_return;
    if (rows_.empty()) {
      outcome_ = Outcome::NotFound;
      error_ = language_->GetText(u"Err.SearchTextNotFound", u"Text not found");
      co_return;
    }
    // Every word finds its rows in ascending order.
    if (!std::ranges::is_sorted(rows_)) std::ranges::sort(rows_);

    if (hides) {
      screen.Change(false);
      items_->RowsIsGrouped = true;  // also when the host refuses a block: those before it are hidden
      // What stands above a range that nobody chose goes too, but for a single row, which is likely a header.
      const bool above = detected.automatic && rows_.front() > 2;
      const auto gaps = Gaps(rows_, above ? 1 : range->Row(), end_row_);
      std::span<const host::RowRun> left = gaps;
      while (!left.empty()) {
        if (!HideSome(*sheet, left)) co_return;
        if (co_await stopped || shared_.Terminating) break;
      }
      if (superseded_) co_return;
      if (!left.empty() && left.front().first <= end_row_) {
        // A search that is stopped leaves nothing behind the rows that it has come to.
        const host::RowRun rest{left.front().first, end_row_};
        left = {&rest, 1};
        if (!HideSome(*sheet, left)) co_return;
      }
      while (!application->PrepareScreenUpdating()) {
        co_await stopped;
        if (superseded_) co_return;
      }
      screen.GiveBack();
    }
    int32_t row = rows_.front();
    int32_t column = jump_column >= 1 ? jump_column : detected.block.first_column;
    CellOnSheet(*sheet, row, column)->Activate();
    outcome_ = Outcome::Done;
  } catch (...) {
    outcome_ = Outcome::Failed;
    TraceCaught(shared_.Platform.Trace, "SearchRun::Work");
    error_ = AttemptOr(shared_.Platform.Trace, std::u16string(), [this] { return GenericError(*language_); });
  }
}

}  // namespace rowlark
