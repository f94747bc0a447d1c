#include "Classes.h"

namespace rowlark::workbench {
namespace {

// Fails once the workbook has been closed.
standalone::Worksheet& SheetOf(const Call& call) {
  auto& sheet = call.Core<standalone::Worksheet>();
  sheet.Book();
  return sheet;
}

// In units of UTF-16.
constexpr std::size_t kLongestAddress = 255;

Ref<host::Range> Corner(Call& call, std::size_t argument, const host::Worksheet& sheet) {
  auto* range = call.AsRange(argument);
  if (range == nullptr && call.Text(argument).size() <= kLongestAddress) {
    return sheet.Range(call.Text(argument));
  }
  if (range == nullptr || &range->Sheet() != &sheet) Fail(u"Method 'Range' of object '_Worksheet' failed");
  return range;
}

void Protect(Call& call) {
  SheetOf(call).Protect({.contents = call.Bool(2, true),
                         .scenarios = call.Bool(3, true),
                         .allow_formatting_rows = call.Bool(7, false),
                         .allow_filtering = call.Bool(14, false)});
}

// The AutoFilter can be taken away, but not be made, by setting its mode.
void SetAutoFilterMode(Call& call) {
  auto& sheet = SheetOf(call);
  if (call.BoolValue()) Fail(u"Unable to set the AutoFilterMode property of the Worksheet class");
  if (sheet.AutoFilterMode()) sheet.UsedRange()->AutoFilter({});
}

constexpr Member kWorksheetMembers[] = {
    Get(u"Application", ReturnApplication),
    Get(u"Parent", [](Call& call) { call.Return(kWorkbook, SheetOf(call).Parent()); }),
    Get(u"Range(Cell1, [Cell2])", [](Call& call) { ReturnRange(call, SheetOf(call)); }),
    Get(u"Cells", [](Call& call) { call.Return(kRange, SheetOf(call).Cells()); }),
    Get(u"Rows", [](Call& call) { call.Return(kRangeRows, SheetOf(call).Cells()); }),
    Get(u"Columns", [](Call& call) { call.Return(kRangeColumns, SheetOf(call).Cells()); }),
    Get(u"UsedRange", [](Call& call) { call.Return(kRange, SheetOf(call).UsedRange()); }),
    GetPut(
        u"AutoFilterMode", [](Call& call) { call.Return(SheetOf(call).AutoFilterMode()); },
        SetAutoFilterMode),
    Get(u"AutoFilter", [](Call& call) { call.Return(kAutoFilter, SheetOf(call).AutoFilter()); }),
    Get(u"ProtectScenarios", [](Call& call) { call.Return(SheetOf(call).ProtectScenarios()); }),
    Method(u"Protect([Password], [DrawingObjects], [Contents], [Scenarios], [UserInterfaceOnly], "
           u"[AllowFormattingCells], [AllowFormattingColumns], [AllowFormattingRows], "
           u"[AllowInsertingColumns], [AllowInsertingRows], [AllowInsertingHyperlinks], "
           u"[AllowDeletingColumns], [AllowDeletingRows], [AllowSorting], [AllowFiltering], "
           u"[AllowUsingPivotTables])",
           Protect),
    Method(u"Unprotect([Password])", [](Call& call) { SheetOf(call).Protect({}); }),
    Method(u"Activate", [](Call& call) { SheetOf(call).Book().ActivateSheet(&SheetOf(call)); }),
};

constexpr Member kChartMembers[] = {
    Get(u"Application", ReturnApplication),
    Get(u"Parent", [](Call& call) { call.Return(kWorkbook, call.Core<standalone::ChartSheet>().Parent()); }),
};

}  // namespace

const Class kWorksheet{.name = u"Worksheet", .members = kWorksheetMembers, .identity = true};
const Class kChart{.name = u"Chart", .members = kChartMembers, .identity = true};

void ReturnRange(Call& call, const host::Worksheet& sheet) {
  const auto first = Corner(call, 0, sheet);
  call.Return(kRange, call.Has(1) ? sheet.Range(*first, *Corner(call, 1, sheet)) : first);
}

}  // namespace rowlark::workbench
