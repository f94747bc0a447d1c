// The message loop of the user-interface thread, as seen from inside a long operation.
#pragma once

#include <cstdint>

namespace rowlark::host {

class MessagePump {
 public:
  virtual ~MessagePump() = default;

  // Dispatches what is pending and returns without waiting. Handlers run inside: they may call any operation
  // of the runtime. No exception leaves a handler.
  virtual void ProcessMessages() noexcept = 0;

  // Sleeps until a message arrives or so many milliseconds have passed.
  virtual void WaitForInput(uint32_t milliseconds) noexcept = 0;

  // Milliseconds since some moment in the past; goes on at 0 behind 2^32 - 1.
  virtual uint32_t TickCount() const noexcept = 0;
};

}  // namespace rowlark::host
