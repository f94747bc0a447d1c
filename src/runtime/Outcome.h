#pragma once

#include <cstdint>
#include <string>

namespace rowlark {

// How a search, or showing all rows, has ended.
enum class Outcome : uint8_t {
  Done,      // rows were found, or shown
  NotFound,  // no row matches
  Stopped,   // by the user, by a later search or because the library ends
  Refused,   // never begun: it came while an earlier search can not be waited for
  Failed,
};

struct OperationResult {
  Outcome outcome = Outcome::Failed;
  std::u16string error;  // why not, for the user; empty when there is nothing to tell
};

}  // namespace rowlark
