// The message loop of the user-interface thread, as seen from inside a long operation.
#pragma once

namespace rowlark::host {

class MessagePump {
 public:
  virtual ~MessagePump() = default;

  // Dispatches what is pending and returns without waiting. Handlers run inside: they may call any operation
  // of the runtime. No exception leaves a handler.
  virtual void ProcessMessages() noexcept = 0;
};

}  // namespace rowlark::host
