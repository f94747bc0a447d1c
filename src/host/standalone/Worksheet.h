// A sheet of cells: text, hidden rows, selection, protection and AutoFilter.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/cells/Sheet.h"
#include "host/spreadsheet.h"
#include "host/standalone/FilterCriteria.h"

namespace rowlark::standalone {

using namespace cells;  // what sheets are made of

class Application;
class Workbook;

// What a protected sheet still allows.
struct Protection {
  bool contents = false;   // cells, rows and filters are locked
  bool scenarios = false;  // read as ProtectScenarios
  bool allow_formatting_rows = false;
  bool allow_filtering = false;
};

// An AutoFilter: its range with the header row, and one filter for each column.
struct FilterState {
  Block range;
  std::vector<ColumnFilter> columns;
};

class Worksheet final : public cells::Sheet {
 public:
  Worksheet(Workbook& parent, std::u16string_view name) : parent_(&parent), name_(name) {}

  Ref<host::Workbook> Parent() const override;
  Ref<host::Range> UsedRange() const override;
  bool AutoFilterMode() const override;
  Ref<host::AutoFilter> AutoFilter() const override;
  bool ProtectScenarios() const override;
  std::size_t HideRows(std::span<const RowRun> runs) override;

  const std::u16string& Name() const { return name_; }
  void SetName(std::u16string_view name) { name_ = name; }
  const SheetSize& Size() const override { return size_; }
  void SetSize(const SheetSize& size) { size_ = size; }  // before there is anything on it

  // Loads a row behind the last one loaded: UTF-8, one text a cell. No protection, no change mark.
  void AppendRow(std::span<const std::string_view> cells) { text_.AppendRow(cells); }
  // Takes back the rows loaded; changes made since come back when loading is over.
  void Clear();
  // While rows are still to come, cells behind the last one can not be changed.
  void SetLoading(bool loading);
  const CellText& Text() const override { return text_; }
  // The cells in use: A1 while no cell has had a text.
  Block UsedBlock() const override { return text_.Used().value_or(Block::OfCell(1, 1)); }
  // What UsedRange is: those below the head.
  Block BodyBlock() const;
  // How many of the first rows in use are the table's head: never part of what is searched by default.
  int32_t HeadRows() const { return head_rows_; }
  void SetHeadRows(int32_t rows) { head_rows_ = rows; }
  const RowSet& HiddenRows() const override { return hidden_; }
  // The cells that were changed since they were loaded, with their text now, which may be the one loaded
  // again. `Edits` grows with every change.
  struct Change {
    std::optional<std::string> loaded;  // nothing until the row has been loaded once more
    std::string text;
  };
  const std::map<Cell, Change>& Changes() const { return changes_; }
  uint64_t Edits() const { return edits_; }
  void Protect(const Protection& protection) { protection_ = protection; }

  // What a user does with the mouse: selects cells and makes the first one active.
  void Select(std::u16string_view address);
  // The same, but with another cell of these areas as the active one.
  void Select(std::vector<Block> areas, Cell active);

  // The part that ranges and filters need. Rows and columns lie on the sheet.
  void RequireOpen() const override { Book(); }
  std::u16string ExternalName() const override;
  std::u16string ValueOf(Cell cell) const override;
  Finder& FinderOfHost() const override;
  Workbook& Book() const;  // fails when the workbook has been closed
  uint64_t Layout() const override { return layout_; }
  void SetHidden(const Block& rows, bool hidden);
  void SetRowsHidden(std::span<const Block> rows, bool hidden) override;
  void SetCell(int32_t row, int32_t column, std::u16string_view text) override;
  void SetFilter(const Block& range, const host::AutoFilterArguments& arguments) override;
  void ApplyFilter();
  const FilterState& Filter() const;  // fails without an AutoFilter
  const std::vector<Block>& Selection() const { return selection_; }
  Block ActiveCell() const { return active_cell_; }
  void Activate(std::span<const Block> areas) override;
  void Close() { parent_ = nullptr; }

 private:
  void Changed() const;
  void SelectAndActivate(std::span<const Block> areas);

  Workbook* parent_;
  std::u16string name_;
  SheetSize size_;
  CellText text_;
  int32_t head_rows_ = 0;
  std::map<Cell, Change> changes_;
  uint64_t edits_ = 0;
  bool loading_ = false;
  RowSet hidden_;
  uint64_t layout_ = 0;  // counts the changes of hidden_
  Protection protection_;
  std::optional<FilterState> filter_;
  std::vector<Block> selection_{Block::OfCell(1, 1)};
  Block active_cell_ = Block::OfCell(1, 1);
};

// A sheet that shows a chart: it has no cells.
class ChartSheet final : public host::Worksheet {
 public:
  explicit ChartSheet(Ref<host::Workbook> parent) : parent_(std::move(parent)) {}

  Ref<host::Workbook> Parent() const override { return parent_; }
  Ref<host::Range> Range(std::u16string_view) const override { Refuse(); }
  Ref<host::Range> Range(const host::Range&, const host::Range&) const override { Refuse(); }
  Ref<host::Range> Cells() const override { Refuse(); }
  Ref<host::Range> Cells(int32_t, int32_t) const override { Refuse(); }
  Ref<host::Range> UsedRange() const override { Refuse(); }
  bool AutoFilterMode() const override { Refuse(); }
  Ref<host::AutoFilter> AutoFilter() const override { Refuse(); }
  bool ProtectScenarios() const override { return false; }
  std::size_t HideRows(std::span<const RowRun>) override { Refuse(); }

 private:
  [[noreturn]] static void Refuse() {
    throw host::Error(438, u"Object doesn't support this property or method");
  }

  Ref<host::Workbook> parent_;
};

}  // namespace rowlark::standalone
