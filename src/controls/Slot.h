// What a form does when something happens to a control.
#pragma once

#include <functional>
#include <string_view>
#include <utility>

namespace rowlark::controls {

class Control;

// Tells the control's form of the error that is being handled, which has ended a handler.
void ReportFailure(const Control& control, std::string_view event) noexcept;

template <class... Args>
class Slot {
 public:
  Slot(const Control& control, std::string_view event) : control_(control), event_(event) {}

  template <class Handler>
  void operator=(Handler handler) {
    handler_ = std::move(handler);
  }

  // An error ends the handler, and nothing else suffers; the form is told.
  void Raise(Args... args) const noexcept {
    if (!handler_) return;
    try {
      handler_(args...);
    } catch (...) {
      ReportFailure(control_, event_);
    }
  }

 private:
  const Control& control_;
  const std::string_view event_;
  std::function<void(Args...)> handler_;
};

}  // namespace rowlark::controls
