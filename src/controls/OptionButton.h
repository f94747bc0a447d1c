#pragma once

#include "controls/Control.h"

namespace rowlark::controls {

// One of several in the same frame (or on the bare form), of which one at most is selected. Being selected is
// a click, whoever does it.
class OptionButton final : public Control {
 public:
  OptionButton(Form& form, std::u16string_view name) : Control(form, ControlKind::OptionButton, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  bool Value() const { return value_; }
  void SetValue(bool selected);
  void UserClicked() override;

  Size Needs(const Ruler& ruler, Extent) const override {
    const Size text = ruler.TextSize(PlainCaption(Caption()));
    const Size& edges = ruler.metrics.mark_edges;
    return {text.width + edges.width, text.height + edges.height};
  }

 private:
  bool value_ = false;
};

}  // namespace rowlark::controls
