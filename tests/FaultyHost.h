// Hosts that do something else first.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "host/Forwarding.h"

namespace rowlark::testing {

// Tells of every operation before it is done; what that throws comes out of the operation.
struct WatchedHost final : host::Forwarding {
  std::function<void(std::string_view operation)> Hear;
  void OnCall(std::string_view operation) override {
    if (Hear) Hear(operation);
  }
};

// Fails one call, or every call from that one on, as a host does that is busy or has been closed.
class FaultyHost final : public host::Forwarding {
 public:
  // The call to fail counts from 1; 0 fails none.
  explicit FaultyHost(int64_t call, bool persistent = false) : call_(call), persistent_(persistent) {}

  void OnCall(std::string_view operation) override {
    ++calls_;
    if (call_ > 0 && (persistent_ ? calls_ >= call_ : calls_ == call_)) {
      failed_ = operation;
      throw host::Error(1004, u"The host is busy");
    }
  }
  // Counts the calls anew.
  void Rearm(int64_t call) {
    call_ = call;
    calls_ = 0;
    failed_.clear();
  }
  int64_t Calls() const { return calls_; }
  // The last operation that failed; empty when none did.
  const std::string& Failed() const { return failed_; }

 private:
  int64_t call_;
  bool persistent_;
  int64_t calls_ = 0;
  std::string failed_;
};

}  // namespace rowlark::testing
