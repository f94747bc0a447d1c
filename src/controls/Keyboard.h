// What keys do to controls, for window systems without native controls that know it by themselves.
#pragma once

#include <cstdint>
#include <string_view>

#include "controls/Form.h"

namespace rowlark::controls {

// A key with the character that it types (0: none) was pressed and released. The form and the control hear of
// it first; what they leave edits the text, moves the focus, clicks.
void PressKey(Form& form, int32_t key, int32_t shift = kNoShift, char16_t character = 0);

// The text, with line breaks as "\n", takes the place of what is selected in the control with the focus.
// Where that has one line only, control characters become blanks.
void Paste(Form& form, std::u16string_view text);

}  // namespace rowlark::controls
