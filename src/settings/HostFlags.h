// Flags of the host that are changed for speed and must come back on every path.
//
// A host that is busy (a cell is being edited, a dialog is open) refuses every call, also the one that gives
// a flag back. What it was is then owed until the host takes it. Meanwhile the host shows a value of ours,
// which is never taken for the user's. The library lives in the process of one host, so what is owed is owed
// to whatever object stands for it at the time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "host/spreadsheet.h"
#include "util/Trace.h"

namespace rowlark {

enum class HostFlag : uint8_t { ScreenUpdating, EnableEvents, EnableAnimations };

struct FlagAccess {
  bool (host::Application::*get)() const;
  void (host::Application::*set)(bool);
};

class HostFlags {
 public:
  explicit HostFlags(Trace* trace = nullptr) : trace_(trace) {}

  // Gives back what is owed and not in use, as far as the host takes it. Calls the host only where something
  // is.
  void GiveBack(host::Application& application) noexcept;

 private:
  friend class FlagScope;

  struct State {
    int32_t scopes = 0;        // that change the flag now; runtime objects search independently of each other
    std::optional<bool> owed;  // what it was before the first of them
  };
  State& Of(HostFlag flag) { return states_[static_cast<std::size_t>(flag)]; }

  std::array<State, 3> states_;
  Trace* trace_;
};

// Changes a flag for a time, and gives it back at the end.
class FlagScope {
 public:
  // What it gives back is `restored`, changed or not, or else what the flag is when it is changed first.
  FlagScope(HostFlags& flags, Ref<host::Application> application, HostFlag flag,
            std::optional<bool> restored = std::nullopt);
  FlagScope(const FlagScope&) = delete;
  FlagScope& operator=(const FlagScope&) = delete;
  ~FlagScope();

  // Throw host::Error.
  void Change(bool value);
  void GiveBack();  // before the end

  // Leaves the flag as it is; whoever calls HostFlags::GiveBack next gives it back.
  void Leave() noexcept;

 private:
  void Enter(bool present);

  Trace* const trace_;
  HostFlags::State& state_;
  const Ref<host::Application> application_;
  const FlagAccess& access_;
  bool entered_ = false;
};

}  // namespace rowlark
