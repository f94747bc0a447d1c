#include "runtime/SearchRun.h"

#include <algorithm>

#include "runtime/DetectSearchRange.h"
#include "runtime/Failure.h"
#include "runtime/HostFlag.h"
#include "runtime/ShowAll.h"
#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

std::vector<std::u16string> Split(std::u16string_view text, char16_t separator) {
  std::vector<std::u16string> pieces;
  for (;;) {
    const auto end = text.find(separator);
    pieces.emplace_back(text.substr(0, end));
    if (end == std::u16string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
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
                     const clsVTRLKOptions& options, const bool& stop_request, std::u16string_view text)
    : shared_(shared),
      items_(std::move(items)),
      options_(options),
      stop_request_(stop_request),
      text_(text),
      work_(Work()) {}

void SearchRun::Resume() {
  if (on_stack_ || Done()) return;
  on_stack_ = true;
  work_.Resume();
  on_stack_ = false;
}

void SearchRun::ReadSearchColumns(const host::Worksheet& sheet, const clsVTRLKItem& profile) {
  if (profile.SearchCols.empty()) return;
  all_columns_ = false;
  for (const auto& piece : Split(profile.SearchCols, u',')) {
    columns_.push_back(sheet.Range(piece + u"1")->Column());
  }
  std::ranges::sort(columns_);
}

std::vector<std::u16string> SearchRun::Words() const {
  if (options_.SearchWords != xcVT_SEARCH_WORDS_ANY) return {text_};
  return Split(mclsVTString::Replace(text_, u"  ", u" ", CompareMode::Binary), u' ');
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

Ref<host::Range> SearchRun::SearchRange(const host::Worksheet& sheet, const clsVTRLKItem& profile) {
  const auto used = sheet.UsedRange();
  const int32_t limit_row = used->Row() + used->RowsCount();  // one more than the last used row
  end_row_ = profile.EndRow() >= 0 ? std::min(profile.EndRow(), limit_row) : limit_row;
  const auto range = sheet.Range(*sheet.Cells(profile.StartRow(), profile.StartCol()),
                                 *sheet.Cells(end_row_, profile.EndCol()));
  // Rows that an AutoFilter hides are never searched.
  return sheet.AutoFilterMode() ? range->SpecialCells(host::xlCellTypeVisible) : range;
}

// A match counts in a searched column and a visible row.
void SearchRun::Take(const host::Range& cell, int32_t row) {
  if (!rows_.empty() && rows_.back() == row) return;
  if (!all_columns_ && !std::ranges::binary_search(columns_, cell.Column())) return;
  if (!cell.EntireRowHidden()) rows_.push_back(row);
}

// Where rows can not be hidden the search goes on as one that only looks for the first match.
bool SearchRun::MayHideRows(const host::Worksheet& sheet) const {
  if (!options_.UseFilter) return false;
  if (shared_.ExcelApp->Version() == u"8.0" && Require(sheet.Parent())->ReadOnly()) return false;
  return !sheet.ProtectScenarios();
}

bool SearchRun::HideBlock(host::Worksheet& sheet, int32_t first, int32_t last) {
  address_.assign(1, u'A');
  address_ += ToText(first);
  address_ += u":A";
  address_ += ToText(last);
  std::u16string host_error;
  if (HideRows(sheet, *sheet.Range(address_), true, host_error)) return true;
  error_ = shared_.Language->GetText(u"Err.SearchHide", u"Error #%1: Can not hide/unhide rows %2",
                                     {u"397", host_error});
  return false;
}

Resumable SearchRun::Work() {
  const auto application = shared_.ExcelApp;
  const StopCheck stopped{stop_request_};
  const ScreenGuard screen(application);
  HostFlag animations(application, &host::Application::EnableAnimations,
                      &host::Application::SetEnableAnimations);
  HostFlag events(application, &host::Application::EnableEvents, &host::Application::SetEnableEvents);
  try {
    const auto sheet = Require(Require(application)->ActiveSheet());
    animations.Override(false);
    events.Override(false);

    const auto profile = ActiveProfile(shared_, *items_)->Clone();
    DetectSearchRange(*sheet, *profile);
    if (co_await stopped) co_return false;
    if (options_.UseFilter) {
      std::u16string discarded;  // a search that can not begin says nothing
      if (!ShowAll(shared_, *items_, true, discarded)) co_return false;
    }
    if (co_await stopped) co_return false;

    ReadSearchColumns(*sheet, *profile);
    const auto range = SearchRange(*sheet, *profile);
    bool enough = false;
    for (const auto& word : Words()) {
      auto cell = range->Find(What(word));
      if (!cell) continue;
      const int32_t first_row = cell->Row();
      Take(*cell, first_row);
      if (co_await stopped) co_return false;
      if (!options_.UseFilter) continue;
      const auto first_address = cell->Address();
      while ((cell = range->FindNext(*cell))) {
        const int32_t row = cell->Row();
        if (row == first_row && cell->Address() == first_address) break;
        Take(*cell, row);
        if (co_await stopped || shared_.Terminating) {
          enough = true;
          break;
        }
      }
      if (enough) break;
    }
    if (rows_.empty()) {
      error_ = shared_.Language->GetText(u"Err.SearchTextNotFound", u"Text not found");
      co_return false;
    }
    // Every word finds its rows in ascending order.
    if (!std::ranges::is_sorted(rows_)) std::ranges::sort(rows_);

    if (MayHideRows(*sheet)) {
      application->SetScreenUpdating(false);
      int32_t next = range->Row();
      for (const int32_t row : rows_) {
        if (row - 1 >= next && !HideBlock(*sheet, next, row - 1)) co_return false;
        next = row + 1;
        if (co_await stopped || shared_.Terminating) break;
      }
      if (next <= end_row_ && !HideBlock(*sheet, next, end_row_)) co_return false;
      // What stands above a range that nobody chose goes too, but for a single row, which is likely a header.
      if (const int32_t above = rows_.front() - 1; profile->UsingAutoRange && above >= 2) {
        if (!HideBlock(*sheet, 1, above)) co_return false;
      }
      application->SetScreenUpdating(true);
      items_->RowsIsGrouped = true;
    }
    const int32_t column = profile->SelectCol >= 1 ? profile->SelectCol : profile->StartCol();
    sheet->Cells(rows_.front(), column)->Activate();
    co_return true;
  } catch (...) {
    error_ = GenericError(*shared_.Language);
    co_return false;
  }
}

}  // namespace rowlark
