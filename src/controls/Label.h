#pragma once

#include "controls/Control.h"

namespace rowlark::controls {

// Text of one or more lines. Its accelerator belongs to the control behind it. A link has the focus in its
// turn, and Space clicks it.
class Label final : public Control {
 public:
  Label(Form& form, std::u16string_view name) : Control(form, ControlKind::Label, name) {}

  bool Link = false;  // shown as something to click

 private:
  bool TakesFocus() const override { return Link; }
};

}  // namespace rowlark::controls
