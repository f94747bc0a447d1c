// The message queue of the thread that calls.
#pragma once

#include "host/MessagePump.h"

namespace rowlark::windows {

// WM_QUIT ends a pass and stays for the host's own loop.
class WindowsMessagePump final : public host::MessagePump {
 public:
  void ProcessMessages() noexcept override;
  void WaitForInput(uint32_t milliseconds) noexcept override;
  uint32_t TickCount() const noexcept override;
};

}  // namespace rowlark::windows
