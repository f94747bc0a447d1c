#include "host/windows/NativeButtons.h"

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/OptionButton.h"
#include "host/windows/Wide.h"

namespace rowlark::windows {
namespace {

using controls::ControlKind;
using controls::Property;

constexpr int kPicture = 16;  // at 96 pixels an inch

// Empty for a button with a caption.
std::u16string_view PictureOf(const controls::Control& model) {
  if (model.Kind != ControlKind::Button) return {};
  return static_cast<const controls::Button&>(model).Picture;
}

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
  if (code == BN_DBLCLK) {
    // The second of two quick clicks is a click as well.
    POINT at{};
    ::GetCursorPos(&at);
    ::ScreenToClient(window_, &at);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
  }
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
  if (!PictureOf(model_).empty()) {
    // The text is its name for those who do not see the picture.
    if (property == Property::Caption) return;
    if (property == Property::ToolTip) ::SetWindowTextW(window_, Wide(model_.ToolTip()).c_str());
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

void NativeButton::ApplyPictures() {
  picture_ = site_.resources.LoadPicture(PictureOf(model_), site_.Pixels(kPicture));
}

// The picture in place of the text, once the button itself has been drawn.
LRESULT NativeButton::Notify(const NMHDR& header) {
  if (header.code != NM_CUSTOMDRAW || !picture_) return CDRF_DODEFAULT;
  const auto& draw = reinterpret_cast<const NMCUSTOMDRAW&>(header);
  if (draw.dwDrawStage != CDDS_PREPAINT) return CDRF_DODEFAULT;
  RECT area{};
  ::GetClientRect(window_, &area);
  const int size = site_.Pixels(kPicture);
  const UINT state = model_.Enabled() ? DSS_NORMAL : DSS_DISABLED;
  ::DrawStateW(draw.hdc, nullptr, nullptr, reinterpret_cast<LPARAM>(picture_.get()), 0,
               (static_cast<int>(area.right) - size) / 2, (static_cast<int>(area.bottom) - size) / 2, size,
               size, DST_ICON | state);
  const bool shows_focus = HasFocus() && (Send(WM_QUERYUISTATE) & UISF_HIDEFOCUS) == 0;
  ::InflateRect(&area, -3, -3);
  if (shows_focus) ::DrawFocusRect(draw.hdc, &area);
  return CDRF_SKIPDEFAULT;
}

std::optional<int> NativeButton::TextOffset() const {
  if (model_.Kind != ControlKind::CheckBox && model_.Kind != ControlKind::OptionButton) return std::nullopt;
  RECT area{};
  ::GetClientRect(window_, &area);
  return (static_cast<int>(area.bottom) - site_.scale->PixelsHigh(8)) / 2;
}

bool NativeButton::Value() const {
  if (model_.Kind == ControlKind::CheckBox) return static_cast<const controls::CheckBox&>(model_).Value();
  return model_.Kind == ControlKind::OptionButton &&
         static_cast<const controls::OptionButton&>(model_).Value();
}

}  // namespace rowlark::windows
