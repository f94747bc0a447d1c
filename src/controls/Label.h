#pragma once

#include <algorithm>

#include "controls/Control.h"

namespace rowlark::controls {

// Text of one or more lines. Its accelerator belongs to the control behind it. A link has the focus in its
// turn, and Space clicks it.
class Label final : public Control {
 public:
  Label(Form& form, std::u16string_view name) : Control(form, ControlKind::Label, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  bool Link = false;  // shown as something to click

  Size Needs(const Ruler& ruler, Extent least) const override {
    const Size text = ruler.TextSize(PlainCaption(Caption()));
    const Size& edges = ruler.metrics.label_edges;
    return {std::max(least.characters * ruler.metrics.character, text.width + edges.width),
            text.height + edges.height};
  }
  Room RoomInLine() const override { return Room::LineOfItsOwn; }

 private:
  bool TakesFocus() const override { return Link; }
};

}  // namespace rowlark::controls
