#include <cstdlib>
#include <utility>

#include <fcntl.h>

#include "util/Trace.h"
#include "util/posix/Descriptor.h"

namespace rowlark {
namespace {

class TraceFile final : public Trace {
 public:
  explicit TraceFile(Descriptor file) : file_(std::move(file)) {}

  // In one piece: other processes may write to the same file. What can not be written is lost.
  void Write(std::string_view line) noexcept override try {
    const auto text = TraceLine(line);
    if (::write(*file_, text.data(), text.size()) < 0) return;
  } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory, and nothing lies below the trace
  }

 private:
  Descriptor file_;
};

}  // namespace

std::unique_ptr<Trace> OpenTrace() {
  const char* const name = std::getenv("ROWLARK_TRACE");
  if (name == nullptr || *name == '\0') return nullptr;
  // Nobody waits for the reader of a pipe.
  Descriptor file(::open(name, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0600));
  return file ? std::make_unique<TraceFile>(std::move(file)) : nullptr;
}

}  // namespace rowlark
