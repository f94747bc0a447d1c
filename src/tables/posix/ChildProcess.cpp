#include "tables/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <system_error>

#include "util/posix/Descriptor.h"

namespace rowlark {
namespace {

[[noreturn]] void ThrowLastError() { throw std::system_error(errno, std::generic_category()); }

void WriteAll(int pipe, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto count = ::write(pipe, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) ::_exit(1);  // nobody reads any more
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

void LimitMemory(std::uint64_t more) {
  // What it has from the beginning, in pages, is the sixth number there.
  std::ifstream file("/proc/self/statm");
  rlim_t pages = 0;
  for (int i = 0; i < 6; ++i) file >> pages;
  rlimit limit{};
  if (::getrlimit(RLIMIT_DATA, &limit) != 0) return;
  const auto bytes = pages * static_cast<rlim_t>(::sysconf(_SC_PAGE_SIZE)) + more;
  limit.rlim_cur = std::min(limit.rlim_max, static_cast<rlim_t>(bytes));
  ::setrlimit(RLIMIT_DATA, &limit);
}

// The other process. Its output goes nowhere: a terminal may be showing a table.
[[noreturn]] void RunInChild(const std::function<void(const ChildProcess::Write&)>& work, int pipe) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // it may wait for ever where there is nothing to read
  const Descriptor nothing(::open("/dev/null", O_RDWR));
  ::dup2(*nothing, STDOUT_FILENO);
  ::dup2(*nothing, STDERR_FILENO);
  work([pipe](std::string_view bytes) { WriteAll(pipe, bytes); });
  ::_exit(0);
}

}  // namespace

struct ChildProcess::State {
  State() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) ThrowLastError();
    read_end.reset(ends[0]);
    write_end.reset(ends[1]);
  }

  Descriptor read_end;
  Descriptor write_end;
  pid_t process = -1;
  std::array<char, 1 << 16> bytes{};
};

ChildProcess::ChildProcess(const std::function<void(const Write&)>& work, std::uint64_t memory)
    : state_(std::make_unique<State>()) {
  state_->process = ::fork();
  if (state_->process < 0) ThrowLastError();
  if (state_->process == 0) {
    state_->read_end.reset();
    LimitMemory(memory);
    RunInChild(work, *state_->write_end);
  }
  state_->write_end.reset();
}

ChildProcess::~ChildProcess() { Stop(); }

std::optional<std::string_view> ChildProcess::Read(std::chrono::milliseconds patience) {
  pollfd waiting{*state_->read_end, POLLIN, 0};
  if (::poll(&waiting, 1, static_cast<int>(patience.count())) <= 0) return std::string_view();
  const auto count = ::read(*state_->read_end, state_->bytes.data(), state_->bytes.size());
  if (count < 0) return std::string_view();
  if (count == 0) return std::nullopt;
  return std::string_view(state_->bytes.data(), static_cast<std::size_t>(count));
}

int ChildProcess::ReadEnd() const noexcept { return *state_->read_end; }

void ChildProcess::Stop() noexcept {
  if (state_->process <= 0) return;
  ::kill(state_->process, SIGKILL);
  while (::waitpid(state_->process, nullptr, 0) < 0 && errno == EINTR) {
  }
  state_->process = -1;
}

}  // namespace rowlark
