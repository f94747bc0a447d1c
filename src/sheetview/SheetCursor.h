// Where the user is on a sheet: the active cell, what is selected around it, and what is selected beside
// that. The sheet holds all of it, since others select too; the cursor follows them.
#pragma once

#include <vector>

#include "sheetview/Moves.h"

namespace rowlark::sheetview {

// What an area reaches over beyond its corners.
enum class Span { Cells, Rows, Columns, Sheet };

class SheetCursor {
 public:
  explicit SheetCursor(Ref<standalone::Worksheet> sheet) : sheet_(std::move(sheet)) {}

  Cell Active() const;
  // The cell that the user moved last: the active one, or the corner that went away from it.
  Cell At() const { return at_; }
  // The corner of the active area that lies opposite to the active cell: what Shift and a key move.
  Cell MovingCorner() const;
  bool IsSelected(Cell cell) const;

  // Makes a cell the active one and selects it, or its row, its column or all; what is selected already stays
  // beside it when `add` is set. These two raise the sheet's event where they change the selection, and tell
  // whether they do.
  bool MoveTo(Cell cell, Span span = Span::Cells, bool add = false);
  // Selects what lies between the active cell, which stays, and `corner`.
  bool ExtendTo(Cell corner, Span span = Span::Cells);
  // The next MoveTo adds.
  void KeepSelection() { keep_ = true; }

  // Whether something else has selected since.
  bool Follow();

 private:
  bool Select(Cell active, Cell corner, Span span);

  Ref<standalone::Worksheet> sheet_;
  Cell at_{1, 1};
  bool keep_ = false;
  std::vector<Block> beside_;    // areas beside the active one
  std::vector<Block> selected_;  // as last seen, with the active cell
  Cell active_;
};

}  // namespace rowlark::sheetview
