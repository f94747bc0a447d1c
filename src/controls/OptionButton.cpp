#include "controls/OptionButton.h"

#include "controls/Form.h"

namespace rowlark::controls {

void OptionButton::SetValue(bool selected) {
  if (!Set(value_, selected, Property::Value) || !selected) return;
  for (Control* control : Parent().Controls()) {
    if (control != this && control->Kind == Kind && control->Container == Container) {
      static_cast<OptionButton*>(control)->SetValue(false);
    }
  }
  Click.Raise();
}

void OptionButton::UserClicked() {
  OnUser([this] {
    if (Enabled() && Shown()) SetValue(true);
  });
}

}  // namespace rowlark::controls
