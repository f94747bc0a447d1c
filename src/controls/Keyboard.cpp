#include "controls/Keyboard.h"

#include <algorithm>
#include <vector>

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/ComboBox.h"
#include "controls/Label.h"
#include "controls/ListView.h"
#include "controls/OptionButton.h"
#include "controls/TextBox.h"
#include "controls/TreeView.h"
#include "util/Text.h"

namespace rowlark::controls {
namespace {

void MoveFocus(Form& form, bool back) {
  auto controls = form.InTabOrder();
  if (back) std::ranges::reverse(controls);
  const auto current = std::ranges::find(controls, form.ActiveControl());
  if (current != controls.end()) std::rotate(controls.begin(), current + 1, controls.end());
  const auto next = std::ranges::find_if(controls, &Control::Focusable);
  if (next != controls.end()) (*next)->UserFocused();
}

void ClickIfAny(Form& form, bool Button::*role) {
  for (Control* control : form.Controls()) {
    if (control->Kind == ControlKind::Button && static_cast<Button*>(control)->*role)
      return control->UserClicked();
  }
}

// Buttons and boxes are clicked; the accelerator of anything else belongs to what stands behind it.
bool PressAccelerator(Form& form, int32_t key) {
  bool found = false;
  for (Control* control : form.InTabOrder()) {
    if (found && control->Focusable()) {
      control->UserFocused();
      return true;
    }
    if (found || !control->Shown() || !control->Enabled()) continue;
    if (Accelerator(control->Caption()) != ToLower(static_cast<char32_t>(key))) continue;
    if (control->Focusable()) {
      control->UserFocused();
      control->UserClicked();
      return true;
    }
    found = true;
  }
  return found;
}

void Replace(TextInput& input, int32_t start, int32_t length, std::u16string_view with) {
  auto text = input.Text();
  text.replace(static_cast<std::size_t>(start), static_cast<std::size_t>(length), with);
  input.UserTyped(text, start + static_cast<int32_t>(with.size()));
}

// The caret before or behind the character next to it, which may be a pair of surrogates.
int32_t Next(const TextInput& input, int32_t caret, int32_t step) {
  const auto is = [&](int32_t at, char16_t half) {
    return at >= 0 && at < input.End() && (input.Text()[static_cast<std::size_t>(at)] & 0xFC00) == half;
  };
  caret += step;
  return is(caret - 1, 0xD800) && is(caret, 0xDC00) ? caret + step : caret;
}

bool Edit(TextInput& input, int32_t key, int32_t shift) {
  const int32_t start = input.SelStart();
  const int32_t length = input.SelLength();
  const auto move = [&](int32_t caret) {
    caret = std::clamp(caret, 0, input.End());
    input.UserSelected((shift & kShift) != 0 ? input.Anchor() : caret, caret);
  };
  const bool extend = (shift & kShift) != 0;
  switch (key) {
    case kKeyLeft:
      move(length > 0 && !extend ? start : Next(input, input.Caret(), -1));
      return true;
    case kKeyRight:
      move(length > 0 && !extend ? start + length : Next(input, input.Caret(), 1));
      return true;
    case kKeyHome:
      move(0);
      return true;
    case kKeyEnd:
      move(input.End());
      return true;
    case kKeyBack:
      if (length > 0)
        Replace(input, start, length, u"");
      else if (start > 0)
        Replace(input, Next(input, start, -1), start - Next(input, start, -1), u"");
      return true;
    case kKeyDelete:
      if (length > 0)
        Replace(input, start, length, u"");
      else if (start < input.End())
        Replace(input, start, Next(input, start, 1) - start, u"");
      return true;
    default:
      return false;
  }
}

// What a key does in the control with the focus.
class KeyUser final : public Visitor {
 public:
  KeyUser(int32_t key, int32_t shift)
      : key_(key),
        shift_(shift),
        step_(key == kKeyDown ? 1
              : key == kKeyUp ? -1
                              : 0) {}

  void Visit(Button& button) override {
    if (key_ == kKeyReturn || key_ == kKeySpace) button.UserClicked();
  }
  void Visit(CheckBox& box) override { Space(box); }
  void Visit(OptionButton& button) override { Space(button); }
  void Visit(Label& link) override { Space(link); }
  void Visit(ComboBox& box) override {
    if (step_ != 0) {
      box.UserPicked(box.ListIndex() + step_);
    } else if (!box.DropDownList) {
      Edit(box, key_, shift_);
    }
  }
  void Visit(TextBox& box) override { Edit(box, key_, shift_); }
  void Visit(ListView& list) override {
    if (step_ != 0) list.UserPicked(list.Selected() + step_);
  }
  void Visit(TreeView& tree) override {
    if (step_ != 0) tree.UserPicked(tree.Selected() + step_);
  }

 private:
  void Space(Control& control) const {
    if (key_ == kKeySpace) control.UserClicked();
  }

  int32_t key_;
  int32_t shift_;
  int32_t step_;  // in a list
};

// What a character does there.
class CharacterUser final : public Visitor {
 public:
  explicit CharacterUser(char16_t character) : character_(character) {}
  void Visit(TextBox& box) override { Insert(box); }
  void Visit(ComboBox& box) override {
    if (!box.DropDownList) Insert(box);
  }

 private:
  void Insert(TextInput& input) const {
    Replace(input, input.SelStart(), input.SelLength(), std::u16string_view(&character_, 1));
  }

  char16_t character_;
};

void UseKey(Form& form, int32_t key, int32_t shift) {
  Control* control = form.ActiveControl();
  if ((shift & kAlt) != 0) {
    PressAccelerator(form, key);
    return;
  }
  if (key == kKeyTab) return MoveFocus(form, (shift & kShift) != 0);
  if (key == kKeyEscape) return ClickIfAny(form, &Button::Cancel);
  if (key == kKeyReturn && (control == nullptr || control->Kind != ControlKind::Button)) {
    return ClickIfAny(form, &Button::Default);
  }
  KeyUser user(key, shift);
  if (control != nullptr) control->Accept(user);
}

void UseCharacter(Form& form, char16_t character) {
  if (form.ActiveControl() == nullptr || character < u' ' || character == 127) return;
  CharacterUser user(character);
  form.ActiveControl()->Accept(user);
}

}  // namespace

void PressKey(Form& form, int32_t key, int32_t shift, char16_t character) {
  const Ref<Form> keep(&form);
  if (const int32_t left = form.UserKeyDown(key, shift); left != 0) {
    if (character != 0) character = form.UserKeyPress(character);
    if (form.Loaded()) {
      UseKey(form, left, shift);
      if (character != 0 && (shift & (kCtrl | kAlt)) == 0) UseCharacter(form, character);
    }
  }
  form.UserKeyUp(key, shift);
}

}  // namespace rowlark::controls
