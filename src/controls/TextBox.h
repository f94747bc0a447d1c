#pragma once

#include <algorithm>

#include "controls/TextInput.h"

namespace rowlark::controls {

class TextBox final : public TextInput {
 public:
  TextBox(Form& form, std::u16string_view name) : TextInput(form, ControlKind::TextBox, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  bool MultiLine = false;
  bool HasLines() const override { return MultiLine; }
  bool Alert = false;  // stands out, since it tells what went wrong
  // What can only be read is read whole.
  Size Needs(const Ruler& ruler, Extent least) const override {
    if (ReadOnly && MultiLine) {
      const auto lines = 1 + static_cast<int32_t>(std::ranges::count(Text(), u'\n'));
      least.lines = ruler.metrics.roomy ? std::max(least.lines, lines) : lines;
    }
    return TextInput::Needs(ruler, least);
  }
  controls::Room RoomInLine() const override {
    return MultiLine ? controls::Room::Lines : controls::Room::Rest;
  }

  TextBox* CueFor = nullptr;  // the box in the same place, for which this one stands while it is empty
};

}  // namespace rowlark::controls
