#include "host/calc/forms/CalcMessagePump.h"

#include <com/sun/star/awt/Toolkit.hpp>

#include <algorithm>
#include <chrono>
#include <thread>

namespace rowlark::calc {
namespace {

using std::chrono::milliseconds;

constexpr uint32_t kLook = 10;  // milliseconds between two looks at the messages while there is nothing to do

}  // namespace

CalcMessagePump::CalcMessagePump(const Desk::Context& office, Trace* trace)
    : toolkit_(css::awt::Toolkit::create(office), css::uno::UNO_QUERY_THROW), trace_(trace) {}

void CalcMessagePump::ProcessMessages() noexcept {
  const uint32_t now = TickCount();
  if (looked_ == now) return;
  looked_ = now;
  Attempt(trace_, [this] { toolkit_->reschedule(); });
}

void CalcMessagePump::WaitForInput(uint32_t time) noexcept {
  looked_.reset();
  std::this_thread::sleep_for(milliseconds(std::min(time, kLook)));
}

uint32_t CalcMessagePump::TickCount() const noexcept {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<milliseconds>(now).count());
}

}  // namespace rowlark::calc
