// The part of a sheet that a screen shows: which rows and columns stand where, and how it scrolls. Knows no
// window system; places count from the upper left corner of what the view has, in the screen's unit: pixels,
// or the cells of a terminal.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "sheetview/ColumnWidths.h"
#include "sheetview/Moves.h"
#include "sheetview/SheetCursor.h"

namespace rowlark::sheetview {

// What a screen needs for rows and columns, in its unit.
struct Metrics {
  int32_t row_height = 1;
  int32_t digit_width = 1;
  int32_t letters_height = 1;  // of the row of column letters; 0: there is none
  int32_t number_margin = 2;   // beside the numbers of rows, in digits
  // Of columns.
  int32_t least_width = 4;
  int32_t most_width = 40;
  int32_t empty_width = 9;  // of one without a text
  int32_t text_margin = 2;  // beside its text
  int32_t head_margin = 0;  // beside its first text, moreover: for a button
  int32_t gap = 0;          // between two columns
};

// A row or column on the screen.
struct Strip {
  int32_t index;
  int32_t start;
  int32_t size;
};

struct Box {
  int32_t left;
  int32_t top;
  int32_t right;   // just outside
  int32_t bottom;  // just outside
};

class SheetView {
 public:
  enum class Extent {
    Sheet,  // all cells there can be; columns follow what is in their first rows
    Table,  // those in use, the sheet's head always showing; columns only grow
  };
  enum class Part { Corner, RowHeader, ColumnHeader, Cell };
  struct Hit {
    Part part;
    Cell cell;   // the nearest row or column where the point is beside the cells
    bool exact;  // it is not
  };

  SheetView(Ref<standalone::Worksheet> sheet, Measure measure, Extent extent);

  standalone::Worksheet& Sheet() const { return *sheet_; }
  SheetCursor& Cursor() { return cursor_; }
  const SheetCursor& Cursor() const { return cursor_; }
  // The cells that can be gone to.
  Block Bounds() const;

  void Resize(int32_t width, int32_t height, const Metrics& metrics);
  // Follows rows that were hidden, shown or loaded: of a table, no room is left below its last row while rows
  // are above, and the rows that show decide on the widths of columns.
  void Settle();

  int32_t HeaderWidth() const;
  int32_t HeaderHeight() const { return metrics_.letters_height; }

  // What is on the screen, also in part. Never empty.
  std::vector<Strip> Rows() const;
  std::vector<Strip> Columns() const;
  // How many rows can be there as a whole without the head, at least one.
  int32_t PageRows() const;

  // Where cells lie on the screen, clipped to it; nothing when they are off it.
  std::optional<Box> BoxOf(const Block& area) const;
  Hit HitTest(int32_t x, int32_t y) const;

  int32_t TopRow() const { return top_; }
  int32_t LeftColumn() const { return left_; }
  void ScrollToRow(int32_t row);
  void ScrollRows(int32_t visible_rows) { ScrollToRow(StepRows(*sheet_, top_, visible_rows, Bounds())); }
  void ScrollToColumn(int32_t column);
  // Scrolls as little as it takes to show the cell.
  void Reveal(Cell cell) {
    RevealRow(cell.row);
    RevealColumn(cell.column);
  }
  void RevealRow(int32_t row);
  void RevealColumn(int32_t column);

  int32_t ColumnWidth(int32_t column) const;
  // What its text asks for.
  int32_t NaturalWidth(int32_t column) const;
  // The user's own width of a column, 0 for one that is not to show; nothing: as its text asks.
  void SetColumnWidth(int32_t column, std::optional<int32_t> width);
  void ResetColumnWidths() { own_widths_.clear(); }
  bool IsColumnHidden(int32_t column) const;
  // Gives a hidden column back the width that its text asks for.
  void ShowColumn(int32_t column) {
    if (IsColumnHidden(column)) SetColumnWidth(column, std::nullopt);
  }
  // The next column that shows, `column` itself when there is none.
  int32_t StepColumn(int32_t column, int32_t step) const;
  // So many of the first columns show always.
  void FreezeColumns(int32_t columns);
  int32_t FrozenColumns() const { return frozen_columns_; }
  // Scrolled like another view, with the columns that the user has set there.
  void ShowLike(const SheetView& other);

 private:
  bool IsTable() const { return extent_ == Extent::Table; }
  // The cells that scroll.
  Block Body() const;
  void FillPage();

  Ref<standalone::Worksheet> sheet_;
  Extent extent_;
  SheetCursor cursor_;
  Metrics metrics_;
  int32_t width_ = 0;
  int32_t height_ = 0;
  int32_t frozen_columns_ = 0;  // before those below, which begin behind them
  int32_t top_;
  int32_t left_;
  std::map<int32_t, int32_t> own_widths_;
  mutable ColumnWidths widths_;  // of the text as it was at widths_version_
  mutable uint64_t widths_version_ = 0;
};

}  // namespace rowlark::sheetview
