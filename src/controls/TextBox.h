#pragma once

#include "controls/TextInput.h"

namespace rowlark::controls {

class TextBox final : public TextInput {
 public:
  TextBox(Form& form, std::u16string_view name) : TextInput(form, ControlKind::TextBox, name) {}

  bool MultiLine = false;
};

}  // namespace rowlark::controls
