// A piece of work that stops at agreed points and is carried on from outside, by whoever wants it to end.
#pragma once

#include <coroutine>
#include <utility>

namespace rowlark {

class Resumable {
 public:
  struct promise_type {
    Resumable get_return_object() { return Resumable(Handle::from_promise(*this)); }
    std::suspend_always initial_suspend() noexcept { return {}; }
    std::suspend_always final_suspend() noexcept { return {}; }
    void return_void() noexcept {}
    // Nothing comes here: the work traps its own errors, and its trap throws nothing.
    void unhandled_exception() noexcept {}
  };
  using Handle = std::coroutine_handle<promise_type>;

  explicit Resumable(Handle handle) : handle_(handle) {}
  Resumable(Resumable&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Resumable& operator=(Resumable&&) = delete;
  ~Resumable() {
    if (handle_) handle_.destroy();
  }

  void Resume() const { handle_.resume(); }
  bool Done() const { return handle_.done(); }

 private:
  Handle handle_;
};

}  // namespace rowlark
