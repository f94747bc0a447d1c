// Events with any number of listeners, raised on the user-interface thread. Listeners may connect, disconnect
// or destroy the event while it is being raised.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "util/Trace.h"

namespace rowlark {

// Ends the listening when it is destroyed or released. Outliving the event is harmless.
class Connection {
 public:
  Connection() = default;
  explicit Connection(std::shared_ptr<void> slot) : slot_(std::move(slot)) {}
  void Release() { slot_.reset(); }

 private:
  std::shared_ptr<void> slot_;
};

template <class... Args>
class Event {
 public:
  using Handler = std::function<void(Args...)>;

  // Whoever wants to know of listeners that fail passes a trace.
  explicit Event(Trace* trace = nullptr) : trace_(trace) {}

  [[nodiscard]] Connection Connect(Handler handler) {
    auto slot = std::make_shared<Handler>(std::move(handler));
    slots_.push_back(slot);
    return Connection(std::move(slot));
  }

  // Neither the source nor the other listeners suffer from one that throws; the trace is told.
  void Raise(Args... args) {
    std::erase_if(slots_, [](const auto& slot) { return slot.expired(); });
    const auto slots = slots_;
    for (const auto& weak : slots) {
      if (const auto slot = weak.lock()) {
        Attempt(trace_, [&] { (*slot)(args...); });
      }
    }
  }

 private:
  Trace* trace_;
  std::vector<std::weak_ptr<Handler>> slots_;
};

}  // namespace rowlark
