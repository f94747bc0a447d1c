#include "host/windows/NativeStatics.h"

#include <algorithm>
#include <utility>

#include "controls/Image.h"
#include "controls/Label.h"
#include "util/windows/WideText.h"

namespace rowlark::windows {

using controls::Property;

NativeLabel::NativeLabel(controls::Control& model, FormSite& site)
    : NativeControl(model, site), is_link_(static_cast<const controls::Label&>(model).Link) {
  if (is_link_) {
    Create(WC_LINK, WS_TABSTOP);
  } else {
    Create(WC_STATICW, SS_LEFT | SS_NOTIFY);
  }
}

void NativeLabel::Command(WORD code, WORD) {
  if (code == STN_CLICKED && !is_link_) model_.UserClicked();
}

LRESULT NativeLabel::Notify(const NMHDR& header) {
  if (header.code == NM_CLICK) model_.UserClicked();
  return 0;
}

void NativeLabel::Report() {
  if (HasFocus()) model_.UserFocused();
}

// Enter is the form's, as it is from any control that is no button.
bool NativeLabel::UseKey(WPARAM key) {
  if (key == VK_SPACE) ::PostMessageW(site_.window, kClicked, reinterpret_cast<WPARAM>(&model_), 0);
  return key == VK_SPACE || key == VK_RETURN;
}

void NativeLabel::Apply(Property property) {
  const auto& label = static_cast<const controls::Label&>(model_);
  if (property == Property::Caption && is_link_ && label.Link) {
    ::SetWindowTextW(window_, (L"<a>" + ToWide(label.Caption()) + L"</a>").c_str());
    return;
  }
  NativeControl::Apply(property);
  if (property != Property::Caption || !is_link_) return;
  // What has no target is a text like others.
  if (HasFocus()) ::SendMessageW(site_.window, WM_NEXTDLGCTL, 0, FALSE);
  ::SetWindowLongPtrW(window_, GWL_STYLE, ::GetWindowLongPtrW(window_, GWL_STYLE) & ~WS_TABSTOP);
}

NativeImage::NativeImage(controls::Control& model, FormSite& site) : NativeControl(model, site) {
  Create(WC_STATICW, SS_ICON | SS_CENTERIMAGE | SS_NOTIFY);
}

void NativeImage::Command(WORD code, WORD) {
  if (code == STN_CLICKED || code == STN_DBLCLK) model_.UserClicked();
}

void NativeImage::Apply(Property property) {
  // For those who do not see it.
  if (property == Property::ToolTip) ::SetWindowTextW(window_, ToWide(model_.ToolTip()).c_str());
  NativeControl::Apply(property);
}

// The largest of the usual sizes for which there is room.
void NativeImage::Placed(SIZE room) {
  int size = 0;
  for (const int usual : {16, 20, 24, 32, 40, 48}) {
    if (usual <= std::min(room.cx, room.cy)) size = usual;
  }
  auto icon = site_.resources.LoadPicture(static_cast<const controls::Image&>(model_).Picture, size);
  Send(STM_SETICON, reinterpret_cast<WPARAM>(icon.get()));
  std::swap(icon_, icon);
}

}  // namespace rowlark::windows
