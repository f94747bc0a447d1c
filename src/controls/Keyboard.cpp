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

bool IsControl(char16_t c) { return c < u' ' || c == 127; }

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
    if (auto* button = As<Button>(control); button != nullptr && button->*role) return button->UserClicked();
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

// What a text that was typed or pasted does there.
class TextUser final : public Visitor {
 public:
  explicit TextUser(std::u16string_view text) : text_(text) {}
  void Visit(TextBox& box) override { Insert(box, box.MultiLine); }
  void Visit(ComboBox& box) override {
    if (!box.DropDownList) Insert(box, false);
  }

 private:
  void Insert(TextInput& input, bool lines) const {
    std::u16string text(text_);
    const auto end = text.find_last_not_of(u"\r\n");
    if (!lines) text.erase(end == std::u16string::npos ? 0 : end + 1);
    std::ranges::replace_if(
        text, [lines](char16_t c) { return IsControl(c) && !(lines && c == u'\n'); }, u' ');
    Replace(input, input.SelStart(), input.SelLength(), text);
  }

  std::u16string_view text_;
};

void UseKey(Form& form, int32_t key, int32_t shift) {
  Control* control = form.ActiveControl();
  if ((shift & kAlt) != 0) {
    PressAccelerator(form, key);
    return;
  }
  if (key == kKeyTab) return MoveFocus(form, (shift & kShift) != 0);
  if (key == kKeyEscape) return ClickIfAny(form, &Button::Cancel);
  if (key == kKeyReturn && As<Button>(control) == nullptr) return ClickIfAny(form, &Button::Default);
  KeyUser user(key, shift);
  if (control != nullptr) control->Accept(user);
}

void UseText(Form& form, std::u16string_view text) {
  TextUser user(text);
  if (form.ActiveControl() != nullptr) form.ActiveControl()->Accept(user);
}

}  // namespace

void PressKey(Form& form, int32_t key, int32_t shift, char16_t character) {
  const Ref<Form> keep(&form);
  if (const int32_t left = form.UserKeyDown(key, shift); left != 0) {
    if (character != 0) character = form.UserKeyPress(character);
    if (form.Loaded()) {
      UseKey(form, left, shift);
      const bool typed = !IsControl(character) && (shift & (kCtrl | kAlt)) == 0;
      if (typed) UseText(form, {&character, 1});
    }
  }
  form.UserKeyUp(key, shift);
}

void Paste(Form& form, std::u16string_view text) {
  const Ref<Form> keep(&form);
  UseText(form, text);
}

}  // namespace rowlark::controls
