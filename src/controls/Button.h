#pragma once

#include <algorithm>
#include <string>

#include "controls/Control.h"

namespace rowlark::controls {

class Button final : public Control {
 public:
  Button(Form& form, std::u16string_view name) : Control(form, ControlKind::Button, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  bool Default = false;  // pressed by Enter from any control that is no button
  bool Cancel = false;   // pressed by Escape
  // Where the screen has pictures, the name of one that it shows in place of its caption; its tool tip then
  // tells what it is to those who do not see it.
  std::u16string Picture;

  Size Needs(const Ruler& ruler, Extent) const override {
    const auto& metrics = ruler.metrics;
    if (!Picture.empty() && metrics.picture_button != Size{}) return metrics.picture_button;
    const Size text = ruler.TextSize(PlainCaption(Caption()));
    const int32_t least = Picture.empty() ? metrics.least_button : 0;
    return {std::max(least, text.width + metrics.button_edges.width),
            text.height + metrics.button_edges.height};
  }
};

}  // namespace rowlark::controls
