// A sheet of a spreadsheet document.
#pragma once

#include <com/sun/star/sheet/TableFilterField3.hpp>
#include <com/sun/star/sheet/XDatabaseRange.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/calc/HiddenRows.h"
#include "host/calc/Office.h"
#include "host/calc/SheetText.h"
#include "host/cells/Sheet.h"

namespace rowlark::calc {

class Worksheet final : public cells::Sheet {
 public:
  Worksheet(Workbook& book, const uno::Reference<com::sun::star::sheet::XSpreadsheet>& sheet);

  Ref<host::Workbook> Parent() const override;
  Ref<host::Range> UsedRange() const override;
  bool AutoFilterMode() const override;
  Ref<host::AutoFilter> AutoFilter() const override;
  bool ProtectScenarios() const override;  // also where the document is read-only: no row can be hidden then
  std::size_t HideRows(std::span<const host::RowRun> runs) override;

  void RequireOpen() const override { Book(); }
  const cells::SheetSize& Size() const override { return size_; }
  std::u16string ExternalName() const override;
  Block UsedBlock() const override;
  std::u16string ValueOf(cells::Cell cell) const override;
  bool ReadText() const override;
  const cells::CellText& Text() const override;
  const cells::RowSet& HiddenRows() const override;
  uint64_t Layout() const override { return layout_; }
  cells::Finder& FinderOfHost() const override;
  void SetCell(int32_t row, int32_t column, std::u16string_view text) override;
  void SetRowsHidden(std::span<const Block> rows, bool hidden) override;
  // The office does not take criteria as Excel writes them: a filter is applied as a whole.
  void SetFilter(const Block& range, const host::AutoFilterArguments& arguments) override;
  void Activate(std::span<const Block> areas) override;

  // The range that the AutoFilter belongs to; nothing without one.
  uno::Reference<com::sun::star::sheet::XDatabaseRange> FilterRange() const;
  void ApplyFilter();

  Workbook& Book() const;  // fails when the document has been closed
  const uno::Reference<com::sun::star::sheet::XSpreadsheet>& Sheet() const { return sheet_; }
  // Where it stands among the sheets, from 0; nothing when it has been removed.
  std::optional<int16_t> Index() const;
  // Its name when the book looked last.
  const std::u16string& LastName() const { return name_; }
  void SetLastName(std::u16string name) { name_ = std::move(name); }
  // The user has done something, or a program.
  void SomethingWasDone() { text_->SomethingWasDone(); }

  // Tells the office of rows that are to be hidden or shown, some milliseconds long; true when it has been
  // told of all. Throws when it refuses; then it is told of no more.
  bool HandOverSome();
  void Close() noexcept;

 private:
  void RequireChangeable(std::u16string_view refusal) const;
  cells::RowSet ReadRows() const { return ReadHiddenRows(sheet_, size_.rows); }
  void MakeChanges(std::span<const RowChange> changes);
  void EndChange();
  void Assign(std::span<const host::RowRun> runs, bool hidden);

  mutable Workbook* book_;
  mutable std::optional<uint64_t> checked_at_;  // the state of the book in which it is known to be there
  std::u16string name_;
  uno::Reference<com::sun::star::sheet::XSpreadsheet> sheet_;
  cells::SheetSize size_;
  std::unique_ptr<SheetText> text_;
  mutable cells::RowSet hidden_;             // as the logic wants them
  mutable cells::RowSet shown_;              // as the office has them, while changes are pending
  mutable std::optional<uint64_t> read_at_;  // the state of the book that hidden_ was read in
  mutable uint64_t layout_ = 0;
  bool pending_ = false;
  std::optional<host::RowRun> changed_;  // among these are the rows that the office has still to notice

  // What the filter let through when it was applied last, and of what that was the result.
  struct Filtered {
    uint64_t done = 0;     // by the user and programs
    uint64_t changes = 0;  // of the text
    Block area;
    uno::Sequence<com::sun::star::sheet::TableFilterField3> fields;
    bool operator==(const Filtered&) const = default;
  };
  std::optional<Filtered> filtered_;
  cells::RowSet filtered_out_;
};

}  // namespace rowlark::calc
