#include "controls/Layout.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "controls/Frame.h"
#include "util/Text.h"

namespace rowlark::controls {
namespace {

constexpr int32_t kUnlimited = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeastBox = 10;  // characters of a box that shares its line

Size Max(Size a, Size b) { return {std::max(a.width, b.width), std::max(a.height, b.height)}; }

// The room that lengths take with the gaps between them.
int32_t Sum(const std::vector<int32_t>& lengths, int32_t gap) {
  return std::accumulate(lengths.begin(), lengths.end(), gap * (static_cast<int32_t>(lengths.size()) - 1));
}

// Spreads what is left of `available` over the flagged lengths.
void Stretch(std::vector<int32_t>& lengths, const std::vector<bool>& flags, int32_t available, int32_t gap) {
  auto takers = static_cast<int32_t>(std::ranges::count(flags, true));
  int32_t left = std::max(0, available - Sum(lengths, gap));
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    if (!flags[i]) continue;
    const int32_t share = left / takers--;  // NOLINT(clang-analyzer-core.DivideZero): one for each flag
    lengths[i] += share;
    left -= share;
  }
}

int32_t Less(int32_t width, int32_t by) { return width == kUnlimited ? width : std::max(0, width - by); }

}  // namespace

Size Ruler::TextSize(std::u16string_view text) const {
  Size size;
  for (const auto line : Pieces(text, u"\r\n")) {
    size.width = std::max(size.width, TextWidth(line));
    size.height += metrics.line;
  }
  return size;
}

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

Layout Layout::Framed(Frame& frame, Layout content) {
  Layout framed = Column({std::move(content).Wide().High()});
  framed.control_ = framed.frame_ = &frame;
  return framed;
}

Layout Layout::Apart() && {
  apart_ = true;
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

Size Layout::Fit(const Ruler& ruler, int32_t widest) {
  const int32_t indent = indented_ ? ruler.metrics.indent : 0;
  size_ = FitContent(ruler, Less(widest, indent));
  size_.width += indent;
  return size_;
}

Size Layout::FitContent(const Ruler& ruler, int32_t widest) {
  folded_ = false;
  if (frame_ != nullptr) return FitFrame(ruler, widest);
  if (shape_ == Shape::Grid) return FitGrid(ruler, widest);
  if (shape_ == Shape::Stack) return FitStack(ruler, widest);
  if (control_ == nullptr) return {};
  const Size size = control_->Needs(ruler, least_);
  const Room room = control_->RoomInLine();
  folded_ = size.width > widest && (room == Room::Word || room == Room::LineOfItsOwn);
  return {std::min(size.width, widest), size.height};
}

// What is too wide for its frame is headed by the caption, without a border that would take room.
Size Layout::FitFrame(const Ruler& ruler, int32_t widest) {
  const Rect& inset = ruler.metrics.frame;
  const int32_t caption = ruler.TextSize(PlainCaption(frame_->Caption())).width;
  Size size = FitGrid(ruler, Less(widest, inset.width));
  frame_->Bordered = !Folded();
  if (frame_->Bordered) return {std::max(size.width, caption) + inset.width, size.height + inset.height};
  // A box stands beside its heading.
  heading_ = {caption + ruler.metrics.gap.width, 0};
  size = FitGrid(ruler, Less(widest, heading_.width));
  const Layout& content = cells_.front();
  const bool is_box = !content.words_.empty() && content.words_.front().cell->RoomInLine() == Room::Rest;
  if (content.folded_ && is_box && size.height <= ruler.metrics.heading) return {widest, size.height};
  heading_ = {0, ruler.metrics.heading};
  size = FitGrid(ruler, widest);
  return {std::max(size.width, std::min(caption, widest)), size.height + heading_.height};
}

Size Layout::FitGrid(const Ruler& ruler, int32_t widest) {
  const Size gap = Gap(ruler.metrics);
  std::vector<int32_t> widths(columns_);
  folded_ = false;
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const Size size = cells_[i].Fit(ruler, columns_ == 1 ? widest : kUnlimited);
    if (!cells_[i].IsGone()) widths[i % columns_] = std::max(widths[i % columns_], size.width);
  }
  const Size size{Sum(widths, gap.width), Sum(Heights(gap.height), gap.height)};
  return columns_ > 1 && size.width > widest ? Fold(ruler, widest) : size;
}

// Pages that do not show take no room where there is little of it.
Size Layout::FitStack(const Ruler& ruler, int32_t widest) {
  Size all;
  Size shown;
  for (auto& cell : cells_) {
    const Size size = cell.Fit(ruler, widest);
    all = Max(all, size);
    if (cell.control_ == nullptr || cell.control_->Visible()) shown = Max(shown, size);
  }
  return Folded() ? shown : all;
}

