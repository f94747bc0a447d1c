#pragma once

#include <cstdint>

#include "controls/Control.h"

namespace rowlark::controls {

// Ticks every so many milliseconds while it is enabled; enabling it begins a new interval.
class Timer final : public Control {
 public:
  Timer(Form& form, std::u16string_view name) : Control(form, ControlKind::Timer, name) {
    Timer::SetEnabled(false);
  }

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  int32_t Interval() const { return interval_; }
  void SetInterval(int32_t milliseconds) { interval_ = milliseconds; }
  void SetEnabled(bool enabled) override {
    Control::SetEnabled(enabled);
    Notify(Property::Timer);
  }

  Slot<> Tick{*this, "Tick"};

  void Expired() {
    OnUser([this] {
      if (Enabled()) Tick.Raise();
    });
  }

 private:
  bool TakesFocus() const override { return false; }

  int32_t interval_ = 0;
};

}  // namespace rowlark::controls
