#include "controls/Layout.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "controls/TextBox.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"

namespace rowlark::controls {
namespace {

constexpr Rect kInset{6, 11, 12, 17};  // of a frame: left, top, both sides, top and bottom
constexpr int32_t kIndent = 12;        // as wide as the mark of a check box with its gap

int32_t LineWidth(const View* view, std::u16string_view line) {
  return view != nullptr ? view->TextWidth(line) : 4 * static_cast<int32_t>(line.size());
}

Size TextSize(const View* view, std::u16string_view text) {
  Size size;
  for (;;) {
    const auto end = text.find(u"\r\n");
    size.width = std::max(size.width, LineWidth(view, text.substr(0, end)));
    size.height += 8;
    if (end == text.npos) return size;
    text.remove_prefix(end + 2);
  }
}

Size Max(Size a, Size b) { return {std::max(a.width, b.width), std::max(a.height, b.height)}; }

}  // namespace

Layout Layout::Grid(std::size_t columns, std::vector<Layout> cells) {
  Layout grid;
  grid.shape_ = Shape::Grid;
  grid.columns_ = columns;
  grid.cells_ = std::move(cells);
  return grid;
}

Layout Layout::Row(std::vector<Layout> cells) {
  const auto columns = cells.size();
  return Grid(columns, std::move(cells));
}

Layout Layout::Column(std::vector<Layout> cells) { return Grid(1, std::move(cells)); }

Layout Layout::Stack(std::vector<Layout> cells) {
  Layout stack = Grid(1, std::move(cells));
  stack.shape_ = Shape::Stack;
  return stack;
}

Layout Layout::Framed(Control& frame, Layout content) {
  Layout framed = Column({std::move(content).Wide().High()});
  framed.control_ = &frame;
  return framed;
}

Layout Layout::Apart() && {
  gap_ = 7;
  return std::move(*this);
}

Layout Layout::Wide() && {
  wide_ = true;
  return std::move(*this);
}

Layout Layout::High() && {
  high_ = true;
  return std::move(*this);
}

Layout Layout::Indented() && {
  indented_ = true;
  return std::move(*this);
}

Layout Layout::WhileVisible() && {
  while_visible_ = true;
  return std::move(*this);
}

void Layout::Order() const {
  Numbers next;
  Order(nullptr, 0, next);
}

void Layout::Order(Control* container, int32_t line, Numbers& next) const {
  if (control_ != nullptr) {
    control_->Container = container;
    control_->TabIndex = next.tab_index++;
    control_->Line = line;
    if (shape_ != Shape::Control) container = control_;
  }
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    if (shape_ == Shape::Grid && i % columns_ == 0) line = ++next.line;
    cells_[i].Order(container, line, next);
  }
}

Size Layout::Measure(const View* view) {
  size_ = shape_ == Shape::Grid ? MeasureGrid(view) : control_ != nullptr ? MeasureControl(view) : minimum_;
  for (auto& cell : cells_) {
    if (shape_ == Shape::Stack) size_ = Max(size_, cell.Measure(view));
  }
  if (shape_ != Shape::Control && control_ != nullptr) {
    size_ = Max({size_.width + kInset.width, size_.height + kInset.height},
                {TextSize(view, PlainCaption(control_->Caption())).width + kInset.width, 0});
  }
  if (indented_) size_.width += kIndent;
  return size_;
}

Size Layout::MeasureControl(const View* view) const {
  const Size text = TextSize(view, PlainCaption(control_->Caption()));
  switch (control_->Kind) {
    case ControlKind::Button:
      return Max(minimum_ == Size{} ? Size{50, 14} : minimum_, {text.width + 10, 14});
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
      return Max(minimum_, {text.width + 14, 10});
    case ControlKind::Label:
      return Max(minimum_, {text.width + 2, text.height});  // letters may reach beyond their width
    case ControlKind::TextBox:
    case ControlKind::ComboBox:
      return Max(minimum_, {40, 14});
    case ControlKind::TreeView: {
      Size size = minimum_;
      for (const auto& node : static_cast<const TreeView*>(control_)->Nodes()) {
        size = Max(size, {LineWidth(view, node.text) + 24, 0});
      }
      return size;
    }
    case ControlKind::ToolBar: {
      Size size{0, 16};
      for (const auto& button : static_cast<const ToolBar*>(control_)->Buttons()) {
        size.width += LineWidth(view, button.caption) + 22;
      }
      return Max(minimum_, size);
    }
    default:
      return minimum_;
  }
}

