#include "host/calc/Worksheet.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeReferrer.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XSheetFilterDescriptor3.hpp>
#include <com/sun/star/sheet/XSheetFilterable.hpp>
#include <com/sun/star/sheet/XUnnamedDatabaseRanges.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/util/CellProtection.hpp>
#include <com/sun/star/util/XProtectable.hpp>

#include <algorithm>
#include <utility>

#include "host/calc/Errors.h"
#include "host/calc/Query.h"
#include "host/calc/Strings.h"
#include "host/calc/Workbook.h"
#include "util/Scope.h"

namespace rowlark::calc {
namespace {

using com::sun::star::beans::XPropertySet;
using com::sun::star::sheet::XDatabaseRange;
using com::sun::star::table::CellRangeAddress;

constexpr std::u16string_view kFails = u"Application-defined or object-defined error";
constexpr std::u16string_view kRowsRefused = u"Unable to set the Hidden property of the Range class";
constexpr std::u16string_view kCellRefused =
    u"The cell or chart you're trying to change is on a protected sheet.";
constexpr std::u16string_view kFilterRefused = u"ApplyFilter method of AutoFilter class failed";

// How long messages wait for text to be read, and for rows to be hidden.
constexpr auto kPiece = std::chrono::milliseconds(20);
// That are hidden or shown in one go: some ten milliseconds where each of them holds something.
constexpr int32_t kCellsAtOnce = 100'000;
// What fits into a piece on most machines; one that is faster processes messages more often.
constexpr std::size_t kChangesAtOnce = 2000;
// An operator of ours: the criteria of the office's filters are not Excel's, and the filter is applied as a
// whole.
constexpr int32_t kOwnOperator = 100;

Block BlockOf(const CellRangeAddress& address) {
  return {address.StartRow + 1, address.StartColumn + 1, address.EndRow + 1, address.EndColumn + 1};
}

bool IsAutoFilter(const uno::Reference<XDatabaseRange>& range) {
  bool on = false;
  As<XPropertySet>(range)->getPropertyValue("AutoFilter") >>= on;
  return on;
}

// The columns of the range that are filtered, from 0.
std::vector<int32_t> FilteredColumns(const uno::Reference<XDatabaseRange>& range) {
  std::vector<int32_t> columns;
  const auto descriptor = As<com::sun::star::sheet::XSheetFilterDescriptor3>(range->getFilterDescriptor());
  for (const auto& field : descriptor->getFilterFields3()) columns.push_back(field.Field);
  return columns;
}

class SheetFilter final : public host::Filter {
 public:
  explicit SheetFilter(bool on) : on_(on) {}

  bool On() const override { return on_; }
  int32_t Operator() const override { return kOwnOperator; }
  host::Criterion Criteria1() const override { Refuse(kFails); }
  host::Criterion Criteria2() const override { Refuse(kFails); }

 private:
  const bool on_;
};

class SheetAutoFilter final : public host::AutoFilter {
 public:
  explicit SheetAutoFilter(Ref<Worksheet> sheet) : sheet_(std::move(sheet)) {}

  Ref<host::Range> Range() const override { return sheet_->MakeRange(Area()); }
  int32_t FiltersCount() const override { return Area().Columns(); }
  Ref<host::Filter> Filters(int32_t index) const override {
    if (index < 1 || index > FiltersCount()) throw host::Error(9, u"Subscript out of range");
    return OrRefuse(kFails, [&]() -> Ref<host::Filter> {
      const auto columns = FilteredColumns(Found());
      return MakeRef<SheetFilter>(std::ranges::find(columns, index - 1) != columns.end());
    });
  }
  void ApplyFilter() override { sheet_->ApplyFilter(); }

 private:
  uno::Reference<XDatabaseRange> Found() const {
    auto range = sheet_->FilterRange();
    if (!range.is()) throw host::Error(91, u"Object variable or With block variable not set");
    return range;
  }
  Block Area() const {
    return OrRefuse(kFails, [&] { return BlockOf(Found()->getDataArea()); });
  }

