#pragma once

#include <string>

#include "controls/Control.h"

namespace rowlark::controls {

class Image final : public Control {
 public:
  // `picture` is the name by which the window system knows it.
  Image(Form& form, std::u16string_view name, std::u16string_view picture)
      : Control(form, ControlKind::Image, name), Picture(picture) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  const std::u16string Picture;
  bool Large = false;
  bool Alert = false;   // something is wrong
  std::u16string Sign;  // what a screen without pictures shows instead

  Size Needs(const Ruler& ruler, Extent) const override {
    return Large ? ruler.metrics.large_picture : ruler.metrics.picture;
  }

 private:
  bool TakesFocus() const override { return false; }
};

}  // namespace rowlark::controls
