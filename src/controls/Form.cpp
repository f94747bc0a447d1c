#include "controls/Form.h"

#include <utility>

namespace rowlark::controls {
namespace {

constexpr int32_t kMargin = 7;

}  // namespace

void Form::SetLayout(Layout layout) {
  layout_ = std::move(layout);
  layout_.Order();
}

void Form::Load() {
  loaded_ = true;
  Form_Load();
}

void Form::Unload() noexcept {
  if (!std::exchange(loaded_, false)) return;
  const Ref<Form> keep(this);
  try {
    Form_Unload();
  } catch (...) {  // NOLINT(bugprone-empty-catch): the form goes all the same
  }
  Hide();
  if (View* view = std::exchange(view_, nullptr)) view->Released(*this);
}

void Form::Show(bool modal) {
  modal_ = modal;
  SetVisible(true);
}

void Form::Move(int32_t left, int32_t top) {
  left_ = left;
  top_ = top;
  Notify(Property::Position);
}

Size Form::WindowSize() const { return view_ != nullptr ? view_->WindowSize(client_) : Size{}; }

void Form::Arrange() {
  const Size content = layout_.Measure(view_);
  layout_.Place({kMargin, kMargin, content.width, content.height});
  client_ = {content.width + 2 * kMargin, content.height + 2 * kMargin};
  Notify(Property::Layout);
}

void Form::UserActivated() {
  OnUser([this] { Activate.Raise(); });
}

void Form::UserMoved(int32_t left, int32_t top) {
  left_ = left;
  top_ = top;
}

int32_t Form::UserKeyDown(int32_t key, int32_t shift) {
  OnUser([&] {
    KeyDown.Raise(key, shift);
    if (key != 0 && loaded_ && active_control_ != nullptr) active_control_->KeyDown.Raise(key, shift);
  });
  return key;
}

char16_t Form::UserKeyPress(char16_t character) {
  OnUser([&] {
    KeyPress.Raise(character);
    if (character != 0 && loaded_ && active_control_ != nullptr) {
      active_control_->KeyPress.Raise(character);
    }
  });
  return character;
}

int32_t Form::UserKeyUp(int32_t key, int32_t shift) {
  OnUser([&] {
    KeyUp.Raise(key, shift);
    if (key != 0 && loaded_ && active_control_ != nullptr) active_control_->KeyUp.Raise(key, shift);
  });
  return key;
}

void Form::UserClosed() {
  OnUser([this] { Form_Close(); });
}

}  // namespace rowlark::controls
