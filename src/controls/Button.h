#pragma once

#include "controls/Control.h"

namespace rowlark::controls {

class Button final : public Control {
 public:
  Button(Form& form, std::u16string_view name) : Control(form, ControlKind::Button, name) {}

  bool Default = false;  // pressed by Enter from any control that is no button
  bool Cancel = false;   // pressed by Escape
};

}  // namespace rowlark::controls
