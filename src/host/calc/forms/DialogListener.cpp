#include "host/calc/forms/DialogListener.h"

#include <com/sun/star/awt/XTopWindow.hpp>

#include <utility>

#include "host/calc/forms/FormDialog.h"

namespace rowlark::calc {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

void DialogListener::ListenTo(const Reference<css::awt::XControl>& control, const Desk::Window& owner) {
  const Desk::Window window(control, UNO_QUERY_THROW);
  owner_ = owner;
  window->addWindowListener(this);
  window->addMouseListener(this);
  Reference<css::awt::XTopWindow>(control, UNO_QUERY_THROW)->addTopWindowListener(this);
  if (owner.is()) owner->addEventListener(static_cast<css::awt::XWindowListener*>(this));
  desk_->Toolkit->addKeyHandler(this);
}

void DialogListener::Abandon() noexcept {
  if (std::exchange(dialog_, nullptr) == nullptr) return;
  Attempt(desk_->Trace, [this] { desk_->Toolkit->removeKeyHandler(this); });
  Attempt(desk_->Trace, [this] {
    const auto owner = std::exchange(owner_, {});
    if (owner.is()) owner->removeEventListener(static_cast<css::awt::XWindowListener*>(this));
  });
}

template <class Action>
void DialogListener::Do(Action action) noexcept {
  if (!desk_->OnMainThread()) {
    return desk_->Post([self = rtl::Reference<DialogListener>(this), action] { self->Do(action); });
  }
  const Ref<FormDialog> dialog(dialog_);
  if (!dialog) return;
  const Ref<controls::Form> form(dialog->Form());
  if (!form) return;
  const Desk::Visit under_way(desk_);
  Attempt(desk_->Trace, [&] { action(*dialog); });
}

void SAL_CALL DialogListener::disposing(const css::lang::EventObject& event) {
  if (event.Source == owner_) Do([](FormDialog& dialog) { dialog.OwnerGone(); });
}

void SAL_CALL DialogListener::windowClosing(const css::lang::EventObject&) {
  Do([](FormDialog& dialog) { dialog.Closing(); });
}

void SAL_CALL DialogListener::windowActivated(const css::lang::EventObject&) {
  Do([](FormDialog& dialog) { dialog.Activated(true); });
}

void SAL_CALL DialogListener::windowDeactivated(const css::lang::EventObject&) {
  Do([](FormDialog& dialog) { dialog.Activated(false); });
}

void SAL_CALL DialogListener::windowResized(const css::awt::WindowEvent&) {
  Do([](FormDialog& dialog) { dialog.Resized(); });
}

void SAL_CALL DialogListener::windowMoved(const css::awt::WindowEvent&) {
  Do([](FormDialog& dialog) { dialog.Moved(); });
}

void SAL_CALL DialogListener::mouseReleased(const css::awt::MouseEvent&) {
  Do([](FormDialog& dialog) { dialog.Clicked(); });
}

sal_Bool SAL_CALL DialogListener::keyPressed(const css::awt::KeyEvent& event) {
  if (!IsActive()) return false;
  bool used = true;  // an error is no reason to let the office take it for its own
  Do([&](FormDialog& dialog) { used = dialog.KeyPressed(event.KeyCode, event.Modifiers, event.KeyChar); });
  return used;
}

sal_Bool SAL_CALL DialogListener::keyReleased(const css::awt::KeyEvent& event) {
  if (!IsActive()) return false;
  bool used = true;
  Do([&](FormDialog& dialog) { used = dialog.KeyReleased(event.KeyCode, event.Modifiers); });
  return used;
}

bool DialogListener::IsActive() const {
  return desk_->OnMainThread() && dialog_ != nullptr && desk_->Active == dialog_ && desk_->Boxes == 0;
}

}  // namespace rowlark::calc
