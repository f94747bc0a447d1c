// A process of its own for work that may hang or crash: it can be ended at any moment, and takes nothing of
// ours with it. What it writes comes through a pipe.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace rowlark {

class ChildProcess {
 public:
  using Write = std::function<void(std::string_view bytes)>;

  // Runs `work` there, which writes with what it is handed, writes nowhere else and lets no exception out;
  // the process ends with it. Beyond so many bytes more than it begins with it gets no memory. Throws
  // std::system_error.
  ChildProcess(const std::function<void(const Write& write)>& work, std::uint64_t memory);
  // Ends the process.
  ~ChildProcess();

  // What it has written since, valid until the next call; empty when there was nothing for so long. Nothing
  // once it has ended, whyever, and everything has been read.
  std::optional<std::string_view> Read(std::chrono::milliseconds patience);
  // Readable when there is something to read.
  int ReadEnd() const noexcept;
  // Ends the process. What it has written is still there to be read.
  void Stop() noexcept;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rowlark
