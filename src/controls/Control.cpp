#include "controls/Control.h"

#include "controls/Form.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::controls {
namespace {

// Offset of the mark; npos when there is none.
std::size_t FindMark(std::u16string_view caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != u'&') continue;
    if (caption[i + 1] != u'&') return i;
    ++i;
  }
  return std::u16string_view::npos;
}

}  // namespace

std::u16string PlainCaption(std::u16string_view caption) {
  std::u16string plain;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == u'&' && i + 1 < caption.size()) ++i;
    plain += caption[i];
  }
  return plain;
}

char32_t Accelerator(std::u16string_view caption) {
  const auto mark = FindMark(caption);
  if (mark == caption.npos) return 0;
  auto rest = caption.substr(mark + 1);
  return ToLower(TakeUtf16(rest));
}

Control::Control(Form& form, ControlKind kind, std::u16string_view name)
    : Kind(kind), Name(name), form_(&form) {
  form.controls_.push_back(this);
}

Control::Control(Form& self, std::u16string_view name)
    : Kind(ControlKind::Form), Name(name), form_(&self), visible_(false) {}

void Control::SetVisible(bool visible) {
  if (!Set(visible_, visible, Property::Visible) || Kind != ControlKind::Frame) return;
  // What stands in a frame comes and goes with it.
  for (Control* control : form_->Controls()) {
    const Control* around = control->Container;
    while (around != nullptr && around != this) around = around->Container;
    if (around != nullptr) control->Notify(Property::Visible);
  }
}

bool Control::Shown() const { return visible_ && (Container == nullptr || Container->Shown()); }

bool Control::Focusable() const { return TabStop && enabled_ && Shown() && TakesFocus(); }

Size Control::Needs(const Ruler&, Extent) const { return {}; }

void Control::SetFocus() {
  const bool moved = form_->active_control_ != this;
  form_->active_control_ = this;
  Notify(Property::Focus);
  if (!moved) return;
  Focused();
  GotFocus.Raise();
}

void Control::Message() noexcept { form_->Form_Message(); }

void Control::UserClicked() {
  OnUser([this] {
    if (enabled_ && Shown()) Click.Raise();
  });
}

void Control::UserFocused() {
  OnUser([this] {
    if (form_->active_control_ != this) SetFocus();
  });
}

void Control::UserPressedMouse() {
  OnUser([this] { MouseDown.Raise(); });
}

void Control::Failed(std::string_view event) const noexcept { form_->TraceFailure(*this, event); }

void ReportFailure(const Control& control, std::string_view event) noexcept { control.Failed(event); }

void Control::Notify(Property property) {
  if (View* view = form_->view_) view->Changed(*this, property);
}

Control::Alive::Alive(Form& kept) : form(kept), loaded(kept.Loaded()) { form.AddRef(); }
Control::Alive::~Alive() { form.Release(); }

}  // namespace rowlark::controls
