// Calls back after a time. The office has no timers for components, so a thread waits for them.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace rowlark::calc {

class Timers {
 public:
  Timers() = default;
  Timers(const Timers&) = delete;
  Timers& operator=(const Timers&) = delete;
  ~Timers() { Stop(); }

  // `due` is called on the thread of the timers, once, unless the timer of that name is started anew or
  // stopped before. It throws nothing.
  void Start(const void* name, std::chrono::milliseconds after, std::function<void()> due);
  void Stop(const void* name);
  bool Runs(const void* name);
  // Ends the thread; nothing is due any more. It may be waiting for the office's main lock, which who calls
  // may hold: `let_go`, called until the thread has ended, gives the lock away for a moment.
  void Stop(const std::function<void()>& let_go = nullptr);

 private:
  using Clock = std::chrono::steady_clock;
  struct Due {
    Clock::time_point at;
    std::function<void()> call;
  };

  void Run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<const void*, Due> timers_;
  bool ending_ = false;
  bool ended_ = false;
  std::thread thread_;  // from the first timer on
};

}  // namespace rowlark::calc
