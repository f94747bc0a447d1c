#include "host/standalone/Worksheet.h"

#include <algorithm>
#include <utility>

#include "host/standalone/Application.h"
#include "host/standalone/Workbook.h"
#include "util/Utf.h"

namespace rowlark::standalone {
namespace {

[[noreturn]] void Fail(std::u16string description) { throw host::Error(1004, std::move(description)); }

class SheetFilter final : public host::Filter {
 public:
  SheetFilter(Ref<const Worksheet> sheet, std::size_t column) : sheet_(std::move(sheet)), column_(column) {}

  bool On() const override { return State().on; }
  int32_t Operator() const override { return State().operation; }
  host::Criterion Criteria1() const override { return Read(State().criteria1); }
  host::Criterion Criteria2() const override { return Read(State().criteria2); }

 private:
  const ColumnFilter& State() const { return sheet_->Filter().columns.at(column_); }
  static host::Criterion Read(const std::optional<host::Criterion>& criterion) {
    if (!criterion) Fail(u"Application-defined or object-defined error");
    return *criterion;
  }

  Ref<const Worksheet> sheet_;
  std::size_t column_;
};

class SheetAutoFilter final : public host::AutoFilter {
 public:
  explicit SheetAutoFilter(Ref<Worksheet> sheet) : sheet_(std::move(sheet)) {}

  Ref<host::Range> Range() const override { return sheet_->MakeRange(sheet_->Filter().range); }
  int32_t FiltersCount() const override { return static_cast<int32_t>(sheet_->Filter().columns.size()); }
  Ref<host::Filter> Filters(int32_t index) const override {
    if (index < 1 || index > FiltersCount()) throw host::Error(9, u"Subscript out of range");
    return MakeRef<SheetFilter>(sheet_, static_cast<std::size_t>(index) - 1);
  }
  void ApplyFilter() override { sheet_->ApplyFilter(); }

