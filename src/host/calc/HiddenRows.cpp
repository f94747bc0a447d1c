#include "host/calc/HiddenRows.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/table/XTableChart.hpp>
#include <com/sun/star/table/XTableCharts.hpp>
#include <com/sun/star/table/XTableChartsSupplier.hpp>

#include <algorithm>

#include "host/calc/Query.h"

namespace rowlark::calc {
namespace {

using com::sun::star::beans::XPropertySet;
using com::sun::star::container::XIndexAccess;

// A change costs as much as that many rows that are in the state already.
constexpr int32_t kRowsWorthAChange = 8;
// As far as the end of a change is looked for; a longer one is put together.
constexpr int32_t kRowsAhead = 1024;

constexpr const char* kFlag = "VisibleFlag";     // alone
constexpr const char* kVisible = "IsVisible";    // with all that goes with it
constexpr const char* kFiltered = "IsFiltered";  // a row is hidden beside that

uno::Reference<XPropertySet> Rows(const SheetObject& sheet, host::RowRun rows) {
  const auto range = sheet->getCellRangeByPosition(0, rows.first - 1, 0, rows.last - 1);
  return As<XPropertySet>(As<com::sun::star::table::XColumnRowRange>(range)->getRows());
}

void SetRows(const SheetObject& sheet, host::RowRun rows, const char* property, bool value) {
  Rows(sheet, rows)->setPropertyValue(rtl::OUString::createFromAscii(property), uno::Any(value));
}

bool IsFiltered(const SheetObject& sheet, int32_t row) {
  bool filtered = false;
  Rows(sheet, {row, row})->getPropertyValue(rtl::OUString::createFromAscii(kFiltered)) >>= filtered;
  return filtered;
}

bool IsShown(const SheetObject& sheet, int32_t row) {
  bool visible = true;
  Rows(sheet, {row, row})->getPropertyValue(rtl::OUString::createFromAscii(kVisible)) >>= visible;
  return visible;
}

// A row of every chart that shows rows among those, wherever it stands.
void AddRowsOfCharts(const uno::Reference<com::sun::star::frame::XModel>& model, int16_t sheet,
                     host::RowRun changed, std::vector<int32_t>& rows) {
  const auto sheets = As<XIndexAccess>(As<com::sun::star::sheet::XSpreadsheetDocument>(model)->getSheets());
  for (int32_t i = 0; i < sheets->getCount(); ++i) {
    const uno::Reference<com::sun::star::table::XTableChartsSupplier> supplier(sheets->getByIndex(i),
                                                                               uno::UNO_QUERY_THROW);
    const auto charts = As<XIndexAccess>(supplier->getCharts());
    for (int32_t k = 0; k < charts->getCount(); ++k) {
      const uno::Reference<com::sun::star::table::XTableChart> chart(charts->getByIndex(k),
                                                                     uno::UNO_QUERY_THROW);
      for (const auto& range : chart->getRanges()) {
        if (range.Sheet != sheet || range.StartRow >= changed.last || range.EndRow + 1 < changed.first)
          continue;
        rows.push_back(std::max(range.StartRow + 1, changed.first));
      }
    }
  }
}

}  // namespace

cells::RowSet ReadHiddenRows(const SheetObject& sheet, int32_t rows) {
  cells::RowSet hidden;
  hidden.Assign(1, rows, true);
  const auto column = sheet->getCellRangeByPosition(0, 0, 0, rows - 1);
  const auto visible = As<com::sun::star::sheet::XCellRangesQuery>(column)->queryVisibleCells();
  for (const auto& area : visible->getRangeAddresses()) {
    hidden.Assign(area.StartRow + 1, area.EndRow + 1, false);
  }
  return hidden;
}

std::vector<RowChange> FindRowChanges(const cells::RowSet& now, const cells::RowSet& wanted, int32_t rows,
                                      std::size_t most) {
  std::vector<RowChange> changes;
  for (int32_t row = now.NextDifference(wanted, 1, rows); row <= rows;) {
    const bool hide = wanted.Contains(row);
    const int32_t bound = row + std::min(rows - row, kRowsAhead);
    const int32_t end = std::min(wanted.Next(row, bound, !hide), now.Next(row, bound, hide));
    RowChange* const last = changes.empty() ? nullptr : &changes.back();
    if (last != nullptr && last->hide == hide && row - last->rows.last <= kRowsWorthAChange &&
        wanted.Next(last->rows.last, row, !hide) > row) {
      last->rows.last = end - 1;
    } else if (changes.size() < most) {
      changes.push_back({{row, end - 1}, hide});
    } else {
      break;
    }
    row = end > rows ? end : now.NextDifference(wanted, end, rows);
  }
  return changes;
}

void MakeRowChange(const SheetObject& sheet, const RowChange& change, const cells::RowSet& hidden_before,
                   cells::RowSet& unfiltered) {
  SetRows(sheet, change.rows, kFlag, !change.hide);
  if (change.hide) return;
  // What is filtered out would not be added up, visible or not.
  hidden_before.ForEachRun(change.rows.first, change.rows.last, true, [&](host::RowRun run) {
    for (int32_t row = run.first; row <= run.last; ++row) {
      if (IsFiltered(sheet, row)) unfiltered.Assign(row, row, true);
    }
    SetRows(sheet, run, kFiltered, false);
  });
}

void TellOfRows(const uno::Reference<com::sun::star::frame::XModel>& model, const SheetObject& sheet,
                host::RowRun changed) {
  const auto index = As<com::sun::star::sheet::XCellRangeAddressable>(sheet)->getRangeAddress().Sheet;
  std::vector<int32_t> rows{changed.first};
  AddRowsOfCharts(model, index, changed, rows);
  std::ranges::sort(rows);
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  // The office notices that a row changes, and looks at all rows behind it.
  for (const int32_t row : rows) {
    const bool visible = IsShown(sheet, row);
    SetRows(sheet, {row, row}, kFlag, !visible);
    SetRows(sheet, {row, row}, kVisible, visible);
    SetRows(sheet, {row, row}, kFlag, visible);  // also where it has refused that
  }
}

RowsAction::RowsAction(const uno::Reference<com::sun::star::frame::XModel>& model, const SheetObject& sheet,
                       int32_t rows, const rtl::OUString& title, Trace* trace)
    : model_(model),
      sheet_(As<com::sun::star::container::XNamed>(sheet)->getName()),
      rows_(rows),
      title_(title),
      trace_(trace) {}

void RowsAction::undo() { Restore(Before, true); }
void RowsAction::redo() { Restore(After, false); }

void RowsAction::Restore(const cells::RowSet& wanted, bool before) {
  Attempt(trace_, [&] {
    const uno::Reference<com::sun::star::frame::XModel> model(model_.get(), uno::UNO_QUERY_THROW);
    const auto sheets = As<com::sun::star::sheet::XSpreadsheetDocument>(model)->getSheets();
    const SheetObject sheet(sheets->getByName(sheet_), uno::UNO_QUERY_THROW);
    const auto changes = FindRowChanges(ReadHiddenRows(sheet, rows_), wanted, rows_);
    cells::RowSet unfiltered;
    for (const auto& change : changes) MakeRowChange(sheet, change, Unfiltered, unfiltered);
    if (before) {
      Unfiltered.ForEachRun(1, rows_, true, [&](host::RowRun run) { SetRows(sheet, run, kFiltered, true); });
    }
    if (changes.empty()) return;
    host::RowRun all = changes.front().rows;
    for (const auto& change : changes) {
      all = {std::min(all.first, change.rows.first), std::max(all.last, change.rows.last)};
    }
    TellOfRows(model, sheet, all);
  });
}

}  // namespace rowlark::calc