  const Ref<Worksheet> sheet_;
};

}  // namespace

Worksheet::Worksheet(Workbook& book, const uno::Reference<com::sun::star::sheet::XSpreadsheet>& sheet)
    : book_(&book), sheet_(sheet), text_(std::make_unique<SheetText>(sheet, [this] {
        if (book_ != nullptr && book_->Office().TextIsMissing) book_->Office().TextIsMissing();
      })) {
  name_ = FromOffice(As<com::sun::star::container::XNamed>(sheet)->getName());
  const auto all = As<com::sun::star::sheet::XCellRangeAddressable>(sheet)->getRangeAddress();
  size_ = {std::min(all.EndRow + 1, cells::kMaxRow), std::min(all.EndColumn + 1, cells::kMaxColumn)};
}

Workbook& Worksheet::Book() const {
  if (book_ != nullptr && std::exchange(checked_at_, book_->State()) != book_->State()) {
    const Ref<Worksheet> held(const_cast<Worksheet*>(this));
    book_->CheckSheets();
  }
  if (book_ == nullptr) {
    throw host::Error(-2147417848, u"The object invoked has disconnected from its clients.");
  }
  return *book_;
}

void Worksheet::Close() noexcept {
  book_ = nullptr;
  text_.reset();
  sheet_.clear();
}

Ref<host::Workbook> Worksheet::Parent() const { return &Book(); }

std::optional<int16_t> Worksheet::Index() const { return Book().IndexOf(*this); }

std::u16string Worksheet::ExternalName() const {
  return OrRefuse(kFails, [this] {
    std::u16string name(1, u'[');
    return name.append(Book().Name())
        .append(u"]")
        .append(ViewOf(As<com::sun::star::container::XNamed>(sheet_)->getName()));
  });
}

Block Worksheet::UsedBlock() const {
  Book();
  return OrRefuse(kFails, [this] { return text_->Used(); });
}

Ref<host::Range> Worksheet::UsedRange() const { return MakeRange(UsedBlock()); }

std::u16string Worksheet::ValueOf(cells::Cell cell) const {
  Book();
  return OrRefuse(kFails, [&] {
    const auto shown = sheet_->getCellByPosition(cell.column - 1, cell.row - 1);
    return FromOffice(As<com::sun::star::text::XTextRange>(shown)->getString());
  });
}

bool Worksheet::ReadText() const {
  Book();
  return OrRefuse(kFails, [this] { return text_->Read(SheetText::Clock::now() + kPiece); });
}

const cells::CellText& Worksheet::Text() const {
  Book();
  OrRefuse(kFails, [this] { text_->Read(SheetText::Clock::time_point::max()); });
  return text_->Text();
}

cells::Finder& Worksheet::FinderOfHost() const { return Book().Office().Finder; }

// The office tells nobody that rows are hidden, but whoever does it adds to the list for undo.
const cells::RowSet& Worksheet::HiddenRows() const {
  const auto state = Book().State();
  if (!pending_ && read_at_ != state) {
    hidden_ = OrRefuse(kFails, [this] { return ReadRows(); });
    read_at_ = state;
    ++layout_;
  }
  return hidden_;
}

// A protected sheet, or a document that is read-only, refuses to hide rows and says nothing, and takes texts.
void Worksheet::RequireChangeable(std::u16string_view refusal) const {
  if (ProtectScenarios()) Refuse(refusal);
}

bool Worksheet::ProtectScenarios() const {
  return Book().ReadOnly() ||
         OrRefuse(kFails, [this] { return As<com::sun::star::util::XProtectable>(sheet_)->isProtected(); });
}

std::size_t Worksheet::HideRows(std::span<const host::RowRun> runs) {
  for (const auto run : runs) {
    if (run.first < 1 || run.last > size_.rows) Refuse(kFails);
  }
  Assign(runs, true);
  return runs.size();
}

void Worksheet::SetRowsHidden(std::span<const Block> rows, bool hidden) {
  std::vector<host::RowRun> runs;
  for (const auto& area : rows) runs.push_back({area.first_row, area.last_row});
  Assign(runs, hidden);
}

void Worksheet::Assign(std::span<const host::RowRun> runs, bool hidden) {
  RequireChangeable(kRowsRefused);
  HiddenRows();
  if (!std::exchange(pending_, true)) shown_ = hidden_;
  for (const auto run : runs) hidden_.Assign(run.first, run.last, hidden);
  ++layout_;
  if (Book().Office().ScreenUpdating) Book().HandOver();
}

bool Worksheet::HandOverSome() {
  if (!pending_ && !changed_) return true;
  const Ref<Worksheet> held(this);
  try {
    RequireChangeable(kRowsRefused);
    return OrRefuse(kRowsRefused, [this] {
      // Messages have been processed since the last piece.
      if (read_at_ != Book().State()) shown_ = ReadRows();
      const auto changes = FindRowChanges(shown_, hidden_, size_.rows, kChangesAtOnce);
      if (changes.empty()) {
        EndChange();
        return true;
      }
      MakeChanges(changes);
      return false;
    });
  } catch (const host::Error&) {
    Attempt(Book().Office().Trace, [this] { EndChange(); });
    throw;
  }
}

void Worksheet::MakeChanges(std::span<const RowChange> changes) {
  // The office may call back and take the action off its list, or close the document.
  const auto action = Book().ActionOn(*this, shown_);
  const ScopeExit known([this, &action]() noexcept {
    action->After = shown_;
    if (book_ != nullptr) read_at_ = book_->State();
  });
  const int32_t rows_at_once = std::max(kCellsAtOnce / text_->Used().last_column, 1);
  const auto end = SheetText::Clock::now() + kPiece;
  for (const auto& change : changes) {
    for (auto some = change; some.rows.first <= change.rows.last; some.rows.first = some.rows.last + 1) {
      some.rows.last = std::min(change.rows.last, some.rows.first + rows_at_once - 1);
      MakeRowChange(sheet_, some, action->Before, action->Unfiltered);
      shown_.Assign(some.rows.first, some.rows.last, some.hide);
      if (!changed_) changed_ = some.rows;
      changed_ = {std::min(changed_->first, some.rows.first), std::max(changed_->last, some.rows.last)};
      if (SheetText::Clock::now() >= end) return;
    }
  }
}

// Also where the office refuses, since it may have been told of some.
void Worksheet::EndChange() {
  pending_ = false;
  read_at_.reset();
  if (const auto changed = std::exchange(changed_, std::nullopt)) Book().RowsChanged(*this, *changed);
}

uno::Reference<XDatabaseRange> Worksheet::FilterRange() const {
  const auto index = Index();
  if (!index) return {};
  return OrRefuse(kFails, [&]() -> uno::Reference<XDatabaseRange> {
    const auto document = As<XPropertySet>(Book().Document());
    // What the menu makes.
    const uno::Reference<com::sun::star::sheet::XUnnamedDatabaseRanges> unnamed(
        document->getPropertyValue("UnnamedDatabaseRanges"), uno::UNO_QUERY);
    if (unnamed.is() && unnamed->hasByTable(*index)) {
      uno::Reference<XDatabaseRange> range(unnamed->getByTable(*index), uno::UNO_QUERY);
      if (range.is() && IsAutoFilter(range)) return range;
    }
    const uno::Reference<com::sun::star::container::XIndexAccess> named(
        document->getPropertyValue("DatabaseRanges"), uno::UNO_QUERY);
    for (int32_t i = 0; named.is() && i < named->getCount(); ++i) {
      uno::Reference<XDatabaseRange> range(named->getByIndex(i), uno::UNO_QUERY);
      if (range.is() && range->getDataArea().Sheet == *index && IsAutoFilter(range)) return range;
    }
    return {};
  });
}

bool Worksheet::AutoFilterMode() const { return FilterRange().is(); }

Ref<host::AutoFilter> Worksheet::AutoFilter() const {
  if (!FilterRange().is()) return nullptr;
  return MakeRef<SheetAutoFilter>(Ref(const_cast<Worksheet*>(this)));
}

void Worksheet::SetFilter(const Block&, const host::AutoFilterArguments&) {
  throw host::Error(438, u"Object doesn't support this property or method");
}

// Not by refresh(): that would also sort anew, import anew and add up anew what the range was made with.
void Worksheet::ApplyFilter() {
  RequireChangeable(kFilterRefused);
  const auto range = FilterRange();
  if (!range.is()) throw host::Error(91, u"Object variable or With block variable not set");
  OrRefuse(kFilterRefused, [&] {
    auto wanted = HiddenRows();
    const auto descriptor = range->getFilterDescriptor();
    const auto fields = As<com::sun::star::sheet::XSheetFilterDescriptor3>(descriptor)->getFilterFields3();
    Filtered filtered{Book().Acts(), text_->Changes(), BlockOf(range->getDataArea()), fields};
    const auto cells = As<com::sun::star::sheet::XCellRangeReferrer>(range)->getReferredCells();
    const auto filter = [&] { As<com::sun::star::sheet::XSheetFilterable>(cells)->filter(descriptor); };
    if (!pending_) {
      Book().AsOneAction(filter);
      return;
    }
    // The same filter lets the same rows through, as long as the cells are the same.
    if (filtered_ != filtered) {
      Book().AndTakeBack(filter, [this] { filtered_out_ = ReadRows(); });
      filtered.changes = text_->Changes();  // of all cells, the office says
      filtered_ = filtered;
    }
    // Outside of the filter's data what has been wanted before stays.
    const host::RowRun data{filtered.area.first_row + 1, filtered.area.last_row};
    wanted.Assign(data.first, data.last, false);
    filtered_out_.ForEachRun(data.first, data.last, true,
                             [&](host::RowRun run) { wanted.Assign(run.first, run.last, true); });
    hidden_ = std::move(wanted);
    ++layout_;
  });
}

void Worksheet::SetCell(int32_t row, int32_t column, std::u16string_view text) {
  if (Book().ReadOnly()) Refuse(kCellRefused);
  OrRefuse(kCellRefused, [&] {
    const auto cell = As<XPropertySet>(sheet_->getCellByPosition(column - 1, row - 1));
    if (As<com::sun::star::util::XProtectable>(sheet_)->isProtected()) {
      com::sun::star::util::CellProtection protection;
      cell->getPropertyValue("CellProtection") >>= protection;
      if (protection.IsLocked) Refuse(kCellRefused);
    }
    // As if typed, which also takes a format away that no longer fits, the office enters a text into the
    // active cell alone.
    auto& book = Book();
    if (book.Office().ActiveBook().get() == &book && book.ActiveCells().get() == this &&
        book.ActiveCell() == cells::Cell{row, column}) {
      book.Enter(text);
    } else {
      cell->setPropertyValue("FormulaLocal", uno::Any(ToOffice(text)));
    }
  });
}

void Worksheet::Activate(std::span<const Block> areas) {
  auto& book = Book();
  if (book.Office().ActiveBook().get() != &book || book.ActiveCells().get() != this) {
    Refuse(u"Activate method of Range class failed");
  }
  book.Activate(*this, areas);
}

}  // namespace rowlark::calc