// One after the other, in lines of that width.
Size Layout::Fold(const Ruler& full_ruler, int32_t width) {
  Metrics tight = full_ruler.metrics;
  tight.least_button = 0;
  const Ruler ruler{tight, full_ruler.view};
  folded_ = true;
  words_.clear();
  std::vector<Layout*> cells;
  Collect(cells);
  const Size gap = ruler.metrics.gap;
  const int32_t least_box = kLeastBox * ruler.metrics.character;
  int32_t x = 0;
  int32_t y = 0;
  int32_t height = 0;
  const auto next_line = [&] {
    if (x > 0) y += height + gap.height;
    x = height = 0;
  };
  for (std::size_t i = 0; i < cells.size(); ++i) {
    Layout& cell = *cells[i];
    const Room room = cell.RoomInLine();
    Size size = cell.Fit(ruler, width);
    if (room == Room::Rest) size.width = std::min(size.width, least_box);
    if (room == Room::Lines || room == Room::LineOfItsOwn || x + size.width > width) next_line();
    if (room == Room::Lines) size.width = width;
    if (room == Room::Rest) {
      // But for what belongs to it, if that is small.
      const bool is_followed = i + 1 < cells.size() && cells[i + 1]->LineOf() == cell.LineOf();
      const int32_t behind = is_followed ? cells[i + 1]->Fit(ruler, width).width + gap.width : 0;
      size.width = std::max(size.width, width - x - (behind < width / 3 ? behind : 0));
    }
    words_.push_back({&cell, {x, y, size.width, size.height}});
    x += size.width + gap.width;
    height = std::max(height, size.height);
    if (room == Room::Lines) next_line();
  }
  next_line();
  return {width, std::max(0, y - gap.height)};
}

// What is placed as one thing: controls, frames with what they hold, and what lies in one place.
void Layout::Collect(std::vector<Layout*>& words) {
  for (auto& cell : cells_) {
    if (cell.IsGone()) continue;
    if (cell.shape_ == Shape::Grid && cell.frame_ == nullptr) {
      cell.Collect(words);
    } else if (cell.control_ != nullptr || !cell.cells_.empty()) {
      words.push_back(&cell);
    }
  }
}

Room Layout::RoomInLine() const {
  if (frame_ != nullptr) return Room::Lines;
  if (shape_ == Shape::Stack) return cells_.front().RoomInLine();
  return control_ != nullptr ? control_->RoomInLine() : Room::Word;
}

int32_t Layout::LineOf() const {
  return control_ != nullptr ? control_->Line : cells_.empty() ? -1 : cells_.front().LineOf();
}

bool Layout::Folded() const { return folded_ || std::ranges::any_of(cells_, &Layout::Folded); }

std::vector<int32_t> Layout::Heights(int32_t gap) const {
  std::vector<int32_t> heights((cells_.size() + columns_ - 1) / columns_, -gap);
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    int32_t& height = heights[i / columns_];
    if (!cells_[i].IsGone()) height = std::max(height, cells_[i].size_.height);
  }
  return heights;
}

void Layout::Place(const Metrics& metrics, const Rect& whole) const {
  Rect area = whole;
  if (indented_) area = {area.left + metrics.indent, area.top, area.width - metrics.indent, area.height};
  if (control_ != nullptr) control_->Bounds = area;
  if (shape_ == Shape::Control) return;
  if (frame_ != nullptr) {
    const Rect inset = frame_->Bordered
                           ? metrics.frame
                           : Rect{heading_.width, heading_.height, heading_.width, heading_.height};
    area = {area.left + inset.left, area.top + inset.top, area.width - inset.width,
            area.height - inset.height};
  }
  if (folded_) {
    for (const auto& [cell, at] : words_) {
      cell->Place(metrics, {area.left + at.left, area.top + at.top, at.width, at.height});
    }
  } else if (shape_ == Shape::Grid) {
    PlaceGrid(metrics, area);
  } else {
    for (const auto& cell : cells_) cell.Place(metrics, area);
  }
}

void Layout::PlaceGrid(const Metrics& metrics, const Rect& area) const {
  const Size gap = Gap(metrics);
  std::vector<int32_t> widths(columns_);
  auto heights = Heights(gap.height);
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
  Stretch(widths, wide, area.width, gap.width);
  Stretch(heights, high, area.height, gap.height);

  Rect place{area.left, area.top, 0, 0};
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    const std::size_t column = i % columns_;
    const int32_t height = heights[i / columns_];
    if (column == 0 && i > 0) {
      place.left = area.left;
      place.top += heights[i / columns_ - 1] + gap.height;
    }
    const auto& cell = cells_[i];
    // What does not fill its row stands in the middle of it.
    const int32_t own = cell.FillsHeight() ? height : cell.size_.height;
    if (!cell.IsGone()) {
      cell.Place(metrics, {place.left, place.top + (height - own) / 2, widths[column], own});
    }
    place.left += widths[column] + gap.width;
  }
}

bool Layout::IsGone() const { return while_visible_ && !control_->Visible(); }

bool Layout::FillsHeight() const {
  return shape_ != Shape::Control || high_ || control_ == nullptr || control_->RoomInLine() == Room::Lines;
}

}  // namespace rowlark::controls
