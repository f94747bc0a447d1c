#include "controls/OptionButton.h"

#include "controls/Form.h"

namespace rowlark::controls {

void OptionButton::SetValue(bool selected) {
  if (!Set(value_, selected, Property::Value) || !selected) return;
  for (Control* control : Parent().Controls()) {
    auto* other = As<OptionButton>(control);
    if (other != nullptr && other != this && other->Container == Container) other->SetValue(false);
  }
  Click.Raise();
}

void OptionButton::UserClicked() {
  OnUser([this] {
    if (Enabled() && Shown()) SetValue(true);
  });
}

}  // namespace rowlark::controls