 private:
  Ref<Worksheet> sheet_;
};

}  // namespace

Workbook& Worksheet::Book() const {
  if (parent_ == nullptr) {
    throw host::Error(-2147417848, u"The object invoked has disconnected from its clients.");
  }
  return *parent_;
}

Ref<host::Workbook> Worksheet::Parent() const { return &Book(); }

std::u16string Worksheet::ExternalName() const {
  std::u16string name(1, u'[');
  return name.append(Book().Name()).append(u"]").append(name_);
}

std::u16string Worksheet::ValueOf(Cell cell) const { return ToUtf16(text_.Cell(cell.row, cell.column)); }

Finder& Worksheet::FinderOfHost() const { return Book().Host().Find(); }

Block Worksheet::BodyBlock() const {
  auto body = UsedBlock();
  body.first_row += head_rows_;
  body.last_row = std::max(body.first_row, body.last_row);
  return body;
}

Ref<host::Range> Worksheet::UsedRange() const { return MakeRange(BodyBlock()); }

bool Worksheet::AutoFilterMode() const { return filter_.has_value(); }

Ref<host::AutoFilter> Worksheet::AutoFilter() const {
  if (!filter_) return nullptr;
  return MakeRef<SheetAutoFilter>(Ref(const_cast<Worksheet*>(this)));
}

bool Worksheet::ProtectScenarios() const { return protection_.scenarios; }

std::size_t Worksheet::HideRows(std::span<const RowRun> runs) {
  Book();
  for (const RowRun run : runs) {
    if (run.first < 1 || run.last > size_.rows) Fail(u"Application-defined or object-defined error");
    SetHidden({run.first, 1, run.last, 1}, true);
  }
  return runs.size();
}

void Worksheet::Changed() const { Book().SetSaved(false); }

void Worksheet::SetHidden(const Block& rows, bool hidden) {
  if (protection_.contents && !protection_.allow_formatting_rows) {
    Fail(u"Unable to set the Hidden property of the Range class");
  }
  if (hidden_.Assign(rows.first_row, rows.last_row, hidden)) {
    ++layout_;
    Changed();
  }
}

void Worksheet::SetRowsHidden(std::span<const Block> rows, bool hidden) {
  for (const auto& area : rows) SetHidden(area, hidden);
}

void Worksheet::SetCell(int32_t row, int32_t column, std::u16string_view text) {
  if (protection_.contents) {
    Fail(u"The cell or chart you're trying to change is on a protected sheet.");
  }
  if (loading_ && row > text_.AppendedRows()) Fail(u"This row has not been loaded yet.");
  auto utf8 = ToUtf8(text);
  const std::string before(text_.Cell(row, column));
  Changed();
  if (utf8 == before) return;
  text_.SetCell(row, column, utf8);
  auto& change = changes_[{row, column}];
  if (!change.loaded) change.loaded = before;
  change.text = std::move(utf8);
  ++edits_;
  Book().RaiseSheetChange(*this, row, column, before);
}

void Worksheet::Clear() {
  text_.Clear();
  for (auto& [cell, change] : changes_) change.loaded.reset();
}

void Worksheet::SetLoading(bool loading) {
  loading_ = loading;
  if (loading_) return;
  for (auto& [cell, change] : changes_) {
    if (change.loaded) continue;
    change.loaded = text_.Cell(cell.row, cell.column);
    if (change.text != *change.loaded) text_.SetCell(cell.row, cell.column, change.text);
  }
}

const FilterState& Worksheet::Filter() const {
  if (!filter_) throw host::Error(91, u"Object variable or With block variable not set");
  return *filter_;
}

void Worksheet::SetFilter(const Block& range, const host::AutoFilterArguments& arguments) {
  if (protection_.contents && !protection_.allow_filtering) Fail(u"AutoFilter method of Range class failed");
  if (!arguments.Field && filter_) {  // called without arguments, the operation takes the filter away
    SetHidden(filter_->range, false);
    filter_.reset();
    return;
  }
  FilterState state = filter_.value_or(FilterState{});
  if (!filter_) {
    // A single cell stands for the table around it.
    state.range = range.Rows() == 1 && range.Columns() == 1 ? text_.Used().value_or(range) : range;
    state.columns.resize(static_cast<std::size_t>(state.range.Columns()));
  } else if (!filter_->range.Contains(range.first_row, range.first_column)) {
    Fail(u"AutoFilter method of Range class failed");
  }
  if (arguments.Field) {
    if (*arguments.Field < 1 || *arguments.Field > state.range.Columns()) {
      Fail(u"AutoFilter method of Range class failed");
    }
    state.columns[static_cast<std::size_t>(*arguments.Field) - 1] = MakeColumnFilter(arguments);
  }
  filter_ = std::move(state);
  ApplyFilter();
  Changed();
}

// Shows the rows of the range that pass the filters of all columns and hides the others; the header stays.
void Worksheet::ApplyFilter() {
  if (protection_.contents && !protection_.allow_filtering)
    Fail(u"ApplyFilter method of AutoFilter class failed");
  const auto& [range, columns] = Filter();
  const int32_t first = range.first_row + 1;
  RowSet refused;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!columns[i].on) continue;
    const int32_t column = range.first_column + static_cast<int32_t>(i);
    const auto accepts = CompileFilter(columns[i], text_, column, first, range.last_row);
    for (int32_t row = first; row <= range.last_row; ++row) {
      if (!refused.Contains(row) && !accepts(text_.Cell(row, column, true))) refused.Assign(row, row, true);
    }
  }
  hidden_.Assign(first, range.last_row, false);
  refused.ForEachRun(first, range.last_row, true,
                     [this](RowRun run) { hidden_.Assign(run.first, run.last, true); });
  ++layout_;
}

void Worksheet::Select(std::u16string_view address) {
  std::vector<Block> areas;
  if (!ParseAddress(address, areas, size_)) Fail(u"Select method of Range class failed");
  selection_.clear();
  SelectAndActivate(areas);
}

void Worksheet::Select(std::vector<Block> areas, Cell active) {
  active_cell_ = Block::OfCell(active.row, active.column);
  selection_ = std::move(areas);
  Book().RaiseSelectionChange(*this, *MakeRange(selection_));
}

void Worksheet::Activate(std::span<const Block> areas) {
  auto& book = Book();
  if (book.Host().ActiveWorkbook().get() != &book || book.ActiveSheet().get() != this) {
    Fail(u"Activate method of Range class failed");
  }
  SelectAndActivate(areas);
}

void Worksheet::SelectAndActivate(std::span<const Block> areas) {
  const int32_t row = areas.front().first_row;
  const int32_t column = areas.front().first_column;
  const bool single = areas.size() == 1 && areas.front().Rows() == 1 && areas.front().Columns() == 1;
  active_cell_ = Block::OfCell(row, column);
  // A cell of the selection becomes active within it; anything else becomes the selection.
  if (single && std::ranges::any_of(selection_, [&](const Block& r) { return r.Contains(row, column); }))
    return;
  selection_.assign(areas.begin(), areas.end());
  Book().RaiseSelectionChange(*this, *MakeRange(selection_));
}

}  // namespace rowlark::standalone
