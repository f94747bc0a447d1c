#include "host/windows/NativeButtons.h"

#include "controls/CheckBox.h"
#include "controls/OptionButton.h"
#include "host/windows/Wide.h"

namespace rowlark::windows {
namespace {

using controls::ControlKind;
using controls::Property;

DWORD StyleOf(const controls::Control& model) {
  const DWORD tab_stop = model.TabStop ? WS_TABSTOP : 0;
  switch (model.Kind) {
    case ControlKind::CheckBox:
      return BS_AUTOCHECKBOX | BS_NOTIFY | tab_stop;
    case ControlKind::OptionButton:
      return BS_AUTORADIOBUTTON | BS_NOTIFY | tab_stop;
    case ControlKind::Frame:
      return BS_GROUPBOX | WS_GROUP;
    default:
      return BS_PUSHBUTTON | BS_NOTIFY | tab_stop;
  }
}

}  // namespace

NativeButton::NativeButton(controls::Control& model, FormSite& site) : NativeControl(model, site) {
  Create(WC_BUTTONW, StyleOf(model));
}

void NativeButton::Command(WORD code, WORD) {
  if (code == BN_SETFOCUS) model_.UserFocused();
  if (code != BN_CLICKED) return;
  if (model_.Kind == ControlKind::Button) {
    ::PostMessageW(site_.window, kClicked, reinterpret_cast<WPARAM>(&model_), 0);
    return;
  }
  model_.UserClicked();
  if (::IsWindow(window_) != 0) Update(Property::Value);  // a handler may have set it back
}

void NativeButton::Apply(Property property) {
  if (property == Property::Value) {
    Send(BM_SETCHECK, Value() ? BST_CHECKED : BST_UNCHECKED);
    return;
  }
  NativeControl::Apply(property);
  if (property != Property::Caption || model_.Kind != ControlKind::Frame) return;
  // The native frame does not erase what was left of a longer caption.
  RECT strip{};
  ::GetWindowRect(window_, &strip);
  ::MapWindowPoints(nullptr, site_.window, reinterpret_cast<POINT*>(&strip), 2);
  strip.bottom = strip.top + site_.scale->PixelsHigh(9);
  ::RedrawWindow(site_.window, &strip, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN);
}

bool NativeButton::Value() const {
  if (model_.Kind == ControlKind::CheckBox) return static_cast<const controls::CheckBox&>(model_).Value();
  return model_.Kind == ControlKind::OptionButton &&
         static_cast<const controls::OptionButton&>(model_).Value();
}

}  // namespace rowlark::windows
