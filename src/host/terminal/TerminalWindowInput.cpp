// What the user does with windows.
#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "controls/CheckBox.h"
#include "controls/ComboBox.h"
#include "controls/Image.h"
#include "controls/Keyboard.h"
#include "controls/OptionButton.h"
#include "controls/TextBox.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"
#include "host/terminal/FormPainter.h"
#include "host/terminal/TerminalWindowSystem.h"
#include "host/terminal/TextLines.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::terminal {
namespace {

using controls::Control;
using controls::ControlKind;
using controls::Form;

// Keys that mean nothing to a form's controls: what a form leaves of them is the desktop's.
bool IsForeign(const KeyPress& press) {
  const bool letter = press.key >= u'A' && press.key <= u'Z';
  const bool ctrl = (press.shift & controls::kCtrl) != 0;
  return (press.key >= kKeyF1 && press.key <= kKeyF12) || press.key == kKeyPageUp ||
         press.key == kKeyPageDown || press.key == kKeyInsert || (ctrl && letter);
}

// What a click means to the control that it hits.
class Clicker final : public controls::Visitor {
 public:
  Clicker(Point at, std::function<void()> open_list) : at_(at), open_list_(std::move(open_list)) {}

  std::optional<int32_t> Entry;  // of a list, that was hit

  void Visit(controls::ListView& list) override {
    Entry = EntryAt(list, at_);
    if (Entry) list.UserPicked(*Entry);
  }
  void Visit(controls::TreeView& tree) override {
    if (const auto entry = EntryAt(tree, at_)) tree.UserPicked(*entry);
  }
  void Visit(controls::ToolBar& bar) override {
    const auto entry = EntryAt(bar, at_);
    if (entry) bar.UserPressed(std::u16string(bar.Buttons()[static_cast<std::size_t>(*entry)].key));
  }
  void Visit(controls::ComboBox& box) override {
    if (at_.x >= box.Bounds.left + box.Bounds.width - 2 || box.DropDownList) return open_list_();
    PlaceCaret(box);
  }
  void Visit(controls::TextBox& box) override { PlaceCaret(box); }
  void Visit(controls::Button& button) override { button.UserClicked(); }
  void Visit(controls::CheckBox& box) override { box.UserClicked(); }
  void Visit(controls::OptionButton& button) override { button.UserClicked(); }
  void Visit(controls::Image& image) override { image.UserClicked(); }
  void Visit(controls::Label& label) override { label.UserClicked(); }

 private:
  void PlaceCaret(controls::TextInput& input) const {
    const Rect& area = input.Bounds;
    const int32_t caret =
        TextPane(input, {area.width, area.height}).OffsetAt({at_.x - area.left, at_.y - area.top});
    if (input.Enabled()) input.UserSelected(caret, caret);
    input.UserClicked();
  }

  Point at_;
  std::function<void()> open_list_;
};

}  // namespace

void TerminalWindowSystem::UseInput(const Input& input) {
  if (const auto* press = std::get_if<KeyPress>(&input)) UseKey(*press);
  if (const auto* action = std::get_if<MouseAction>(&input)) UseMouse(*action);
  if (const auto* pasted = std::get_if<Pasted>(&input)) Paste(pasted->text);
}

void TerminalWindowSystem::Paste(std::u16string_view text) {
  auto* window = Active();
  if (window == nullptr || (desktop_focus_ && !window->form->Modal())) return desktop_->Paste(text);
  controls::Paste(*window->form, text);
}

void TerminalWindowSystem::UseDesktop(const KeyPress& press) {
  if (!desktop_->Navigate(press)) desktop_->Press(press);
}

void TerminalWindowSystem::UseKey(const KeyPress& press) {
  if (desktop_->Interrupt(press)) return;
  auto* window = Active();
  if (window == nullptr) return UseDesktop(press);
  const Ref<Form> form(window->form);
  if (!form->Modal()) {
    if (press.Is(kKeyF1 + 5)) {
      desktop_focus_ = !desktop_focus_;
      return;
    }
    if (form->Topmost() && !desktop_focus_ && desktop_->Navigate(press)) return;
    if (desktop_focus_ && !form->Topmost()) {
      if (!press.Is(controls::kKeyEscape)) return UseDesktop(press);
      desktop_focus_ = false;
      return;
    }
  }
  const bool opens = press.Is(kKeyF1 + 3) || press.Is(controls::kKeyDown, controls::kAlt);
  if ((opens && OpenList(*form)) || PressToolBar(*form, press) || MoveFocus(*form, press)) return;
  if (IsForeign(press)) {
    const bool left = form->UserKeyDown(press.key, press.shift) != 0;
    form->UserKeyUp(press.key, press.shift);
    if (left && !form->Modal()) UseDesktop(press);
    return;
  }
  std::u16string units;
  if (press.character != 0) AppendUtf16(units, press.character);
  PressKey(*form, press.key, press.shift, units.empty() ? u'\0' : units.front());
  if (units.size() > 1) PressKey(*form, kKeyPacket, press.shift, units.back());
}

