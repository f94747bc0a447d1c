// Where the controls of a form stand. A layout is a tree of grids: every column of a grid is as wide as its
// widest text, in whatever language, so no text is cut and the form grows where it must. All sizes are dialog
// units: a quarter of the average character's width, an eighth of its height.
#pragma once

#include <cstdint>
#include <vector>

#include "controls/Control.h"

namespace rowlark::controls {

class Layout {
 public:
  Layout() = default;
  // One control; it gets at least that size, and what its text needs.
  Layout(Control& control, Size minimum = {}) : control_(&control), minimum_(minimum) {}

  // Cells side by side, one above the other, in rows of so many columns, or all in the same place.
  static Layout Row(std::vector<Layout> cells);
  static Layout Column(std::vector<Layout> cells);
  static Layout Grid(std::size_t columns, std::vector<Layout> cells);
  static Layout Stack(std::vector<Layout> cells);
  // A frame with something in it.
  static Layout Framed(Control& frame, Layout content);

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
  // The size that everything needs.
  Size Measure(const View* view);
  // Gives every control its bounds.
  void Place(const Rect& area) const;

 private:
  enum class Shape { Control, Grid, Stack };

  struct Numbers {
    int32_t tab_index = 0;
    int32_t line = 0;
  };
  void Order(Control* container, int32_t line, Numbers& next) const;
  // The room that lengths take with the gaps between them.
  int32_t Sum(const std::vector<int32_t>& lengths) const;
  void Stretch(std::vector<int32_t>& lengths, const std::vector<bool>& flags, int32_t available) const;
  Size MeasureControl(const View* view) const;
  Size MeasureGrid(const View* view);
  void PlaceGrid(const Rect& area) const;
  bool FillsHeight() const;
  bool IsGone() const;
  // Of the rows of a grid. That of a row that is gone takes away the gap before it as well.
  std::vector<int32_t> Heights() const;

  Shape shape_ = Shape::Control;
  Control* control_ = nullptr;  // or the frame around the cells
  Size minimum_;
  bool wide_ = false;
  bool high_ = false;
  bool indented_ = false;
  bool while_visible_ = false;
  std::size_t columns_ = 1;
  int32_t gap_ = 4;
  std::vector<Layout> cells_;
  Size size_;  // as measured
};

}  // namespace rowlark::controls
