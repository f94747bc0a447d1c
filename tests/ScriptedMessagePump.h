// A message pump with a clock of its own, whose messages come from a script.
#pragma once

#include <cstdint>
#include <functional>

#include "host/MessagePump.h"

namespace rowlark::testing {

class ScriptedMessagePump final : public host::MessagePump {
 public:
  // Called at every pass with the number of the pass, from 1; it may call any operation, so passes may nest.
  std::function<void(int64_t pass)> OnPass;
  std::function<void()> OnWait;  // called when a wait is over
  uint32_t Now = 0;              // milliseconds; only waiting makes it go on

  void ProcessMessages() noexcept override {
    ++passes_;
    if (OnPass) OnPass(passes_);
  }
  void WaitForInput(uint32_t milliseconds) noexcept override {
    Now += milliseconds;
    if (OnWait) OnWait();
  }
  uint32_t TickCount() const noexcept override { return Now; }
  int64_t Passes() const { return passes_; }

 private:
  int64_t passes_ = 0;
};

}  // namespace rowlark::testing
