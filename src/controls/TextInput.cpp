#include "controls/TextInput.h"

#include <algorithm>

namespace rowlark::controls {

Size TextInput::Needs(const Ruler& ruler, Extent least) const {
  constexpr int32_t kLeast = 10;  // characters
  const auto& metrics = ruler.metrics;
  return {std::max(least.characters > 0 ? least.characters : kLeast, 1) * metrics.character +
              metrics.box_edges.width,
          least.lines * metrics.line + metrics.box_edges.height};
}

void TextInput::SetText(std::u16string_view text) {
  if (text == text_) return;
  Assign(text);
  TextChanged();
  Change.Raise();
}

void TextInput::Assign(std::u16string_view text) {
  text_ = text;
  anchor_ = caret_ = 0;
  Notify(Property::Text);
}

void TextInput::Select(int32_t anchor, int32_t caret) {
  anchor_ = Clamp(anchor);
  caret_ = Clamp(caret);
  Notify(Property::Selection);
}

void TextInput::UserTyped(std::u16string_view text, int32_t caret) {
  OnUser([&] {
    if (ReadOnly || !Enabled()) return;
    const bool changed = text != text_;
    text_ = text;
    anchor_ = caret_ = Clamp(caret);
    if (!changed) return;
    TextChanged();
    Change.Raise();
  });
}

void TextInput::UserSelected(int32_t anchor, int32_t caret) {
  OnUser([&] {
    anchor_ = Clamp(anchor);
    caret_ = Clamp(caret);
  });
}

}  // namespace rowlark::controls
