// How large things are on a screen, in the screen's own unit.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "controls/View.h"

namespace rowlark::controls {

// Lengths that do not depend on a text. As they stand they are those of native windows, in dialog units.
struct Metrics {
  int32_t character = 4;      // width, on average
  int32_t line = 8;           // height of a line of text
  int32_t entry = 12;         // of a list
  Size label_edges{2, 0};     // what is added to a text: letters may reach beyond their width
  Size box_edges{0, 6};       // to text that is edited
  Size button_edges{10, 6};   // to a caption
  Size mark_edges{14, 2};     // to that of a check box or an option button
  Size tree_edges{24, 0};     // to a node
  Size tool_edges{22, 8};     // to the caption of a tool bar's button
  int32_t least_button = 50;  // width
  Size picture_button{
      15, 14};  // a button with a picture in place of its caption; nothing where there are no pictures
  Size picture{12, 12};
  Size large_picture{32, 30};
  Size gap{4, 4};             // between neighbours
  Size wide_gap{7, 7};        // between those that have little to do with each other
  Rect frame{6, 11, 12, 17};  // within a frame: left, top, both sides, top and bottom
  int32_t heading = 11;       // height of the caption of a frame that has no border
  int32_t indent = 12;
  Size margin{7, 7};                                     // of a form
  Size folded_margin{7, 7};                              // of one that is too wide for the screen
  int32_t widest = std::numeric_limits<int32_t>::max();  // that a form may be
  bool roomy = true;  // there is room for longer texts than those that show
};

// Measures texts as well.
struct Ruler {
  const Metrics& metrics;
  const View* view = nullptr;  // without one characters are of average width

  int32_t TextWidth(std::u16string_view line) const {
    return view != nullptr ? view->TextWidth(line) : metrics.character * static_cast<int32_t>(line.size());
  }
  // Of a text of one or more lines.
  Size TextSize(std::u16string_view text) const;
};

// Room for so many characters in so many lines.
struct Extent {
  int32_t characters = 0;
  int32_t lines = 1;
};

}  // namespace rowlark::controls
