#include "host/terminal/TerminalMessagePump.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <limits>

namespace rowlark::terminal {
namespace {

constexpr uint32_t kNoTimeout = std::numeric_limits<uint32_t>::max();
constexpr uint32_t kFrame = 25;  // milliseconds between two pictures while messages keep coming

// Whether a tick lies behind another one, the count beginning anew at 2^32.
bool IsDue(uint32_t tick, uint32_t now) { return static_cast<int32_t>(now - tick) >= 0; }

}  // namespace

uint32_t TerminalMessagePump::TickCount() const noexcept {
  using std::chrono::milliseconds;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<milliseconds>(now).count());
}

void TerminalMessagePump::ProcessMessages() noexcept {
  const uint32_t now = TickCount();
  if (!waited_ && now == looked_) return;
  waited_ = false;
  looked_ = now;
  TakeSignals();
  Attempt(trace_, [this] {
    while (const auto input = screen_.Read()) {
      input_left_ = stale_ = true;
      Attempt(trace_, [&] { OnInput(*input); });
      stale_ = true;  // it may have been drawn meanwhile: a question was asked
    }
  });
  input_left_ = false;
  FireTimers();
  if (stale_ && TickCount() - drawn_ >= kFrame) Draw();
}

void TerminalMessagePump::WaitForInput(uint32_t milliseconds) noexcept {
  waited_ = true;
  const auto wakers = std::exchange(wakers_, {});
  if (input_left_) return;
  if (stale_) Draw();
  const uint32_t now = TickCount();
  for (const auto& due : timers_)
    milliseconds = std::min(milliseconds, IsDue(due.tick, now) ? 0 : due.tick - now);
  const int timeout =
      milliseconds == kNoTimeout ? -1 : static_cast<int>(std::min<uint32_t>(milliseconds, 1 << 30));
  std::vector<pollfd> descriptors{{screen_.InputDescriptor(), POLLIN, 0}, {signals_.Descriptor(), POLLIN, 0}};
  for (const int waker : wakers) descriptors.push_back({waker, POLLIN, 0});
  poll(descriptors.data(), descriptors.size(), timeout);
  if ((descriptors[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0)
    Attempt(trace_, [this] { OnEnd(SIGHUP); });
}

void TerminalMessagePump::TakeSignals() {
  while (const auto signal = signals_.Take()) {
    stale_ = true;
    if (*signal == SIGWINCH || *signal == SIGCONT) {
      screen_.Resize();
    } else if (*signal == SIGTSTP) {
      Suspend();
    } else {
      Attempt(trace_, [&] { OnEnd(*signal); });
    }
  }
}

void TerminalMessagePump::Suspend() {
  screen_.Leave();
  signals_.Stop();
  screen_.Return();
  stale_ = true;
}

void TerminalMessagePump::Draw() {
  stale_ = false;
  Attempt(trace_, [this] { OnDraw(); });
  drawn_ = TickCount();
}

void TerminalMessagePump::Start(controls::Timer& timer) {
  Stop(timer);
  timers_.push_back({&timer, TickCount() + static_cast<uint32_t>(timer.Interval())});
}

void TerminalMessagePump::Stop(const controls::Control& timer) {
  std::erase_if(timers_, [&timer](const Due& due) { return due.timer == &timer; });
}

// A handler may start and stop timers, and fire others by processing messages.
void TerminalMessagePump::FireTimers() {
  const uint32_t now = TickCount();
  for (;;) {
    const auto due = std::ranges::find_if(timers_, [now](const Due& d) { return IsDue(d.tick, now); });
    if (due == timers_.end()) return;
    due->tick = now + static_cast<uint32_t>(std::max(due->timer->Interval(), 1));
    stale_ = true;
    due->timer->Expired();
  }
}

}  // namespace rowlark::terminal
