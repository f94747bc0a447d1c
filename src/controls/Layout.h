// Where the controls of a form stand. A layout is a tree of grids, and answers for any screen how large it
// must be, where everything stands and in which order it is reached. Every column of a grid is as wide as its
// widest text, in whatever language, so no text is cut and the form grows where it must. Where the screen is
// too narrow for a grid, what stands in it follows one another as words of a text do. Lengths are in the
// screen's unit.
#pragma once

#include <cstdint>
#include <vector>

#include "controls/Control.h"
#include "controls/Metrics.h"

namespace rowlark::controls {

class Frame;

class Layout {
 public:
  Layout() = default;
  // One control; it gets at least that room, and what its text needs.
  Layout(Control& control, Extent least = {}) : control_(&control), least_(least) {}

  // Cells side by side, one above the other, in rows of so many columns, or all in the same place.
  static Layout Row(std::vector<Layout> cells);
  static Layout Column(std::vector<Layout> cells);
  static Layout Grid(std::size_t columns, std::vector<Layout> cells);
  static Layout Stack(std::vector<Layout> cells);
  // A frame with something in it.
  static Layout Framed(Frame& frame, Layout content);

  // Its cells have little to do with each other, and stand farther apart.
  Layout Apart() &&;
  // Its column takes what width is left over, its row what height.
  Layout Wide() &&;
  Layout High() &&;
  // It depends on what stands above it, and stands a little to the right.
  Layout Indented() &&;
  // Of a control: it takes room, and so does a row with nothing else, only while it is visible.
  Layout WhileVisible() &&;

  // Tells the controls the frames around them and their tab order, which is the order of the layout.
  void Order() const;
  // The size that everything needs, in a form that is no wider than that.
  Size Fit(const Ruler& ruler, int32_t widest);
  // Gives every control its bounds, as it was fitted last.
  void Place(const Metrics& metrics, const Rect& area) const;
  // Something had no room as it stands in the tree when it was fitted last.
  bool Folded() const;

 private:
  enum class Shape { Control, Grid, Stack };
  struct Numbers {
    int32_t tab_index = 0;
    int32_t line = 0;
  };
  struct Word {
    Layout* cell;
    Rect area;  // from the corner of the layout on
  };

  void Order(Control* container, int32_t line, Numbers& next) const;
  Size FitContent(const Ruler& ruler, int32_t widest);
  Size FitFrame(const Ruler& ruler, int32_t widest);
  Size FitGrid(const Ruler& ruler, int32_t widest);
  Size FitStack(const Ruler& ruler, int32_t widest);
  Size Fold(const Ruler& ruler, int32_t width);
  void Collect(std::vector<Layout*>& words);
  Room RoomInLine() const;
  int32_t LineOf() const;
  Size Gap(const Metrics& metrics) const { return apart_ ? metrics.wide_gap : metrics.gap; }
  void PlaceGrid(const Metrics& metrics, const Rect& area) const;
  bool FillsHeight() const;
  bool IsGone() const;
  // Of the rows of a grid. That of a row that is gone takes away the gap before it as well.
  std::vector<int32_t> Heights(int32_t gap) const;

  Shape shape_ = Shape::Control;
  Control* control_ = nullptr;  // or the frame around the cells
  Frame* frame_ = nullptr;      // the same
  Extent least_;
  bool apart_ = false;
  bool wide_ = false;
  bool high_ = false;
  bool indented_ = false;
  bool while_visible_ = false;
  std::size_t columns_ = 1;
  std::vector<Layout> cells_;
  // As fitted:
  Size size_;
  bool folded_ = false;      // a grid whose cells follow one another; a control that is cut
  std::vector<Word> words_;  // of such a grid
  Size heading_;             // of a frame without a border
};

}  // namespace rowlark::controls
