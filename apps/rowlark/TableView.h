// A sheet on the screen: its header stays on top, its columns are as wide as what they show, hidden rows are
// gaps. Only what shows is looked at, however large the sheet is.
#pragma once

#include <cstdint>
#include <vector>

#include "Highlight.h"
#include "host/standalone/Worksheet.h"
#include "host/terminal/Canvas.h"
#include "host/terminal/Input.h"

namespace rowlark {

class TableView {
 public:
  explicit TableView(Ref<standalone::Worksheet> sheet) : sheet_(std::move(sheet)) {}

  const Ref<standalone::Worksheet>& Sheet() const { return sheet_; }

  void Draw(terminal::Canvas& canvas, const terminal::Rect& area, const Highlight& highlight, bool focused);

  // Moves the active cell or, with Shift, what is selected. False for keys that do neither.
  bool Navigate(const terminal::KeyPress& press);
  void UseMouse(const terminal::MouseAction& action);
  // Selects a cell, and keeps what is selected beside it when `add` is set.
  void GoTo(int32_t row, int32_t column, bool extend = false, bool add = false);
  // What is selected next comes to what is selected already.
  void KeepSelection() { keep_ = true; }

  int32_t Row() const { return row_; }
  int32_t Column() const { return column_; }
  // The nearest visible row in a direction (-1 up, 1 down) of the table; the row itself when there is none.
  int32_t VisibleRow(int32_t row, int32_t direction) const;

 private:
  struct Shown {
    int32_t number;  // of the row or column
    int32_t at;      // where it begins on the screen
    int32_t size;
  };

  standalone::Rect Used() const { return sheet_->Text().Used().value_or(standalone::Rect{}); }
  int32_t Header() const { return Used().first_row; }
  bool IsHidden(int32_t row) const { return sheet_->HiddenRows().Contains(row); }
  // So many visible rows up or down, as far as there are any.
  int32_t Step(int32_t row, int32_t rows) const;
  // Follows the sheet where something else has selected cells.
  void Follow();
  void ScrollToActive(int32_t height, int32_t width);
  void Measure(int32_t column);
  void Widen(int32_t column, int32_t width);
  int32_t Width(int32_t column);

  void DrawRow(terminal::Canvas& canvas, int32_t row, int32_t y, const Highlight& highlight, bool focused);
  void DrawCell(terminal::Canvas& canvas, int32_t row, const Shown& column, int32_t y, std::string_view text,
                const Highlight& highlight, terminal::Style style) const;
  bool IsSelected(int32_t row, int32_t column) const;

  Ref<standalone::Worksheet> sheet_;
  int32_t row_ = 1;  // the active cell
  int32_t column_ = 1;
  int32_t anchor_row_ = 1;  // where the selection began
  int32_t anchor_column_ = 1;
  std::vector<standalone::Rect> kept_;      // areas selected beside the one that grows
  std::vector<standalone::Rect> selected_;  // as the sheet was told
  bool keep_ = false;
  bool follow_ = true;  // the active cell has to show

  int32_t top_ = 0;   // the first row below the header that shows
  int32_t left_ = 0;  // the first column
  std::vector<int32_t> widths_;
  int32_t widest_ = 40;
  int32_t number_width_ = 1;
  std::vector<Shown> rows_;  // as drawn last, the header among them
  std::vector<Shown> columns_;
};

}  // namespace rowlark
