// What is done at the end of a scope, on every path out of it.
#pragma once

#include <utility>

namespace rowlark {

// Does something at its end, which throws nothing.
template <class Action>
class [[nodiscard]] ScopeExit {
 public:
  explicit ScopeExit(Action action) : action_(std::move(action)) {}
  ScopeExit(const ScopeExit&) = delete;
  ScopeExit& operator=(const ScopeExit&) = delete;
  ~ScopeExit() { action_(); }

 private:
  Action action_;
};

// Gives a variable another value for a time.
template <class Value>
class [[nodiscard]] ScopedValue {
 public:
  ScopedValue(Value& variable, Value value)
      : variable_(variable), before_(std::exchange(variable, std::move(value))) {}
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;
  ~ScopedValue() { variable_ = std::move(before_); }

 private:
  Value& variable_;
  Value before_;
};

// A flag that is set within a scope.
class [[nodiscard]] ScopedFlag : public ScopedValue<bool> {
 public:
  explicit ScopedFlag(bool& flag) : ScopedValue(flag, true) {}
};

// Counts a scope while it is on the stack; scopes may end in any order.
class [[nodiscard]] ScopedCount {
 public:
  explicit ScopedCount(int& count) : count_(count) { ++count_; }
  ScopedCount(const ScopedCount&) = delete;
  ScopedCount& operator=(const ScopedCount&) = delete;
  ~ScopedCount() { --count_; }

 private:
  int& count_;
};

}  // namespace rowlark
