#include "controls/Form.h"

#include <algorithm>
#include <utility>

#include "util/Utf.h"

namespace rowlark::controls {
namespace {

constexpr Metrics kDialogUnits;

}  // namespace

const Metrics& View::MetricsOf(const Form&) const noexcept { return kDialogUnits; }

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
  } catch (...) {  // the form goes all the same
    TraceFailure(*this, "Unload");
  }
  Hide();
  if (View* view = std::exchange(view_, nullptr)) view->Released(*this);
}

void Form::TraceFailure(const Control& control, std::string_view event) const noexcept {
  if (trace_ == nullptr) return;
  try {
    auto operation = ToUtf8(Name);
    if (&control != this) operation += "." + ToUtf8(control.Name);
    TraceCaught(trace_, operation.append(".").append(event));
  } catch (...) {
    TraceCaught(trace_);
  }
}

void Form::Show(bool modal) {
  modal_ = modal;
  if (!Visible()) return SetVisible(true);
  Notify(Property::Visible);
}

void Form::Move(TwipPoint position) {
  position_ = position;
  Notify(Property::Position);
}

TwipSize Form::WindowSize() const { return view_ != nullptr ? view_->WindowSize(client_) : TwipSize{}; }

void Form::Arrange() {
  const Metrics& metrics = view_ != nullptr ? view_->MetricsOf(*this) : kDialogUnits;
  const Ruler ruler{metrics, view_};
  Size margin = metrics.margin;
  Size content = layout_.Fit(ruler, metrics.widest - 2 * margin.width);
  if (layout_.Folded()) {
    margin = metrics.folded_margin;
    content = layout_.Fit(ruler, metrics.widest - 2 * margin.width);
  }
  least_ = {content.width + 2 * margin.width, content.height + 2 * margin.height};
  client_ = {std::max(least_.width, wanted_.width), std::max(least_.height, wanted_.height)};
  layout_.Place(metrics, {margin.width, margin.height, client_.width - 2 * margin.width,
                          client_.height - 2 * margin.height});
  Notify(Property::Layout);
}

std::vector<Control*> Form::InTabOrder() const {
  auto controls = controls_;
  std::ranges::stable_sort(controls, {}, &Control::TabIndex);
  return controls;
}

void Form::UserActivated() {
  OnUser([this] { Activate.Raise(); });
}

void Form::UserResized(Size client) {
  OnUser([&] {
    wanted_ = client;
    Arrange();
  });
}

template <class Key, class... Args>
Key Form::Offer(Slot<Key&, Args...> Control::*slot, Key key, Args... args) {
  OnUser([&] {
    (this->*slot).Raise(key, args...);
    if (key != 0 && loaded_ && active_control_ != nullptr) (active_control_->*slot).Raise(key, args...);
  });
  return key;
}

int32_t Form::UserKeyDown(int32_t key, int32_t shift) {
  const Ref<Form> keep(this);
  const int32_t left = Offer(&Control::KeyDown, key, shift);
  if (left != kKeyF1 || shift != kNoShift || HelpContextID == 0) return left;
  OnUser([this] { Form_Help(); });
  return 0;
}

char16_t Form::UserKeyPress(char16_t character) { return Offer(&Control::KeyPress, character); }
int32_t Form::UserKeyUp(int32_t key, int32_t shift) { return Offer(&Control::KeyUp, key, shift); }

void Form::UserClosed() {
  OnUser([this] { Form_Close(); });
}

}  // namespace rowlark::controls
