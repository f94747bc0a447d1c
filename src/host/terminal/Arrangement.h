// Where the controls of a form stand in a terminal. Their layout is kept where it fits: what stands side by
// side or below one another does so here, with a row for every line of text. In a narrower terminal the
// controls follow one another as words of a text do. Either way nothing overlaps and nothing is cut.
#pragma once

#include <cstdint>
#include <vector>

#include "controls/Form.h"
#include "host/terminal/Canvas.h"

namespace rowlark::terminal {

struct Arrangement {
  struct Place {
    controls::Control* control;
    Rect area;  // cells of the form's inner area
  };
  std::vector<Place> places;  // of the controls that show; frames before what they hold
  Size size;
  bool boxes = true;  // frames stand around what they hold; otherwise they are a heading

  // Null for a control that does not show.
  const Rect* Of(const controls::Control* control) const;
};

// `margin` is what controls that follow one another leave free on both sides.
Arrangement Arrange(const controls::Form& form, int32_t width, int32_t margin);

// Width of a line of text in dialog units, with what a control needs around it in a terminal.
int32_t TextUnits(std::u16string_view text);

}  // namespace rowlark::terminal
