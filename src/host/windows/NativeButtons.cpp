#include "host/windows/NativeButtons.h"

#include "util/windows/WideText.h"

namespace rowlark::windows {
namespace {

using controls::Property;

DWORD TabStop(const controls::Control& model) { return BS_NOTIFY | (model.TabStop ? WS_TABSTOP : 0); }

}  // namespace

NativeButton::NativeButton(controls::Control& model, FormSite& site, DWORD style)
    : NativeControl(model, site) {
  Create(WC_BUTTONW, style);
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
  if (code == BN_CLICKED) Clicked();
}

NativePushButton::NativePushButton(controls::Button& model, FormSite& site)
    : NativeButton(model, site, BS_PUSHBUTTON | TabStop(model)), button_(model) {}

void NativePushButton::Clicked() {
  ::PostMessageW(site_.window, kClicked, reinterpret_cast<WPARAM>(&model_), 0);
}

int NativePushButton::DialogCommand() const { return button_.Default ? IDOK : button_.Cancel ? IDCANCEL : 0; }

void NativePushButton::Apply(Property property) {
  if (!button_.Picture.empty()) {
    // The text is its name for those who do not see the picture.
    if (property == Property::Caption) return;
    if (property == Property::ToolTip) ::SetWindowTextW(window_, ToWide(model_.ToolTip()).c_str());
  }
  NativeControl::Apply(property);
}

void NativePushButton::ApplyPictures() {
  picture_ = site_.resources.LoadPicture(button_.Picture, site_.Pixels(kPictureSize));
}

// The picture in place of the text, once the button itself has been drawn.
LRESULT NativePushButton::Notify(const NMHDR& header) {
  if (header.code != NM_CUSTOMDRAW || !picture_) return CDRF_DODEFAULT;
  const auto& draw = reinterpret_cast<const NMCUSTOMDRAW&>(header);
  if (draw.dwDrawStage != CDDS_PREPAINT) return CDRF_DODEFAULT;
  RECT area{};
  ::GetClientRect(window_, &area);
  const int size = site_.Pixels(kPictureSize);
  const UINT state = model_.Enabled() ? DSS_NORMAL : DSS_DISABLED;
  ::DrawStateW(draw.hdc, nullptr, nullptr, reinterpret_cast<LPARAM>(picture_.get()), 0,
               (static_cast<int>(area.right) - size) / 2, (static_cast<int>(area.bottom) - size) / 2, size,
               size, DST_ICON | state);
  const bool shows_focus = HasFocus() && (Send(WM_QUERYUISTATE) & UISF_HIDEFOCUS) == 0;
  ::InflateRect(&area, -3, -3);
  if (shows_focus) ::DrawFocusRect(draw.hdc, &area);
  return CDRF_SKIPDEFAULT;
}

NativeMark::NativeMark(controls::Control& model, FormSite& site, DWORD style)
    : NativeButton(model, site, style | TabStop(model)) {}

void NativeMark::Clicked() {
  model_.UserClicked();
  if (::IsWindow(window_) != 0) Update(Property::Value);  // a handler may have set it back
}

void NativeMark::Apply(Property property) {
  if (property == Property::Value) {
    Send(BM_SETCHECK, Value() ? BST_CHECKED : BST_UNCHECKED);
  } else {
    NativeControl::Apply(property);
  }
}

std::optional<int> NativeMark::TextOffset() const {
  RECT area{};
  ::GetClientRect(window_, &area);
  return (static_cast<int>(area.bottom) - site_.scale->PixelsHigh(8)) / 2;
}

void NativeFrame::Apply(Property property) {
  NativeControl::Apply(property);
  if (property != Property::Caption) return;
  // The native frame does not erase what was left of a longer caption.
  RECT strip{};
  ::GetWindowRect(window_, &strip);
  ::MapWindowPoints(nullptr, site_.window, reinterpret_cast<POINT*>(&strip), 2);
  strip.bottom = strip.top + site_.scale->PixelsHigh(9);
  ::RedrawWindow(site_.window, &strip, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN);
}

}  // namespace rowlark::windows
