// Text with a caret and a selection, which text boxes and combo boxes have in common. Offsets count UTF-16
// units from 0.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "controls/Control.h"

namespace rowlark::controls {

class TextInput : public Control {
 public:
  const std::u16string& Text() const { return text_; }
  // A change of the text raises Change; the caret goes to the start.
  void SetText(std::u16string_view text);

  // The selection lies between the anchor and the caret, in either order.
  int32_t Anchor() const { return anchor_; }
  int32_t Caret() const { return caret_; }
  int32_t SelStart() const { return anchor_ < caret_ ? anchor_ : caret_; }
  int32_t SelLength() const { return anchor_ < caret_ ? caret_ - anchor_ : anchor_ - caret_; }
  // Offsets beyond the text count as its end.
  void Select(int32_t anchor, int32_t caret);
  void SetCaret(int32_t caret) { Select(caret, caret); }
  void SelectAll() { Select(0, End()); }
  int32_t End() const { return static_cast<int32_t>(text_.size()); }

  bool ReadOnly = false;
  virtual bool HasLines() const { return false; }

  Size Needs(const Ruler& ruler, Extent least) const override;
  Room RoomInLine() const override { return Room::Rest; }

  Slot<> Change{*this, "Change"};

  // The user has edited the text, or moved the selection.
  void UserTyped(std::u16string_view text, int32_t caret);
  void UserSelected(int32_t anchor, int32_t caret);

 protected:
  using Control::Control;

  // The whole text is selected when the control gets the focus.
  void Focused() override { SelectAll(); }
  // Before Change is raised.
  virtual void TextChanged() {}
  // Takes a text without an event.
  void Assign(std::u16string_view text);

 private:
  int32_t Clamp(int32_t offset) const { return offset < 0 ? 0 : offset < End() ? offset : End(); }

  std::u16string text_;
  int32_t anchor_ = 0;
  int32_t caret_ = 0;
};

}  // namespace rowlark::controls
