// Draws a sheet on a terminal and moves on it: its header stays on top, its columns are as wide as what they
// show, hidden rows are gaps. Only what shows is looked at, however large the sheet is.
#pragma once

#include <cstdint>

#include "Matches.h"
#include "host/standalone/Worksheet.h"
#include "host/terminal/Canvas.h"
#include "host/terminal/Input.h"
#include "sheetview/SheetView.h"

namespace rowlark {

class TableView {
 public:
  explicit TableView(Ref<standalone::Worksheet> sheet);

  standalone::Worksheet& Sheet() const { return view_.Sheet(); }

  void Draw(terminal::Canvas& canvas, const terminal::Rect& area, const Highlight& highlight, bool focused);

  // Moves the active cell or, with Shift, what is selected. False for keys that do neither.
  bool Navigate(const terminal::KeyPress& press);
  void UseMouse(const terminal::MouseAction& action);
  // When the user has left the cursor in the last visible row, or where it began, it goes to what is that row
  // now; false when it is there.
  bool KeepToEnd();
  // The sheet has been read anew: it shows as the other view left it.
  void StandInFor(const TableView& before);
  sheetview::Cell At() const { return view_.Cursor().At(); }
  void GoTo(sheetview::Cell cell);
  // So much wider; narrower below 0.
  void WidenColumn(int32_t by);
  void HideColumn();
  void ShowColumns() { view_.ResetColumnWidths(); }
  // The columns up to the active cell stay; none do when they did.
  void FreezeColumns();
  // What is selected next comes to what is selected already.
  void KeepSelection() { view_.Cursor().KeepSelection(); }

 private:
  // Below the head.
  int32_t FirstRow() const { return view_.Bounds().first_row + Sheet().HeadRows(); }
  bool IsInLastRow() const;
  void Moved();
  void Follow();
  void Scroll(const terminal::Rect& area, bool letters, const Matches& found);
  int32_t MostWidth(int32_t room, int32_t least) const;
  void MarkMatchesBeside(terminal::Canvas& canvas, int32_t row, int32_t y, const Matches& found) const;
  void DrawRow(terminal::Canvas& canvas, int32_t row, terminal::Point at, const Highlight& highlight,
               bool focused);
  void DrawCell(terminal::Canvas& canvas, sheetview::Cell cell, const terminal::Rect& place,
                std::string_view text, const Highlight& highlight, terminal::Style style) const;

  sheetview::SheetView view_;
  terminal::Rect area_{};  // where it was drawn last
  bool reveal_ = true;     // the cell that the user is at has to show
  bool at_end_ = true;     // or at the beginning
  uint64_t layout_ = 0;    // of the sheet, when it was drawn last
};

}  // namespace rowlark
