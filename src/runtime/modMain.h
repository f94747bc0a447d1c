// Small routines for dealing with the host process: messages, help, the main window.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/HelpTopic.h"
#include "settings/SharedState.h"

namespace rowlark {

inline constexpr uint32_t kNoTimeout = 0xFFFFFFFF;

// Processes messages until so many milliseconds have passed or the library ends; without a time-out, until
// the library ends.
void WaitForMessages(SharedState& shared, uint32_t timeout);

// Processes what is pending, once. The host may be free again after that.
inline void PumpMessages(SharedState& shared) {
  shared.Platform.Pump.ProcessMessages();
  shared.GiveBackFlags();
}

// Full path of the help file: the one that the language names if it is there, otherwise the English one.
std::u16string HelpFilePath(SharedState& shared);

// Opens the help at a topic. A failure is shown to the user.
void ShowHelp(SharedState& shared, HelpTopic topic);

// Tells the user what went wrong, with a way to the topic that says what to do about it.
void ShowFailure(SharedState& shared, std::u16string_view text, HelpTopic topic);

// The host's main window; 0 when there is none. Throws host::Error.
intptr_t HostMainWindow(SharedState& shared);

}  // namespace rowlark
