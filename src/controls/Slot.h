// What a form does when something happens to a control.
#pragma once

#include <functional>
#include <utility>

namespace rowlark::controls {

template <class... Args>
class Slot {
 public:
  template <class Handler>
  void operator=(Handler handler) {
    handler_ = std::move(handler);
  }

  // An error ends the handler, and nothing else suffers.
  void Raise(Args... args) const noexcept {
    if (!handler_) return;
    try {
      handler_(args...);
    } catch (...) {  // NOLINT(bugprone-empty-catch)
    }
  }

 private:
  std::function<void(Args...)> handler_;
};

}  // namespace rowlark::controls
