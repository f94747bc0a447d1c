#pragma once

#include "controls/Control.h"

namespace rowlark::controls {

// A change of its value is a click, whoever makes it.
class CheckBox final : public Control {
 public:
  CheckBox(Form& form, std::u16string_view name) : Control(form, ControlKind::CheckBox, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  bool Value() const { return value_; }
  void SetValue(bool checked) {
    if (Set(value_, checked, Property::Value)) Click.Raise();
  }

  void UserClicked() override {
    OnUser([this] {
      if (Enabled() && Shown()) SetValue(!value_);
    });
  }

  Size Needs(const Ruler& ruler, Extent) const override {
    const Size text = ruler.TextSize(PlainCaption(Caption()));
    const Size& edges = ruler.metrics.mark_edges;
    return {text.width + edges.width, text.height + edges.height};
  }

 private:
  bool value_ = false;
};

}  // namespace rowlark::controls
