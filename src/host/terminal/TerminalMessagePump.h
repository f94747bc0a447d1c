// The message loop of a program in a terminal: keys, mouse, signals, timers, and drawing when something has
// changed.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "controls/Timer.h"
#include "host/MessagePump.h"
#include "host/terminal/Screen.h"
#include "host/terminal/Signals.h"
#include "util/Trace.h"

namespace rowlark::terminal {

class TerminalMessagePump final : public host::MessagePump {
 public:
  TerminalMessagePump(Screen& screen, const Signals& signals, rowlark::Trace* trace)
      : screen_(screen), signals_(signals), trace_(trace) {}

  // What they throw ends them, and nothing else suffers; the trace is told.
  std::function<void(const Input&)> OnInput;
  std::function<void()> OnDraw;
  std::function<void(int signal)>
      OnEnd;  // SIGINT, SIGTERM or SIGHUP, which also stands for a terminal that is gone

  // Looks at the input once a millisecond at most, so that it may be called as often as one likes.
  void ProcessMessages() noexcept override;
  void WaitForInput(uint32_t milliseconds) noexcept override;
  uint32_t TickCount() const noexcept override;

  // The screen no longer shows what it should.
  void Invalidate() { stale_ = true; }
  // The next wait also ends when one of these descriptors is readable, or has come to its end.
  void WakeBy(std::vector<int> descriptors) { wakers_ = std::move(descriptors); }
  // Gives the terminal back to the shell until the user comes back.
  void Suspend();

  rowlark::Trace* Trace() const { return trace_; }

  void Start(controls::Timer& timer);
  void Stop(const controls::Control& timer);

 private:
  struct Due {
    controls::Timer* timer;
    uint32_t tick;
  };

  void TakeSignals();
  void FireTimers();
  void Draw();

  Screen& screen_;
  const Signals& signals_;
  rowlark::Trace* const trace_;
  std::vector<Due> timers_;
  std::vector<int> wakers_;
  bool stale_ = true;
  bool waited_ = true;       // since the input was looked at
  bool input_left_ = false;  // some has been read, and there may be more
  uint32_t looked_ = 0;
  uint32_t drawn_ = 0;
};

}  // namespace rowlark::terminal
