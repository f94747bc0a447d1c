// How the controls of a form look.
#pragma once

#include <optional>
#include <string_view>

#include "controls/Form.h"
#include "host/terminal/Canvas.h"

namespace rowlark::terminal {

// Draws the form's inner area. `active`: the keyboard is the form's.
void Paint(Canvas& canvas, const controls::Form& form, bool active);

// Writes a caption with its accelerator marked; the cells that it took.
int32_t WriteCaption(Canvas& canvas, Point at, std::u16string_view caption, Style style, int32_t width);

// What a place in a list, tree or tool bar belongs to; nothing for none. `place` lies in the control's area.
std::optional<int32_t> EntryAt(const controls::Control& control, const Rect& area, Point place);

}  // namespace rowlark::terminal
