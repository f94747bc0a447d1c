#pragma once

#include "controls/TextInput.h"

namespace rowlark::controls {

class TextBox final : public TextInput {
 public:
  TextBox(Form& form, std::u16string_view name) : TextInput(form, ControlKind::TextBox, name) {}

  bool MultiLine = false;
  bool Alert = false;         // stands out, since it tells what went wrong
  TextBox* CueFor = nullptr;  // the box in the same place, for which this one stands while it is empty
};

}  // namespace rowlark::controls
