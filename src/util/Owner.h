// Owns a handle of the platform, and closes it. What a handle is and how it is closed says a class of traits,
// in the folder of its platform:
//
//   struct Traits {
//     using Handle = ...;
//     static Handle None() noexcept;                 // stands for no handle
//     void Close(Handle handle) const noexcept;      // static, where that needs nothing else
//   };
#pragma once

#include <utility>

namespace rowlark {

template <class Traits>
class [[nodiscard]] Owner {
 public:
  using Handle = typename Traits::Handle;

  Owner() = default;
  explicit Owner(Handle handle, Traits traits = {}) : traits_(std::move(traits)), handle_(handle) {}
  Owner(Owner&& other) noexcept : traits_(other.traits_), handle_(other.release()) {}
  Owner& operator=(Owner&& other) noexcept {
    if (this != &other) {
      reset();
      traits_ = other.traits_;
      handle_ = other.release();
    }
    return *this;
  }
  ~Owner() { reset(); }

  explicit operator bool() const noexcept { return handle_ != Traits::None(); }
  Handle get() const noexcept { return handle_; }
  Handle operator*() const noexcept { return handle_; }
  Handle operator->() const noexcept { return handle_; }

  // Where a function of the platform puts a handle that it hands out.
  [[nodiscard]] Handle* Put() noexcept {
    reset();
    return &handle_;
  }
  // Whoever takes the handle closes it.
  [[nodiscard]] Handle release() noexcept { return std::exchange(handle_, Traits::None()); }
  void reset(Handle handle = Traits::None()) noexcept {
    const Handle before = std::exchange(handle_, handle);
    if (before != Traits::None()) traits_.Close(before);
  }

 private:
  [[no_unique_address]] Traits traits_{};
  Handle handle_ = Traits::None();
};

}  // namespace rowlark
