// Signals of the process, taken one by one where it suits instead of interrupting.
#pragma once

#include <signal.h>

#include <optional>

#include "util/posix/Descriptor.h"

namespace rowlark::terminal {

// Holds back SIGHUP, SIGINT, SIGTERM, SIGTSTP, SIGCONT and SIGWINCH as long as it lives.
class Signals {
 public:
  // Throws std::system_error.
  Signals();
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;
  ~Signals();

  // The number of one that has arrived; nothing when none has.
  std::optional<int> Take() const;
  // Readable when one has arrived.
  int Descriptor() const { return *descriptor_; }

  // Stops the process and its job as Ctrl+Z does; returns when it is continued.
  void Stop() const;

  // The mask that the process had; for programs that it starts.
  const sigset_t& Before() const { return before_; }

 private:
  sigset_t before_{};
  rowlark::Descriptor descriptor_;
};

}  // namespace rowlark::terminal
