// The office's message loop, as seen from inside a long operation.
#pragma once

#include <com/sun/star/awt/XReschedule.hpp>

#include <optional>

#include "host/MessagePump.h"
#include "host/calc/forms/Desk.h"

namespace rowlark::calc {

class CalcMessagePump final : public host::MessagePump {
 public:
  CalcMessagePump(const Desk::Context& office, Trace* trace);

  // Looks at the messages once a millisecond at most, so that it may be called as often as one likes.
  void ProcessMessages() noexcept override;
  // Nothing tells of a message from within a component: it looks every few milliseconds.
  void WaitForInput(uint32_t milliseconds) noexcept override;
  uint32_t TickCount() const noexcept override;

 private:
  const com::sun::star::uno::Reference<com::sun::star::awt::XReschedule> toolkit_;
  Trace* const trace_;
  std::optional<uint32_t> looked_;  // ticks; nothing after a wait
};

}  // namespace rowlark::calc
