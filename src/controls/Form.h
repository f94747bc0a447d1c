// A window with controls. It is loaded once, shown and hidden any number of times, and unloaded once;
// handlers that are on the stack then keep it alive and find it unloaded.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "controls/Control.h"
#include "controls/Layout.h"
#include "util/Ref.h"
#include "util/Trace.h"

namespace rowlark::controls {

class Form : public Control, public RefCounted {
 public:
  const std::vector<Control*>& Controls() const { return controls_; }
  std::vector<Control*> InTabOrder() const;
  // The one that has the focus; null before any had it.
  Control* ActiveControl() const { return active_control_; }

  bool Loaded() const { return loaded_; }
  // Runs Form_Unload, takes the form off the screen and lets go of its view. Only the first call counts.
  void Unload() noexcept;

  // Comes to the front, also when it is shown already. A modal form disables its owner; whoever shows it
  // waits until it is hidden or unloaded.
  void Show(bool modal = false);
  void Hide() { SetVisible(false); }
  bool Modal() const { return modal_; }

  // Upper left corner and outer size on the screen.
  TwipPoint Position() const { return position_; }
  TwipSize WindowSize() const;
  void Move(TwipPoint position);

  // The host's window above which the form floats: it hides and minimises with that window and has no task
  // button of its own. 0: none.
  intptr_t Owner() const { return owner_; }
  void SetOwner(intptr_t window) { Set(owner_, window, Property::Owner); }
  // Above all windows of the screen.
  bool Topmost() const { return topmost_; }
  void SetTopmost(bool topmost) { Set(topmost_, topmost, Property::Topmost); }

  // Size of the area with the controls, in the unit of its screen, and what they need of it at least.
  Size ClientSize() const { return client_; }
  Size LeastClientSize() const { return least_; }
  // The user may give the form a larger size than it needs. Set before it is loaded.
  bool Resizable = false;
  // Gives the controls their places, after texts have changed.
  void Arrange();

  // It is none of the kinds.
  void Accept(Visitor&) override {}

  // The window system that shows the form from now on.
  void Attach(View& view) { view_ = &view; }

  // The help's topic for the form, which F1 asks for; 0: none.
  int32_t HelpContextID = 0;

  Slot<> Activate{*this, "Activate"};

  // What the user does. Keys go to the form first, then to the control that has the focus; what is left of
  // them is returned, 0 when they were swallowed. F1 that is left opens the help of a form that has a topic.
  void UserActivated();
  void UserMoved(TwipPoint position) { position_ = position; }
  void UserResized(Size client);
  int32_t UserKeyDown(int32_t key, int32_t shift);
  char16_t UserKeyPress(char16_t character);
  int32_t UserKeyUp(int32_t key, int32_t shift);
  // With the system's close button.
  void UserClosed();

 protected:
  // The trace, which may be null, is told of errors that end the handlers of events, the form's own included.
  explicit Form(std::u16string_view name, Trace* trace = nullptr) : Control(*this, name), trace_(trace) {}

  // At the end of the constructor, since it names the controls.
  void SetLayout(Layout layout);
  void Load();

  // Before what the user does is handled, and before a timer ticks.
  virtual void Form_Message() noexcept {}
  virtual void Form_Load() {}
  virtual void Form_Unload() {}
  // F1; of a form with a topic.
  virtual void Form_Help() {}
  // The system's close button; unloads the form.
  virtual void Form_Close() { Unload(); }

 private:
  friend class Control;
  bool TakesFocus() const override { return false; }

  template <class Key, class... Args>
  Key Offer(Slot<Key&, Args...> Control::*slot, Key key, Args... args);
  // Tells of the error that is being handled, which has ended a handler.
  void TraceFailure(const Control& control, std::string_view event) const noexcept;

  Trace* const trace_;
  std::vector<Control*> controls_;
  Control* active_control_ = nullptr;
  View* view_ = nullptr;
  Layout layout_;
  Size client_;
  Size least_;
  Size wanted_;  // by the user
  TwipPoint position_;
  intptr_t owner_ = 0;
  bool topmost_ = false;
  bool modal_ = false;
  bool loaded_ = false;
};

}  // namespace rowlark::controls