int32_t Layout::Sum(const std::vector<int32_t>& lengths) const {
  return std::accumulate(lengths.begin(), lengths.end(), gap_ * (static_cast<int32_t>(lengths.size()) - 1));
}

// Spreads what is left of `available` over the flagged lengths.
void Layout::Stretch(std::vector<int32_t>& lengths, const std::vector<bool>& flags, int32_t available) const {
  const auto flagged = static_cast<int32_t>(std::ranges::count(flags, true));
  if (flagged == 0) return;
  int32_t left = std::max(0, available - Sum(lengths));
  int32_t takers = flagged;
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    if (!flags[i]) continue;
    const int32_t share = left / std::max(takers, 1);
    --takers;
    lengths[i] += share;
    left -= share;
  }
}

Size Layout::MeasureGrid(const View* view) {
  std::vector<int32_t> widths(columns_);
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const Size size = cells_[i].Measure(view);
    if (!cells_[i].IsGone()) widths[i % columns_] = std::max(widths[i % columns_], size.width);
  }
  return {Sum(widths), Sum(Heights())};
}

std::vector<int32_t> Layout::Heights() const {
  std::vector<int32_t> heights((cells_.size() + columns_ - 1) / columns_, -gap_);
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    int32_t& height = heights[i / columns_];
    if (!cells_[i].IsGone()) height = std::max(height, cells_[i].size_.height);
  }
  return heights;
}

void Layout::Place(const Rect& whole) const {
  Rect area = whole;
  if (indented_) area = {area.left + kIndent, area.top, area.width - kIndent, area.height};
  if (control_ != nullptr) control_->Bounds = area;
  if (shape_ == Shape::Control) return;
  if (control_ != nullptr) {
    area = {area.left + kInset.left, area.top + kInset.top, area.width - kInset.width,
            area.height - kInset.height};
  }
  if (shape_ == Shape::Grid) return PlaceGrid(area);
  for (const auto& cell : cells_) cell.Place(area);
}

void Layout::PlaceGrid(const Rect& area) const {
  std::vector<int32_t> widths(columns_);
  auto heights = Heights();
  std::vector<bool> wide(widths.size());
  std::vector<bool> high(heights.size());
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const auto& cell = cells_[i];
    if (cell.IsGone()) continue;
    widths[i % columns_] = std::max(widths[i % columns_], cell.size_.width);
    if (cell.wide_) wide[i % columns_] = true;
    if (cell.high_) high[i / columns_] = true;
  }
  if (columns_ == 1) wide[0] = true;
  Stretch(widths, wide, area.width);
  Stretch(heights, high, area.height);

  Rect place{area.left, area.top, 0, 0};
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const std::size_t column = i % columns_;
    const int32_t height = heights[i / columns_];
    if (column == 0 && i > 0) {
      place.left = area.left;
      place.top += heights[i / columns_ - 1] + gap_;
    }
    const auto& cell = cells_[i];
    // What does not fill its row stands in the middle of it.
    const int32_t own = cell.FillsHeight() ? height : cell.size_.height;
    if (!cell.IsGone()) cell.Place({place.left, place.top + (height - own) / 2, widths[column], own});
    place.left += widths[column] + gap_;
  }
}

bool Layout::IsGone() const { return while_visible_ && !control_->Visible(); }

bool Layout::FillsHeight() const {
  if (shape_ != Shape::Control || high_) return true;
  return control_ == nullptr || control_->Kind == ControlKind::TreeView ||
         control_->Kind == ControlKind::ListView;
}

}  // namespace rowlark::controls
