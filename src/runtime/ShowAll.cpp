#include "runtime/ShowAll.h"

#include <algorithm>
#include <optional>

#include "runtime/DetectSearchRange.h"
#include "runtime/Failure.h"
#include "util/Text.h"

namespace rowlark {
namespace {

// Run-time errors of the host: what the object has not, as opposed to what it refuses because it is busy.
constexpr int32_t kNoSuchMember = 438;
constexpr int32_t kNoSuchValue = 1004;

// What a filter does not have can not be read: value lists have no second criterion.
template <class Read>
std::optional<host::Criterion> TryRead(Read read) {
  try {
    return read();
  } catch (const host::Error& error) {
    if (error.Number() != kNoSuchMember && error.Number() != kNoSuchValue) throw;
    return std::nullopt;
  }
}

// Applies the filter of a column once more, which shows the rows that a search has hidden. True when the
// filters of all columns have been applied.
bool Reapply(host::AutoFilter& filters, host::Range& filtered, int32_t field, const host::Filter& filter,
             Trace* trace) {
  const int32_t operation = filter.Operator();
  if (operation >= host::xlFilterValues) {
    // The criteria that can be read are not all that such a filter has: a list of values lacks the groups of
    // dates, and passing it on would take them out of the user's filter.
    try {
      filters.ApplyFilter();
      return true;
    } catch (const host::Error& error) {
      if (error.Number() != kNoSuchMember) throw;
    }
  }
  host::AutoFilterArguments arguments;
  arguments.Field = field;
  arguments.Criteria1 = TryRead([&] { return filter.Criteria1(); });
  if (operation != host::xlNoOperator) {
    arguments.Operator = static_cast<host::XlAutoFilterOperator>(operation);
    arguments.Criteria2 = TryRead([&] { return filter.Criteria2(); });
  }
  // Without a criterion the filter would be cleared.
  if (arguments.Criteria1 && Attempt(trace, [&] { filtered.AutoFilter(arguments); })) return false;
  filters.ApplyFilter();
  return true;
}

// Shows the rows first to last, which no filter hides.
void ShowRows(const host::Worksheet& sheet, int32_t first, int32_t last) {
  if (first > last) return;
  const auto rows = sheet.Range(ToText(first) + u":" + ToText(last));
  try {
    rows->SetEntireRowHidden(false);
  } catch (const host::Error&) {
    // A protected sheet may let its filter be used but no row be shown: no matter where none is hidden.
    const auto visible = rows->SpecialCells(host::xlCellTypeVisible);
    if (visible->AreasCount() > 1 || visible->RowsCount() < last - first + 1) throw;
  }
}

// All rows of a sheet without an AutoFilter; on a sheet with one, those around the filter's data, and of its
// data those that pass the filters.
Shown ShowRows(const host::Worksheet& sheet, host::Range& cells, Trace* trace) {
  if (!sheet.AutoFilterMode()) {
    cells.SetEntireRowHidden(false);
    return Shown::Every;
  }
  const auto filters = Require(sheet.AutoFilter());
  const auto filtered = filters->Range();
  const int32_t header = filtered->Row();
  ShowRows(sheet, 1, header);
  ShowRows(sheet, header + filtered->RowsCount(), cells.RowsCount());
  int32_t active = 0;
  const int32_t count = filters->FiltersCount();
  for (int32_t field = 1; field <= count; ++field) {
    const auto filter = Require(filters->Filters(field));
    if (!filter->On()) continue;
    ++active;
    if (Reapply(*filters, *filtered, field, *filter, trace)) break;
  }
  if (active == 0) filtered->SetEntireRowHidden(false);
  return Shown::Passing;
}

void GoToFirstRow(const host::Worksheet& sheet, const clsVTRLKItem& profile, int32_t used_column) {
  int32_t column = profile.SelectCol;
  if (column < 1) column = profile.StartCol();
  if (column < 1) column = used_column;
  if (column < 1) column = sheet.UsedRange()->Column();
  int32_t row = std::max(profile.StartRow(), 1);
  CellOnSheet(sheet, row, column)->Activate();
}

}  // namespace

std::shared_ptr<clsVTRLKItem> ActiveProfile(const host::Application& application, clsVTRLKItems& items) {
  return items.ForWorkbook(Require(application.ActiveWorkbook())->Name());
}

Shown ShowAll(SharedState& shared, const host::Application& application, FlagScope& screen,
              clsVTRLKItems& items, bool call_from_search, std::u16string& error,
              const SearchedSheet* searched) {
  error.clear();
  const auto language = shared.Language;
  try {
    const bool stays = searched == nullptr || !searched->profile->UnhideJumpFirstRow;
    const auto active_cell = stays ? application.ActiveCell() : nullptr;
    screen.Change(false);
    const auto sheet = searched != nullptr ? searched->sheet : Require(application.ActiveSheet());
    const auto cells = sheet->Cells();
    auto* const trace = shared.Platform.Trace;
    const auto shown = AttemptOr(trace, Shown::Unknown, [&] { return ShowRows(*sheet, *cells, trace); });
    if (shown == Shown::Unknown) {
      // The message ends with the word False in place of the host's reason.
      error = language->GetText(u"Err.SearchHide", u"Error #%1: Can't show/hide rows %2", {u"397", u"False"});
    }
    if (!call_from_search) screen.GiveBack();
    items.RowsIsGrouped = false;

    const auto profile = searched != nullptr ? searched->profile : ActiveProfile(application, items);
    if (profile->UnhideJumpFirstRow) {
      GoToFirstRow(*sheet, *profile, searched != nullptr ? searched->used_column : 0);
    } else {
      Require(active_cell)->Activate();
    }
    if (profile->DontSaveChanges) Require(application.ActiveWorkbook())->SetSaved(true);
    return shown;
  } catch (...) {
    TraceCaught(shared.Platform.Trace);
    error = GenericError(*language);
    return Shown::Unknown;
  }
}

}  // namespace rowlark
