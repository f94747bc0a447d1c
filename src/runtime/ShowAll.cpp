#include "runtime/ShowAll.h"

#include <optional>

#include "runtime/Failure.h"
#include "runtime/HostFlag.h"

namespace rowlark {
namespace {

// What a filter does not have can not be read: value lists have no second criterion.
template <class Read>
std::optional<host::Criterion> TryRead(Read read) {
  try {
    return read();
  } catch (const host::Error&) {
    return std::nullopt;
  }
}

// Applies the filter of a column once more, which shows the rows that a search has hidden.
void Reapply(host::AutoFilter& filters, int32_t field, const host::Filter& filter) {
  host::AutoFilterArguments arguments;
  arguments.Field = field;
  arguments.Criteria1 = TryRead([&] { return filter.Criteria1(); });
  if (const int32_t operation = filter.Operator(); operation != host::xlNoOperator) {
    arguments.Operator = static_cast<host::XlAutoFilterOperator>(operation);
    arguments.Criteria2 = TryRead([&] { return filter.Criteria2(); });
  }
  // Colours, icons and dynamic dates have no criteria that could be passed; passing none would clear the
  // filter.
  if (arguments.Criteria1) {
    try {
      filters.Range()->AutoFilter(arguments);
      return;
    } catch (const host::Error&) {  // NOLINT(bugprone-empty-catch): the host may still do it as a whole
    }
  }
  filters.ApplyFilter();
}

void Show(host::Worksheet& sheet, host::Range& range) {
  if (!sheet.AutoFilterMode()) {
    range.SetEntireRowHidden(false);
    return;
  }
  const auto filters = Require(sheet.AutoFilter());
  int32_t active = 0;
  const int32_t count = filters->FiltersCount();
  for (int32_t field = 1; field <= count; ++field) {
    const auto filter = Require(filters->Filters(field));
    if (!filter->On()) continue;
    ++active;
    Reapply(*filters, field, *filter);
  }
  if (active == 0) filters->Range()->SetEntireRowHidden(false);
}

void GoToFirstRow(host::Worksheet& sheet, const clsVTRLKItem& profile) {
  int32_t column = profile.SelectCol;
  if (column < 1) column = profile.StartCol();
  if (column < 1) column = sheet.UsedRange()->Column();
  const int32_t row = profile.StartRow() >= 1 ? profile.StartRow() : 1;
  sheet.Cells(row, column)->Activate();
}

}  // namespace

bool HideRows(host::Worksheet& sheet, host::Range& range, bool hide, std::u16string& error) {
  error.clear();
  try {
    if (hide) {
      range.SetEntireRowHidden(true);
    } else {
      Show(sheet, range);
    }
    return true;
  } catch (...) {
    error = CurrentDescription();
    return false;
  }
}

std::shared_ptr<clsVTRLKItem> ActiveProfile(SharedState& shared, clsVTRLKItems& items) {
  const auto name = Require(shared.ExcelApp->ActiveWorkbook())->Name();
  return items.Exists(name) ? items.ByName(name) : items.DefaultItem;
}

bool ShowAll(SharedState& shared, clsVTRLKItems& items, bool call_from_search, std::u16string& error) {
  error.clear();
  if (!shared.ExcelApp) return true;
  host::Application& application = *shared.ExcelApp;
  bool done = true;
  try {
    const auto active_cell = application.ActiveCell();
    application.SetScreenUpdating(false);
    const auto sheet = Require(application.ActiveSheet());
    std::u16string host_error;
    if (!HideRows(*sheet, *sheet->Cells(), false, host_error)) {
      // This message has always closed with the word False in place of the host's reason.
      error = shared.Language->GetText(u"Err.SearchHide", u"Error #%1: Can't show/hide rows %2",
                                       {u"397", u"False"});
      done = false;
    }
    if (!call_from_search) application.SetScreenUpdating(true);
    items.RowsIsGrouped = false;

    const auto profile = ActiveProfile(shared, items);
    if (profile->UnhideJumpFirstRow) {
      GoToFirstRow(*sheet, *profile);
    } else {
      Require(active_cell)->Activate();
    }
    if (profile->DontSaveChanges) application.ActiveWorkbook()->SetSaved(true);
    return done;
  } catch (...) {
    error = GenericError(*shared.Language);
    EnsureScreenUpdating(application);
    return false;
  }
}

}  // namespace rowlark