// Arrows go from button to button and from box to box, as Tab does.
bool TerminalWindowSystem::MoveFocus(Form& form, const KeyPress& press) {
  const Control* control = form.ActiveControl();
  if (control == nullptr || press.shift != controls::kNoShift) return false;
  const bool moves = control->Kind == ControlKind::Button || control->Kind == ControlKind::CheckBox ||
                     control->Kind == ControlKind::OptionButton || control->Kind == ControlKind::Label;
  const bool back = press.key == controls::kKeyLeft || press.key == controls::kKeyUp;
  if (!moves || (!back && press.key != controls::kKeyRight && press.key != controls::kKeyDown)) return false;
  PressKey(form, controls::kKeyTab, back ? controls::kShift : controls::kNoShift);
  return true;
}

// Of the combo box that has the keyboard.
bool TerminalWindowSystem::OpenList(Form& form) {
  auto* const box = controls::As<controls::ComboBox>(form.ActiveControl());
  if (box == nullptr || !box->Enabled()) return false;
  const auto* window = Find(form);
  if (window->frame == Rect{}) Draw();  // the key came before the form was seen
  if (box->ListCount() == 0 || !box->Shown()) return false;
  std::vector<ListForm::Entry> entries;
  entries.reserve(static_cast<std::size_t>(box->ListCount()));
  for (int32_t i = 0; i < box->ListCount(); ++i) entries.push_back({box->List(i)});
  const Rect& inner = window->inner;
  const int32_t chosen =
      ChooseFrom(entries, box->ListIndex(),
                 {inner.left + box->Bounds.left, inner.top + box->Bounds.top - window->scroll});
  if (form.Loaded()) box->UserPicked(chosen);
  return true;
}

// Its buttons can not have the keyboard; Alt with their first letter presses them.
bool TerminalWindowSystem::PressToolBar(Form& form, const KeyPress& press) {
  if (press.shift != controls::kAlt) return false;
  for (auto* control : form.Controls()) {
    auto* const bar = controls::As<controls::ToolBar>(control);
    if (bar == nullptr || !bar->Shown()) continue;
    for (const auto& button : bar->Buttons()) {
      std::u16string_view caption = button.caption;
      if (caption.empty() || ToUpper(TakeUtf16(caption)) != static_cast<char32_t>(press.key)) continue;
      bar->UserPressed(std::u16string(button.key));
      return true;
    }
  }
  return false;
}

void TerminalWindowSystem::UseMouse(const MouseAction& action) {
  using Kind = MouseAction::Kind;
  auto* active = Active();
  const bool modal = active != nullptr && active->form->Modal();
  const bool selecting = active != nullptr && active->form->Topmost();
  Window* hit = nullptr;
  for (auto& window : windows_) {
    const bool drawn = window.form->Visible() && (!selecting || &window == active);
    if (drawn && (!modal || &window == active) && Contains(window.frame, action.at)) hit = &window;
  }
  const bool press = action.kind == Kind::Press;
  if (press) mouse_in_desktop_ = hit == nullptr && !modal;
  if (hit == nullptr || (mouse_in_desktop_ && (action.kind == Kind::Drag || action.kind == Kind::Release))) {
    if (modal) {
      if (press && active->beside != Point{}) active->form->UserClosed();
      return;
    }
    if (press && active != nullptr && !selecting) desktop_focus_ = true;
    return desktop_->UseMouse(action);
  }
  if (!press) {
    if (action.kind == Kind::WheelUp || action.kind == Kind::WheelDown) {
      const Ref<Form> form(hit->form);
      PressKey(*form, action.kind == Kind::WheelUp ? controls::kKeyUp : controls::kKeyDown);
    }
    return;
  }
  const Ref<Form> form(hit->form);
  if (hit != active || desktop_focus_) Activate(*hit);
  if (auto* window = Find(*form)) UseMouse(*window, action);
}

void TerminalWindowSystem::UseMouse(Window& window, const MouseAction& action) {
  const Ref<Form> form(window.form);
  const auto& frame = window.frame;
  if (action.at.y == frame.top && window.beside == Point{} && action.at.x >= frame.left + frame.width - 4) {
    return form->UserClosed();
  }
  const Point at{action.at.x - window.inner.left, action.at.y - window.inner.top + window.scroll};
  const auto controls = form->InTabOrder();
  const auto hit = std::find_if(controls.rbegin(), controls.rend(), [at](const Control* c) {
    return c->Shown() && c->Kind != ControlKind::Frame && Contains(c->Bounds, at);
  });
  if (hit == controls.rend()) return form->UserClicked();
  Control& control = **hit;
  if (control.Focusable()) control.UserFocused();
  control.UserPressedMouse();
  if (!form->Loaded()) return;
  Clicker clicker(at, [&] { OpenList(*form); });
  control.Accept(clicker);
  if (auto* list = dynamic_cast<ListForm*>(form.get()); list != nullptr && clicker.Entry)
    list->Choose(*clicker.Entry);
}

}  // namespace rowlark::terminal
