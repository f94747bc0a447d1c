// The message queue of the thread that calls.
#pragma once

#include <optional>

#include "host/MessagePump.h"

namespace rowlark::windows {

// WM_QUIT ends a pass and stays for the host's own loop. A look at the queue costs as much as many steps of a
// search, which asks for a pass at each of them: there is one a tick (1 to 16 ms), and one after every wait.
class WindowsMessagePump final : public host::MessagePump {
 public:
  void ProcessMessages() noexcept override;
  void WaitForInput(uint32_t milliseconds) noexcept override;
  uint32_t TickCount() const noexcept override;

 private:
  std::optional<uint32_t> last_pass_;  // ticks
};

}  // namespace rowlark::windows
