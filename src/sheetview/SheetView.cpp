#include "sheetview/SheetView.h"

#include <algorithm>
#include <utility>

namespace rowlark::sheetview {
namespace {

bool Holds(const Strip& strip, int32_t place) {
  return place >= strip.start && place < strip.start + std::max(strip.size, 1);
}

// The strip that holds the place, or the nearest one.
const Strip& At(const std::vector<Strip>& strips, int32_t place) {
  const auto found =
      std::ranges::find_if(strips, [&](const Strip& strip) { return place < strip.start + strip.size; });
  return found == strips.end() ? strips.back() : *found;
}

}  // namespace

SheetView::SheetView(Ref<standalone::Worksheet> sheet, Measure measure, Extent extent)
    : sheet_(sheet),
      extent_(extent),
      cursor_(sheet),
      top_(Body().first_row),
      left_(Body().first_column),
      widths_(std::move(sheet), std::move(measure)) {}

Block SheetView::Bounds() const { return IsTable() ? sheet_->UsedBlock() : kWholeSheet; }

Block SheetView::Body() const {
  auto body = Bounds();
  if (IsTable()) body.first_row += sheet_->HeadRows();
  body.first_column = std::min(body.first_column + frozen_columns_, body.last_column);
  return body;
}

void SheetView::Resize(int32_t width, int32_t height, const Metrics& metrics) {
  width_ = width;
  height_ = height;
  if (metrics.digit_width != metrics_.digit_width) widths_.Forget();
  metrics_ = metrics;
}

void SheetView::Settle() {
  ScrollToRow(top_);
  ScrollToColumn(left_);
  if (!IsTable()) return;
  FillPage();
  const auto columns = Columns();
  for (const auto& row : Rows()) widths_.Include(row.index, columns.front().index, columns.back().index);
}

void SheetView::FillPage() {
  const auto body = Body();
  const auto& hidden = sheet_->HiddenRows();
  int32_t behind = PageRows();
  for (int32_t row = hidden.Next(top_, body.last_row, false); behind > 0 && row <= body.last_row; --behind) {
    row = hidden.Next(row + 1, body.last_row, false);
  }
  top_ = StepRows(*sheet_, top_, -behind, body);
}

int32_t SheetView::HeaderWidth() const {
  int32_t digits = 0;
  for (int32_t rest = sheet_->UsedBlock().last_row; rest > 0; rest /= 10) ++digits;
  return (std::max(digits, 3) + metrics_.number_margin) * metrics_.digit_width;
}

std::vector<Strip> SheetView::Rows() const {
  std::vector<Strip> rows;
  int32_t y = HeaderHeight();
  const auto add = [&](int32_t row) {
    rows.push_back({row, y, metrics_.row_height});
    y += metrics_.row_height;
  };
  const auto bounds = Bounds();
  const int32_t last = bounds.last_row;
  for (int32_t row = bounds.first_row; IsTable() && row <= last && row < Body().first_row; ++row) add(row);
  const auto& hidden = sheet_->HiddenRows();
  for (int32_t row = hidden.Next(top_, last, false); row <= last && (y < height_ || rows.empty());
       row = hidden.Next(row + 1, last, false)) {
    add(row);
  }
  if (rows.empty()) add(top_);
  return rows;
}

std::vector<Strip> SheetView::Columns() const {
  std::vector<Strip> columns;
  int32_t x = HeaderWidth();
  const auto add = [&](int32_t column) {
    if (IsColumnHidden(column)) return;
    columns.push_back({column, x, ColumnWidth(column)});
    x += columns.back().size + metrics_.gap;
  };
  const auto bounds = Bounds();
  for (int32_t i = 0; i < frozen_columns_ && x < width_; ++i) add(bounds.first_column + i);
  for (int32_t column = left_; column <= bounds.last_column && (x < width_ || columns.empty()); ++column)
    add(column);
  if (columns.empty()) columns.push_back({left_, x, ColumnWidth(left_)});
  return columns;
}

int32_t SheetView::PageRows() const {
  const int32_t rows = (height_ - HeaderHeight()) / std::max(metrics_.row_height, 1);
  return std::max(IsTable() ? rows - sheet_->HeadRows() : rows, 1);
}

std::optional<Box> SheetView::BoxOf(const Block& area) const {
  const auto clip = [](const std::vector<Strip>& strips, int32_t first, int32_t last, int32_t& start,
                       int32_t& end) {
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

SheetView::Hit SheetView::HitTest(int32_t x, int32_t y) const {
  const auto rows = Rows();
  const auto columns = Columns();
  const Strip& row = At(rows, y);
  const Strip& column = At(columns, x);
  const bool beside = x < HeaderWidth();
  const bool above = y < HeaderHeight();
  const Part part = beside && above ? Part::Corner
                    : beside        ? Part::RowHeader
                    : above         ? Part::ColumnHeader
                                    : Part::Cell;
  return {part, {row.index, column.index}, Holds(row, y) && Holds(column, x)};
}

void SheetView::ScrollToRow(int32_t row) {
  const auto body = Body();
  const int32_t last = std::max(body.first_row, body.last_row);
  const auto& hidden = sheet_->HiddenRows();
  row = std::clamp(row, body.first_row, last);
  top_ = hidden.Next(row, last, false);
  if (top_ > last) top_ = std::max(hidden.Previous(row, body.first_row, false), body.first_row);
}

void SheetView::ScrollToColumn(int32_t column) {
  left_ = std::clamp(column, Body().first_column, Body().last_column);
}

void SheetView::RevealRow(int32_t row) {
  if (row < top_) return ScrollToRow(row);
  auto rows = Rows();
  std::erase_if(rows, [this](const Strip& strip) { return IsTable() && strip.index < Body().first_row; });
  const auto whole = std::min(rows.size(), static_cast<std::size_t>(PageRows()));
  if (whole > 0 && row > rows[whole - 1].index) {
    ScrollToRow(StepRows(*sheet_, row, 1 - PageRows(), Body()));
  }
}

void SheetView::RevealColumn(int32_t column) {
  const auto bounds = Bounds();
  if (column < bounds.first_column + frozen_columns_) return;
  if (column < left_) return ScrollToColumn(column);
  const auto taken = [this](int32_t one) {
    return IsColumnHidden(one) ? 0 : metrics_.gap + ColumnWidth(one);
  };
  int32_t first = column;
  int32_t room = width_ - HeaderWidth() - ColumnWidth(first);
  for (int32_t i = 0; i < frozen_columns_; ++i) room -= taken(bounds.first_column + i);
  for (; first > left_; --first) {
    room -= taken(first - 1);
    if (room < 0) break;
  }
  ScrollToColumn(std::max(first, left_));
}

int32_t SheetView::NaturalWidth(int32_t column) const {
  const auto version = sheet_->Text().Version();
  if (!IsTable() && std::exchange(widths_version_, version) != version) widths_.Forget();
  const int32_t text = widths_.TextWidth(column, metrics_.head_margin);
  return text == 0 ? metrics_.empty_width : std::max(text + metrics_.text_margin, metrics_.least_width);
}

int32_t SheetView::ColumnWidth(int32_t column) const {
  const auto own = own_widths_.find(column);
  if (own != own_widths_.end()) return own->second;
  return std::min(NaturalWidth(column), std::max(metrics_.most_width, metrics_.empty_width));
}

void SheetView::SetColumnWidth(int32_t column, std::optional<int32_t> width) {
  own_widths_.erase(column);
  if (width) own_widths_[column] = *width == 0 ? 0 : std::max(*width, metrics_.least_width);
}

bool SheetView::IsColumnHidden(int32_t column) const {
  const auto own = own_widths_.find(column);
  return own != own_widths_.end() && own->second == 0;
}

int32_t SheetView::StepColumn(int32_t column, int32_t step) const {
  const auto bounds = Bounds();
  for (int32_t next = column + step; next >= bounds.first_column && next <= bounds.last_column;
       next += step) {
    if (!IsColumnHidden(next)) return next;
  }
  return column;
}

void SheetView::FreezeColumns(int32_t columns) {
  frozen_columns_ = std::clamp(columns, 0, Bounds().last_column - Bounds().first_column);
  ScrollToColumn(left_);
}

void SheetView::ShowLike(const SheetView& other) {
  own_widths_ = other.own_widths_;
  FreezeColumns(other.frozen_columns_);
  ScrollToRow(other.top_);
  ScrollToColumn(other.left_);
}

}  // namespace rowlark::sheetview
