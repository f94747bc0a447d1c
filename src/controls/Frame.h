#pragma once

#include "controls/Control.h"

namespace rowlark::controls {

// A titled border around other controls, which come and go with it. Its accelerator belongs to the first of
// them that takes the focus.
class Frame final : public Control {
 public:
  Frame(Form& form, std::u16string_view name) : Control(form, ControlKind::Frame, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  bool Bordered = true;  // set by the form's layout: there is room for the border

 private:
  bool TakesFocus() const override { return false; }
};

}  // namespace rowlark::controls
