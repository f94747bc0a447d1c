// The window of a form, a dialog of the office. It lives from `Realise` until the form is unloaded or the
// window that owns it goes, whichever comes first; the owner's end unloads the form.
#pragma once

#include <rtl/ref.hxx>

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "controls/Form.h"
#include "host/calc/forms/AwtControl.h"
#include "host/calc/forms/Desk.h"
#include "util/Ref.h"

namespace rowlark::calc {

class DialogListener;

class FormDialog final : public controls::View, public RefCounted {
 public:
  // Makes the window, hidden, and attaches itself to the form. Throws what the office throws.
  static void Open(controls::Form& form, std::shared_ptr<Desk> desk);
  // The window goes without a word to the form.
  void Abandon() noexcept;

  void Changed(controls::Control& control, controls::Property property) noexcept override;
  void Released(controls::Form& form) noexcept override;
  int32_t TextWidth(std::u16string_view text) const noexcept override;
  controls::TwipSize WindowSize(controls::Size client) const noexcept override;

  // What happens to the window.
  void Activated(bool active);
  void Closing() { form_->UserClosed(); }
  void Clicked() { form_->UserClicked(); }
  void Moved();
  void Resized();
  void OwnerGone();
  // A key that was pressed while the window is the active one; true when nothing is left of it.
  bool KeyPressed(int16_t code, int16_t modifiers, char16_t character);
  bool KeyReleased(int16_t code, int16_t modifiers);

  controls::Form* Form() const { return form_.get(); }
  Desk::Window Window() const;

 private:
  FormDialog(controls::Form& form, std::shared_ptr<Desk> desk);
  ~FormDialog() override;

  void Build(const Desk::Window& owner);
  void TakeDown() noexcept;
  void Show(controls::Control& control, controls::Property property);
  void ChangedForm(controls::Property property);
  void Show();
  void Hide();
  void DisableOthers();
  void LayOut();
  void MoveWindow();
  void StartTimer(controls::Timer& timer);
  void Expired(const controls::Control* timer);
  void ChangeOwner();
  void SetTitle();
  int32_t Twips(int32_t pixels) const;
  int32_t PixelsOf(int32_t twips) const;
  com::sun::star::awt::Size Pixels(controls::Size units) const;
  AwtControl* FocusedControl() const;
  bool UseKey(int32_t key, int32_t shift);

  const std::shared_ptr<Desk> desk_;
  Ref<controls::Form> form_;  // null once it is unloaded
  Ref<FormDialog> self_;      // while there is a window
  std::shared_ptr<Site> site_;
  rtl::Reference<DialogListener> listener_;
  Desk::Window owner_;
  AwtControl::Properties ruler_;        // a label that measures texts
  std::vector<Desk::Window> disabled_;  // while the form is modal
  bool list_update_is_posted_ = false;
  bool sizing_ = false;  // the user does; the window has its size already
};

}  // namespace rowlark::calc
