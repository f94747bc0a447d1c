#pragma once

#include <string>

#include "controls/Control.h"

namespace rowlark::controls {

class Image final : public Control {
 public:
  // `picture` is the name by which the window system knows it.
  Image(Form& form, std::u16string_view name, std::u16string_view picture)
      : Control(form, ControlKind::Image, name), Picture(picture) {}

  const std::u16string Picture;

 private:
  bool TakesFocus() const override { return false; }
};

}  // namespace rowlark::controls
