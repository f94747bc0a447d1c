// What all controls have in common. A control knows no window system: setting a property from code raises the
// event that a user's action raises, and tells the form's view, if it has one. What the user does comes back
// through the members that begin with "User", which do nothing once the form is unloaded.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "controls/Keys.h"
#include "controls/Metrics.h"
#include "controls/Slot.h"
#include "controls/View.h"
#include "controls/Visitor.h"

namespace rowlark::controls {

enum class ControlKind {
  Button,
  CheckBox,
  ComboBox,
  Form,
  Frame,
  Image,
  Label,
  ListView,
  OptionButton,
  TextBox,
  Timer,
  ToolBar,
  TreeView,
};

// What a control takes where controls follow one another as words do.
enum class Room {
  Word,          // its own width
  Rest,          // what is left of the line
  LineOfItsOwn,  // its own width, at the beginning of a line
  Lines,         // lines with nothing else
};

// A caption without the "&" that marks its accelerator ("&&" stands for itself), and the marked character in
// lower case; 0 when there is none.
std::u16string PlainCaption(std::u16string_view caption);
char32_t Accelerator(std::u16string_view caption);

class Control {
 public:
  Control(Form& form, ControlKind kind, std::u16string_view name);
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control() = default;

  const ControlKind Kind;
  const std::u16string Name;
  Form& Parent() const { return *form_; }

  // With "&" before its accelerator.
  const std::u16string& Caption() const { return caption_; }
  void SetCaption(std::u16string_view caption) { Set(caption_, caption, Property::Caption); }
  const std::u16string& ToolTip() const { return tool_tip_; }
  void SetToolTip(std::u16string_view text) { Set(tool_tip_, text, Property::ToolTip); }
  bool Enabled() const { return enabled_; }
  virtual void SetEnabled(bool enabled) { Set(enabled_, enabled, Property::Enabled); }
  bool Visible() const { return visible_; }
  void SetVisible(bool visible);
  std::u16string Tag;  // the form's own remark

  // Visible together with all frames around it.
  bool Shown() const;
  bool TabStop = true;  // of the kinds that take the focus
  // Shown, enabled and a tab stop.
  bool Focusable() const;
  void SetFocus();

  // Set by the form's layout: the frame around the control, its place in the tab order, which of the form's
  // lines of text it stands in, and where it stands in the form's inner area, in the unit of its screen.
  Control* Container = nullptr;
  int32_t TabIndex = 0;
  int32_t Line = 0;
  Rect Bounds;

  // How large it must be for its text, with at least that room for it; and what it takes of a line.
  virtual Size Needs(const Ruler& ruler, Extent least) const;
  virtual Room RoomInLine() const { return Room::Word; }

  Slot<> Click{*this, "Click"};
  Slot<> GotFocus{*this, "GotFocus"};
  Slot<> MouseDown{*this, "MouseDown"};
  // A handler swallows a key or a character by setting it to 0.
  Slot<int32_t&, int32_t> KeyDown{*this, "KeyDown"};  // key code, modifiers
  Slot<char16_t&> KeyPress{*this, "KeyPress"};
  Slot<int32_t&, int32_t> KeyUp{*this, "KeyUp"};

  // Tells the form of the error that is being handled, which has ended the handler of an event.
  void Failed(std::string_view event) const noexcept;

  virtual void Accept(Visitor& visitor) = 0;

  virtual void UserClicked();
  void UserFocused();
  void UserPressedMouse();

 protected:
  // A form is a control of its own.
  Control(Form& self, std::u16string_view name);

  void Notify(Property property);
  template <class Value, class NewValue>
  bool Set(Value& member, const NewValue& value, Property property) {
    if (member == value) return false;
    member = value;
    Notify(property);
    return true;
  }
  // Runs what a user's action means; the form lives until it has ended.
  template <class Action>
  void OnUser(Action action) {
    const Alive alive(*form_);
    if (!alive.loaded) return;
    Message();
    action();
  }
  virtual void Focused() {}
  // Of its kind.
  virtual bool TakesFocus() const { return true; }

 private:
  void Message() noexcept;
  struct Alive {
    explicit Alive(Form& form);
    ~Alive();
    Alive(const Alive&) = delete;
    Alive& operator=(const Alive&) = delete;
    Form& form;
    bool loaded;
  };

  Form* form_;
  std::u16string caption_;
  std::u16string tool_tip_;
  bool enabled_ = true;
  bool visible_ = true;
};

// The control as one of a kind; null when it is of another kind, or there is none.
template <class Wanted>
Wanted* As(Control* control) {
  struct Taker final : Visitor {
    using Visitor::Visit;
    void Visit(Wanted& one) override { taken = &one; }
    Wanted* taken = nullptr;
  } taker;
  if (control != nullptr) control->Accept(taker);
  return taker.taken;
}

}  // namespace rowlark::controls
