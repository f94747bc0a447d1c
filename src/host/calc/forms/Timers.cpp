#include "host/calc/forms/Timers.h"

#include <algorithm>
#include <utility>

namespace rowlark::calc {

void Timers::Start(const void* name, std::chrono::milliseconds after, std::function<void()> due) {
  const std::lock_guard lock(mutex_);
  if (ending_) return;
  timers_[name] = {Clock::now() + after, std::move(due)};
  if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
  changed_.notify_one();
}

void Timers::Stop(const void* name) {
  const std::lock_guard lock(mutex_);
  timers_.erase(name);
}

bool Timers::Runs(const void* name) {
  const std::lock_guard lock(mutex_);
  return timers_.contains(name);
}

void Timers::Stop(const std::function<void()>& let_go) {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    timers_.clear();
  }
  changed_.notify_one();
  const auto ended = [this] {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::milliseconds(10), [this] { return ended_; });
  };
  while (let_go && !ended()) let_go();
  thread_.join();
}

void Timers::Run() {
  std::unique_lock lock(mutex_);
  while (!ending_) {
    const auto next = std::ranges::min_element(timers_, {}, [](const auto& one) { return one.second.at; });
    if (next == timers_.end()) {
      changed_.wait(lock);
    } else if (const auto at = next->second.at; at > Clock::now()) {
      changed_.wait_until(lock, at);
    } else {
      const auto call = std::move(next->second.call);
      timers_.erase(next);
      lock.unlock();
      call();
      lock.lock();
    }
  }
  ended_ = true;
  changed_.notify_all();
}

}  // namespace rowlark::calc
