// The part of a sheet that a window shows: which rows and columns stand where. Knows no window system; pixels
// count from the window's upper left corner.
#pragma once

#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "Navigation.h"
#include "host/standalone/Worksheet.h"

namespace rowlark::workbench {

// In pixels.
struct GridMetrics {
  int row_height = 20;
  int digit_width = 7;
};

// A row or column on the screen.
struct Strip {
  int32_t index;
  int start;
  int size;
};

struct Box {
  int left;
  int top;
  int right;   // just outside
  int bottom;  // just outside
};

class GridView {
 public:
  enum class Part { Corner, RowHeader, ColumnHeader, Cell, FilterArrow };
  struct Hit {
    Part part;
    Place place;  // the nearest row or column where the point is beside the cells
  };
  // The width in pixels that a cell's text takes.
  using Measure = std::function<int(std::string_view text)>;

  GridView(Ref<standalone::Worksheet> sheet, Measure measure)
      : sheet_(std::move(sheet)), measure_(std::move(measure)) {}

  standalone::Worksheet& Sheet() const { return *sheet_; }

  void Resize(int width, int height, const GridMetrics& metrics);
  const GridMetrics& Metrics() const { return metrics_; }

  int HeaderWidth() const;
  int HeaderHeight() const { return metrics_.row_height; }

  // What is on the screen, also in part. Never empty.
  std::vector<Strip> Rows() const;
  std::vector<Strip> Columns() const;
  // How many rows are there as a whole, at least one.
  int32_t PageRows() const;

  // Where cells lie on the screen, clipped to it; nothing when they are off it.
  std::optional<Box> BoxOf(const standalone::Rect& area) const;
  // The button in the head of a column that has a filter.
  std::optional<Box> FilterArrow(int32_t column) const;
  Hit HitTest(int x, int y) const;

  int32_t TopRow() const { return top_; }
  int32_t LeftColumn() const { return left_; }
  void ScrollToRow(int32_t row);
  void ScrollRows(int32_t visible_rows) { ScrollToRow(StepRows(*sheet_, TopRow(), visible_rows)); }
  void ScrollToColumn(int32_t column);
  // Scrolls as little as it takes to show the cell.
  void Reveal(Place place) {
    RevealRow(place.row);
    RevealColumn(place.column);
  }
  void RevealRow(int32_t row);
  void RevealColumn(int32_t column);

  // In pixels; fitted to the first rows in use.
  int ColumnWidth(int32_t column) const;

 private:
  Ref<standalone::Worksheet> sheet_;
  Measure measure_;
  GridMetrics metrics_;
  int width_ = 0;
  int height_ = 0;
  int32_t top_ = 1;
  int32_t left_ = 1;
  mutable std::unordered_map<int32_t, int> widths_;  // of the text as it was at widths_version_
  mutable uint64_t widths_version_ = 0;
};

}  // namespace rowlark::workbench
