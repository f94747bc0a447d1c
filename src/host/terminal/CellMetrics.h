// How large the controls of forms are in a terminal, in cells.
#pragma once

#include <cstdint>

#include "controls/Metrics.h"

namespace rowlark::terminal {

// Of a terminal in which forms may be so many cells wide. `folded_margin` is what one that is too wide for it
// leaves free on both sides.
inline controls::Metrics CellMetrics(int32_t widest, int32_t folded_margin) {
  return {.character = 1,
          .line = 1,
          .entry = 1,
          .label_edges = {1, 0},
          .box_edges = {0, 0},
          .button_edges = {4, 0},
          .mark_edges = {4, 0},
          .tree_edges = {3, 0},
          .tool_edges = {3, 0},
          .least_button = 12,
          .picture_button = {},
          .picture = {1, 1},
          .large_picture = {0, 0},
          .gap = {1, 0},
          .wide_gap = {3, 0},
          .frame = {2, 1, 4, 2},
          .heading = 1,
          .indent = 4,
          .margin = {1, 0},
          .folded_margin = {folded_margin, 0},
          .widest = widest,
          .roomy = false};
}

}  // namespace rowlark::terminal
