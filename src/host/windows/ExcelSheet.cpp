#include "host/windows/ExcelSheet.h"

#include <charconv>
#include <string>

#include "host/windows/ExcelEvents.h"
#include "host/windows/ExcelRange.h"
#include "host/windows/ExcelValues.h"

namespace rowlark::windows {
namespace {

// What Excel takes for an address, in characters.
constexpr std::size_t kLongestAddress = 255;

// Two cells, whatever their rows, and what separates them from each other and from those before.
constexpr std::size_t kLongestRow = 10;
constexpr std::size_t kLongestRun = 2 * (2 + kLongestRow);

// "A5", "A5:A7": a cell of each row. Returns where it ends.
char* WriteRows(char* place, host::RowRun run) {
  const auto write_cell = [&](int32_t row) {
    *place++ = 'A';
    place = std::to_chars(place, place + kLongestRow, row).ptr;
  };
  write_cell(run.first);
  if (run.last == run.first) return place;
  *place++ = ':';
  write_cell(run.last);
  return place;
}

class ExcelFilter final : public host::Filter {
 public:
  ExcelFilter(Ref<ExcelSession> session, Dispatch object)
      : session_(std::move(session)), object_(std::move(object)) {}

  bool On() const override { return object_.Bool(session_->Filter.On); }
  int32_t Operator() const override { return object_.Long(session_->Filter.Operator); }
  host::Criterion Criteria1() const override { return ToCriterion(object_.Get(session_->Filter.Criteria1)); }
  host::Criterion Criteria2() const override { return ToCriterion(object_.Get(session_->Filter.Criteria2)); }

 private:
  Ref<ExcelSession> session_;
  Dispatch object_;
};

class ExcelAutoFilter final : public host::AutoFilter {
 public:
  ExcelAutoFilter(Ref<ExcelSession> session, Dispatch object)
      : session_(std::move(session)), object_(std::move(object)) {}

  Ref<host::Range> Range() const override {
    return session_->NeedRange(object_.Object(session_->AutoFilter.Range));
  }
  int32_t FiltersCount() const override {
    return object_.Object(session_->AutoFilter.Filters).Long(session_->Filters.Count);
  }
  Ref<host::Filter> Filters(int32_t index) const override {
    return MakeRef<ExcelFilter>(
        session_, object_.Object(session_->AutoFilter.Filters).Object(session_->Filters.Item, index));
  }
  void ApplyFilter() override { object_.Call(session_->AutoFilter.ApplyFilter); }

 private:
  Ref<ExcelSession> session_;
  Dispatch object_;
};

}  // namespace

std::u16string ExcelWorkbook::Name() const { return object_.Text(session_->Workbook.Name); }

std::u16string ExcelWorkbook::FullName() const { return object_.Text(session_->Workbook.FullName); }

bool ExcelWorkbook::ReadOnly() const { return object_.Bool(session_->Workbook.ReadOnly); }

bool ExcelWorkbook::Saved() const { return object_.Bool(session_->Workbook.Saved); }

void ExcelWorkbook::SetSaved(bool saved) { object_.Put(session_->Workbook.Saved, saved); }

Ref<host::Worksheet> ExcelWorkbook::ActiveSheet() const {
  return session_->MakeSheet(object_.ObjectOrNothing(session_->Workbook.ActiveSheet));
}

Connection ExcelWorkbook::OnSheetSelectionChange(SelectionHandler handler) {
  const auto tell = [session = session_, handler = std::move(handler)](IDispatch& sheet, IDispatch& target) {
    const auto changed = session->MakeSheet(Dispatch(&sheet));
    const auto selected = session->MakeRange(Dispatch(&target));
    handler(*changed, *selected);
  };
  return ListenToSelection(*object_.get(), tell, session_->Trace);
}

Ref<host::Workbook> ExcelSheet::Parent() const {
  return MakeRef<ExcelWorkbook>(session_, object_.Object(members_.Parent));
}

Ref<host::Range> ExcelSheet::Range(std::u16string_view address) const {
  return session_->NeedRange(object_.Object(members_.Range, address));
}

Ref<host::Range> ExcelSheet::Range(const host::Range& cell1, const host::Range& cell2) const {
  return session_->NeedRange(object_.Object(members_.Range, ObjectOf(cell1), ObjectOf(cell2)));
}

Ref<host::Range> ExcelSheet::Cells() const { return session_->NeedRange(object_.Object(members_.Cells)); }

Ref<host::Range> ExcelSheet::Cells(int32_t row, int32_t column) const {
  return session_->NeedRange(object_.Object(members_.Cells, row, column));
}

Ref<host::Range> ExcelSheet::UsedRange() const {
  return session_->NeedRange(object_.Object(members_.UsedRange));
}

bool ExcelSheet::AutoFilterMode() const { return object_.Bool(members_.AutoFilterMode); }

Ref<host::AutoFilter> ExcelSheet::AutoFilter() const {
  Dispatch filter = object_.ObjectOrNothing(members_.AutoFilter);
  return filter ? MakeRef<ExcelAutoFilter>(session_, std::move(filter)) : nullptr;
}

bool ExcelSheet::ProtectScenarios() const { return object_.Bool(members_.ProtectScenarios); }

void ExcelSheet::HideRowsOf(std::string_view address) {
  Range(std::u16string(address.begin(), address.end()))->SetEntireRowHidden(true);
}

// As many runs as an address holds. Where the host refuses them together they are hidden one by one, so that
// the error is that of the run which can not be hidden.
std::size_t ExcelSheet::HideRows(std::span<const host::RowRun> runs) {
  char address[kLongestAddress + kLongestRun];
  char* end = address;
  std::size_t count = 0;
  for (; count < runs.size(); ++count) {
    char* const complete = end;
    if (count > 0) *end++ = ',';
    end = WriteRows(end, runs[count]);
    if (end <= address + kLongestAddress) continue;
    end = complete;
    break;
  }
  try {
    HideRowsOf({address, end});
  } catch (const host::Error&) {
    if (count == 1) throw;
    for (const auto run : runs.first(count)) HideRowsOf({address, WriteRows(address, run)});
  }
  return count;
}

}  // namespace rowlark::windows
