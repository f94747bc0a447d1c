#include "GridView.h"

#include <algorithm>

namespace rowlark::workbench {
namespace {

using standalone::kMaxColumn;
using standalone::kMaxRow;
using standalone::Rect;

// Of a column, in digits.
constexpr int kDefaultDigits = 9;
constexpr int kMostDigits = 40;

constexpr int32_t kMeasuredRows = 200;

// The strip that holds the pixel, or the nearest one.
const Strip& At(const std::vector<Strip>& strips, int pixel) {
  const auto found =
      std::ranges::find_if(strips, [&](const Strip& strip) { return pixel < strip.start + strip.size; });
  return found == strips.end() ? strips.back() : *found;
}

}  // namespace

void GridView::Resize(int width, int height, const GridMetrics& metrics) {
  width_ = width;
  height_ = height;
  if (metrics.digit_width != metrics_.digit_width) widths_.clear();
  metrics_ = metrics;
}

int GridView::HeaderWidth() const {
  int digits = 2;
  for (int32_t rest = sheet_->Text().Used().value_or(Rect{}).last_row; rest > 0; rest /= 10) ++digits;
  return std::max(digits, 5) * metrics_.digit_width;
}

std::vector<Strip> GridView::Rows() const {
  std::vector<Strip> rows;
  const auto& hidden = sheet_->HiddenRows();
  int y = HeaderHeight();
  for (int32_t row = hidden.Next(top_, kMaxRow, false); row <= kMaxRow && (y < height_ || rows.empty());
       row = hidden.Next(row + 1, kMaxRow, false)) {
    rows.push_back({row, y, metrics_.row_height});
    y += metrics_.row_height;
  }
  if (rows.empty()) rows.push_back({top_, y, metrics_.row_height});
  return rows;
}

std::vector<Strip> GridView::Columns() const {
  std::vector<Strip> columns;
  int x = HeaderWidth();
  for (int32_t column = left_; column <= kMaxColumn && (x < width_ || columns.empty()); ++column) {
    columns.push_back({column, x, ColumnWidth(column)});
    x += columns.back().size;
  }
  return columns;
}

int32_t GridView::PageRows() const {
  return std::max((height_ - HeaderHeight()) / std::max(metrics_.row_height, 1), 1);
}

std::optional<Box> GridView::BoxOf(const Rect& area) const {
  const auto clip = [](const std::vector<Strip>& strips, int32_t first, int32_t last, int& start, int& end) {
    bool any = false;
    for (const auto& strip : strips) {
      if (strip.index < first || strip.index > last) continue;
      if (!any) start = strip.start;
      end = strip.start + strip.size;
      any = true;
    }
    return any;
  };
  Box box{};
  if (!clip(Rows(), area.first_row, area.last_row, box.top, box.bottom) ||
      !clip(Columns(), area.first_column, area.last_column, box.left, box.right)) {
    return std::nullopt;
  }
  return box;
}

std::optional<Box> GridView::FilterArrow(int32_t column) const {
  if (!sheet_->AutoFilterMode()) return std::nullopt;
  const Rect& range = sheet_->Filter().range;
  if (!range.Contains(range.first_row, column)) return std::nullopt;
  auto box = BoxOf({range.first_row, column, range.first_row, column});
  if (box) box->left = std::max(box->left, box->right - metrics_.row_height);
  return box;
}

GridView::Hit GridView::HitTest(int x, int y) const {
  const Place place{At(Rows(), y).index, At(Columns(), x).index};
  if (y < HeaderHeight()) return {x < HeaderWidth() ? Part::Corner : Part::ColumnHeader, place};
  if (x < HeaderWidth()) return {Part::RowHeader, place};
  if (const auto arrow = FilterArrow(place.column);
      arrow && x >= arrow->left && x < arrow->right && y >= arrow->top && y < arrow->bottom) {
    return {Part::FilterArrow, place};
  }
  return {Part::Cell, place};
}

void GridView::ScrollToRow(int32_t row) {
  row = std::clamp(row, 1, kMaxRow);
  const auto& hidden = sheet_->HiddenRows();
  top_ = hidden.Next(row, kMaxRow, false);
  if (top_ > kMaxRow) top_ = std::max(hidden.Previous(row, 1, false), 1);
}

void GridView::ScrollToColumn(int32_t column) { left_ = std::clamp(column, 1, kMaxColumn); }

void GridView::RevealRow(int32_t row) {
  if (row < top_) return ScrollToRow(row);
  const auto rows = Rows();
  const auto whole = std::min(rows.size(), static_cast<std::size_t>(PageRows()));
  if (row > rows[whole - 1].index) ScrollToRow(StepRows(*sheet_, row, 1 - PageRows()));
}

void GridView::RevealColumn(int32_t column) {
  if (column < left_) return ScrollToColumn(column);
  int room = width_ - HeaderWidth();
  int32_t first = column;
  for (room -= ColumnWidth(first); first > left_ && room >= ColumnWidth(first - 1); --first) {
    room -= ColumnWidth(first - 1);
  }
  ScrollToColumn(std::max(first, left_));
}

int GridView::ColumnWidth(int32_t column) const {
  const auto& text = sheet_->Text();
  if (widths_version_ != text.Version()) {
    widths_.clear();
    widths_version_ = text.Version();
  }
  const auto [known, added] = widths_.try_emplace(column, kDefaultDigits * metrics_.digit_width);
  const auto& used = text.Used();
  if (!added || !used || column < used->first_column || column > used->last_column) return known->second;
  const int32_t last = std::min(used->last_row, used->first_row + kMeasuredRows - 1);
  int width = 0;
  for (int32_t row = used->first_row; row <= last; ++row) {
    if (const auto cell = text.Cell(row, column); !cell.empty()) {
      const int button = row == used->first_row ? metrics_.row_height : 0;  // the head may get one
      width = std::max(width, measure_(cell) + button);
    }
  }
  if (width > 0) {
    const int margin = 2 * metrics_.digit_width;
    known->second = std::clamp(width + margin, 4 * metrics_.digit_width, kMostDigits * metrics_.digit_width);
  }
  return known->second;
}

}  // namespace rowlark::workbench
