#include <algorithm>

#include "RangeItems.h"
#include "Values.h"
#include "host/standalone/Application.h"

namespace rowlark::workbench {
namespace {

using automation::Variant;
using standalone::kMaxColumn;
using standalone::kMaxRow;

void Value(Call& call) {
  const auto& range = RangeOf(call);
  const auto& area = range.Areas().front();
  const auto& text = range.Sheet().Text();
  call.Return(IsOneCell(area) ? ToValue(text.Cell(area.first_row, area.first_column)) : ToValues(text, area));
}

void SetValue(Call& call) { RangeOf(call).SetValue(call.TextValue()); }

// What the cells show; Null when it is not the same everywhere.
void Text(Call& call) {
  const auto& range = RangeOf(call);
  const auto& text = range.Sheet().Text();
  const auto first = text.Cell(range.Row(), range.Column());
  const Block used = range.Sheet().UsedBlock();
  for (const auto& area : range.Areas()) {
    // One row and one column of empty cells stand for all behind the used ones.
    const int32_t last_row = std::min(area.last_row, std::max(area.first_row, used.last_row + 1));
    const int32_t last_column = std::min(area.last_column, std::max(area.first_column, used.last_column + 1));
    for (int32_t row = area.first_row; row <= last_row; ++row) {
      for (int32_t column = area.first_column; column <= last_column; ++column) {
        if (text.Cell(row, column) == first) continue;
        Variant null;
        null.vt = VT_NULL;
        return call.Return(std::move(null));
      }
    }
  }
  call.Return(range.Value());
}

void Default(Call& call) {
  if (call.Has(0)) {
    RangeItem(call);
  } else if (call.Has(1)) {
    throw Failure{DISP_E_PARAMNOTOPTIONAL};
  } else {
    Value(call);
  }
}

void SetDefault(Call& call) {
  if (!call.Has(0)) return SetValue(call);
  RangeItem(call);
  const Variant cell = std::move(call.Result());
  static_cast<Object*>(cell.pdispVal)->Core<standalone::Range>().SetValue(call.TextValue());
}

// Only the style A1 is modelled.
void Address(Call& call) {
  const bool absolute_row = call.Bool(0, true);
  const bool absolute_column = call.Bool(1, true);
  constexpr int32_t kA1 = 1;
  if (call.Int(2, kA1) != kA1) Fail(u"Application-defined or object-defined error");
  auto address = call.Bool(3, false) ? RangeOf(call).ExternalAddress() : RangeOf(call).Address();
  if (!absolute_row || !absolute_column) {
    std::u16string relative;
    for (std::size_t i = 0; i < address.size(); ++i) {
      const bool before_row = address[i] == u'$' && address[i + 1] <= u'9';
      if (address[i] != u'$' || (before_row ? absolute_row : absolute_column)) relative += address[i];
    }
    address = std::move(relative);
  }
  call.Return(address);
}

void Entire(Call& call, bool rows) {
  std::vector<Block> areas;
  for (const auto& area : RangeOf(call).Areas()) {
    areas.push_back(rows ? Block{area.first_row, 1, area.last_row, kMaxColumn}
                         : Block{1, area.first_column, kMaxRow, area.last_column});
  }
  call.Return(rows ? kRangeRows : kRangeColumns, RangeOf(call).Sheet().MakeRange(std::move(areas)));
}

// True or False where all rows agree, else Null. Columns are never hidden.
void Hidden(Call& call) {
  const auto areas = RangeOf(call).Areas();
  if (!std::ranges::all_of(areas, SpansColumns)) {
    if (!std::ranges::all_of(areas, SpansRows)) Fail(u"Unable to get the Hidden property of the Range class");
    return call.Return(false);
  }
  const auto& hidden = RangeOf(call).Sheet().HiddenRows();
  const auto any = [&](bool in) {
    return std::ranges::any_of(areas, [&](const Block& area) {
      return hidden.Next(area.first_row, area.last_row, in) <= area.last_row;
    });
  };
  if (any(true) && any(false)) {
    Variant null;
    null.vt = VT_NULL;
    return call.Return(std::move(null));
  }
  call.Return(any(true));
}

void SetHidden(Call& call) {
  const bool hidden = call.BoolValue();
  if (!std::ranges::all_of(RangeOf(call).Areas(), SpansColumns)) {
    Fail(u"Unable to set the Hidden property of the Range class");
  }
  RangeOf(call).SetEntireRowHidden(hidden);
}

void Select(Call& call) {
  auto& sheet = static_cast<standalone::Worksheet&>(RangeOf(call).Sheet());  // the only sheets there are
  if (call.Application().ActiveSheet().get() != &sheet) Fail(u"Select method of Range class failed");
  sheet.Select(RangeOf(call).Address());
  call.Return(true);
}

void Activate(Call& call) {
  RangeOf(call).Activate();
  call.Return(true);
}

// The cell behind which a search begins must be one cell of the range.
const host::Range* After(const Call& call, std::size_t argument, const char16_t* failure) {
  if (!call.Has(argument)) return nullptr;
  const auto& after = call.Range(argument);
  const auto contains = [&](const Block& area) { return area.Contains(after.Row(), after.Column()); };
  if (&after.Sheet() != &RangeOf(call).Sheet() || after.AreasCount() != 1 ||
      !IsOneCell(after.Areas().front()) || !std::ranges::any_of(RangeOf(call).Areas(), contains)) {
    Fail(failure);
  }
  return &after;
}

template <class Enumeration>
std::optional<Enumeration> OneOf(const Call& call, std::size_t argument,
                                 std::initializer_list<Enumeration> known) {
  const auto value = call.Enumerated<Enumeration>(argument);
  if (value && std::ranges::find(known, *value) == known.end()) {
    Fail(u"Unable to get the Find property of the Range class");
  }
  return value;
}

void Find(Call& call) {
  const auto what = call.Text(0);
  host::FindArguments arguments;
  arguments.What = what;
  arguments.After = After(call, 1, u"Unable to get the Find property of the Range class");
  arguments.LookIn = OneOf(call, 2, {host::xlValues, host::xlFormulas, host::xlComments});
  arguments.LookAt = OneOf(call, 3, {host::xlWhole, host::xlPart});
  arguments.SearchOrder = OneOf(call, 4, {host::xlByRows, host::xlByColumns});
  arguments.SearchDirection = OneOf(call, 5, {host::xlNext, host::xlPrevious});
  if (call.Has(6)) arguments.MatchCase = call.Bool(6, false);
  call.Bool(7, false);  // widths of letters and formats are not modelled
  call.Bool(8, false);
  call.Return(kRange, RangeOf(call).Find(arguments));
}

void FindNext(Call& call) {
  const auto* after = After(call, 0, u"Unable to get the FindNext property of the Range class");
  if (after != nullptr) return call.Return(kRange, RangeOf(call).FindNext(*after));
  const auto& area = RangeOf(call).Areas().front();
  const auto first = MakeRange(call, {area.first_row, area.first_column, area.first_row, area.first_column});
  call.Return(kRange, RangeOf(call).FindNext(*first));
}

void AutoFilter(Call& call) {
  host::AutoFilterArguments arguments;
  if (call.Has(0)) arguments.Field = call.Int(0);
  if (call.Has(1)) arguments.Criteria1 = ToCriterion(*call.Argument(1));
  arguments.Operator = call.Enumerated<host::XlAutoFilterOperator>(2);
  if (call.Has(3)) arguments.Criteria2 = ToCriterion(*call.Argument(3));
  call.Bool(4, true);
  RangeOf(call).AutoFilter(arguments);
  call.Return(true);
}

void Sheet(Call& call) { call.Return(kWorksheet, &RangeOf(call).Sheet()); }

constexpr Member kRangeMembers[] = {
    GetPut(u"_Default([RowIndex], [ColumnIndex])", Default, SetDefault),
    GetPut(u"Item(RowIndex, [ColumnIndex])", RangeItem, SetDefault),
    Get(u"Application", ReturnApplication),
    Get(u"Parent", Sheet),
    Get(u"Worksheet", Sheet),
    Get(u"Row", [](Call& call) { call.Return(RangeOf(call).Row()); }),
    Get(u"Column", [](Call& call) { call.Return(RangeOf(call).Column()); }),
    Get(u"Rows", [](Call& call) { call.Return(kRangeRows, &RangeOf(call)); }),
    Get(u"Columns", [](Call& call) { call.Return(kRangeColumns, &RangeOf(call)); }),
    Get(u"Cells", [](Call& call) { call.Return(kRange, &RangeOf(call)); }),
    Get(u"Count", CountOfCollection),
    Get(u"Areas", [](Call& call) { call.Return(kAreas, &RangeOf(call)); }),
    Get(u"Address([RowAbsolute], [ColumnAbsolute], [ReferenceStyle], [External], [RelativeTo])", Address),
    Get(u"AddressLocal([RowAbsolute], [ColumnAbsolute], [ReferenceStyle], [External], [RelativeTo])",
        Address),
    Get(u"Offset([RowOffset], [ColumnOffset])",
        [](Call& call) { call.Return(kRange, RangeOf(call).Offset(call.Int(0, 0), call.Int(1, 0))); }),
    GetPut(u"Value([RangeValueDataType])", Value, SetValue),
    GetPut(u"Value2", Value, SetValue),
    Get(u"Text", Text),
    Get(u"EntireRow", [](Call& call) { Entire(call, true); }),
    Get(u"EntireColumn", [](Call& call) { Entire(call, false); }),
    GetPut(u"Hidden", Hidden, SetHidden),
    Method(u"Activate", Activate),
    Method(u"Select", Select),
    Method(u"Find(What, [After], [LookIn], [LookAt], [SearchOrder], [SearchDirection], [MatchCase], "
           u"[MatchByte], [SearchFormat])",
           Find),
    Method(u"FindNext([After])", FindNext),
    Method(u"SpecialCells(Type, [Value])",
           [](Call& call) {
             call.Return(kRange, RangeOf(call).SpecialCells(static_cast<host::XlCellType>(call.Int(0))));
           }),
    Method(u"AutoFilter([Field], [Criteria1], [Operator], [Criteria2], [VisibleDropDown])", AutoFilter),
};

constexpr Member kAreasMembers[] = {
    Get(u"Item(Index)", ItemOfCollection),
    Get(u"Count", CountOfCollection),
    Get(u"Application", ReturnApplication),
    Get(u"Parent", [](Call& call) { call.Return(kRange, &RangeOf(call)); }),
};

}  // namespace

const Class kRange{.name = u"Range", .members = kRangeMembers, .count = CountRangeCells, .item = RangeCellAt};
const Class kRangeRows{.name = u"Range",
                       .members = kRangeMembers,
                       .count = [](Object& range) { return int64_t{RangeOf(range).RowsCount()}; },
                       .item = RangeRowAt};
const Class kRangeColumns{.name = u"Range",
                          .members = kRangeMembers,
                          .count = [](Object& range) { return int64_t{RangeOf(range).ColumnsCount()}; },
                          .item = RangeColumnAt};
const Class kAreas{
    .name = u"Areas",
    .members = kAreasMembers,
    .count = [](Object& range) { return int64_t{RangeOf(range).AreasCount()}; },
    .item = [](Call& call,
               int64_t index) { call.Return(kRange, RangeOf(call).Areas(static_cast<int32_t>(index))); }};

}  // namespace rowlark::workbench
