// How the controls of a form look.
#pragma once

#include <optional>
#include <string_view>

#include "controls/Form.h"
#include "controls/ListView.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"
#include "host/terminal/Canvas.h"

namespace rowlark::terminal {

// Draws the form's inner area. `active`: the keyboard is the form's.
void Paint(Canvas& canvas, const controls::Form& form, bool active);

// Writes a caption with its accelerator marked; the cells that it took.
int32_t WriteCaption(Canvas& canvas, Point at, std::u16string_view caption, Style style, int32_t width);

// The entry or button at a place in the control; nothing for none.
std::optional<int32_t> EntryAt(const controls::ListView& list, Point place);
std::optional<int32_t> EntryAt(const controls::TreeView& tree, Point place);
std::optional<int32_t> EntryAt(const controls::ToolBar& bar, Point place);

}  // namespace rowlark::terminal
