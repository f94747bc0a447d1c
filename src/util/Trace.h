// Where failures go that nobody is told of: hosts, registries, files and listeners fail at times, and the
// program goes on without what it wanted of them.
//
// A trace can be sent to others. It holds names of operations, kinds and numbers of errors; descriptions may
// quote cells, searches or paths, so they never go into it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "util/SourceLocation.h"

namespace rowlark {

class Trace {
 public:
  virtual ~Trace() = default;
  // One line of ASCII without an end.
  virtual void Write(std::string_view line) noexcept = 0;
};

// What the environment variable ROWLARK_TRACE asks for: the file that it names, made for its user alone when
// missing, to which lines with the time (UTC) are appended. Where the platform has a debugger's output,
// "debugger" stands for that. Null when nothing is asked for, or nothing can be written.
std::unique_ptr<Trace> OpenTrace();

// Tells of the exception that is being handled and goes no further. Without a trace nothing happens.
void TraceCaught(Trace* trace, std::string_view operation) noexcept;
void TraceCaught(Trace* trace, SourceLocation where = SourceLocation::Current()) noexcept;
// Tells of a failure that a host or a system has answered with that number.
void TraceNumber(Trace* trace, int32_t number, SourceLocation where = SourceLocation::Current()) noexcept;

// Does what may fail; false when it did.
template <class Action>
bool Attempt(Trace* trace, Action action, SourceLocation where = SourceLocation::Current()) noexcept {
  try {
    action();
    return true;
  } catch (...) {
    TraceCaught(trace, where);
    return false;
  }
}

// The result of what may fail, or another one when it did.
template <class Result, class Action>
[[nodiscard]] Result AttemptOr(Trace* trace, Result otherwise, Action action,
                               SourceLocation where = SourceLocation::Current()) noexcept {
  Attempt(
      trace, [&] { otherwise = action(); }, where);
  return otherwise;
}

// A line as sinks write it: with the time before it and an end.
std::string TraceLine(std::string_view line);

}  // namespace rowlark
