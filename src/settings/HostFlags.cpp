#include "settings/HostFlags.h"

#include <utility>

namespace rowlark {
namespace {

// In the order of HostFlag.
constexpr std::array<FlagAccess, 3> kAccess = {{
    {&host::Application::ScreenUpdating, &host::Application::SetScreenUpdating},
    {&host::Application::EnableEvents, &host::Application::SetEnableEvents},
    {&host::Application::EnableAnimations, &host::Application::SetEnableAnimations},
}};

}  // namespace

void HostFlags::GiveBack(host::Application& application) noexcept {
  for (std::size_t i = 0; i < states_.size(); ++i) {
    auto& state = states_[i];
    if (state.scopes > 0 || !state.owed) continue;
    // It stays owed where the host does not take it now.
    Attempt(trace_, [&] {
      (application.*kAccess[i].set)(*state.owed);
      state.owed.reset();
    });
  }
}

FlagScope::FlagScope(HostFlags& flags, Ref<host::Application> application, HostFlag flag,
                     std::optional<bool> restored)
    : trace_(flags.trace_),
      state_(flags.Of(flag)),
      application_(std::move(application)),
      access_(kAccess[static_cast<std::size_t>(flag)]) {
  if (restored) Enter(*restored);
}

FlagScope::~FlagScope() {
  // A busy host refuses calls now and then, so one refusal is not the end; after the second it stays owed.
  for (int attempt = 0; entered_ && attempt < 2; ++attempt) Attempt(trace_, [this] { GiveBack(); });
  Leave();
}

void FlagScope::Enter(bool present) {
  if (!state_.owed) state_.owed = present;
  ++state_.scopes;
  entered_ = true;
}

void FlagScope::Change(bool value) {
  if (!entered_) Enter(state_.owed ? *state_.owed : ((*application_).*access_.get)());
  ((*application_).*access_.set)(value);
}

void FlagScope::GiveBack() {
  if (!entered_) return;
  if (state_.scopes == 1) ((*application_).*access_.set)(*state_.owed);
  Leave();
  if (state_.scopes == 0) state_.owed.reset();
}

void FlagScope::Leave() noexcept {
  if (std::exchange(entered_, false)) --state_.scopes;
}

}  // namespace rowlark
