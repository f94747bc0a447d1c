#include "host/terminal/Signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace rowlark::terminal {

Signals::Signals() {
  sigset_t held;
  sigemptyset(&held);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGTSTP, SIGCONT, SIGWINCH}) sigaddset(&held, signal);
  sigprocmask(SIG_BLOCK, &held, &before_);
  descriptor_.reset(signalfd(-1, &held, SFD_NONBLOCK | SFD_CLOEXEC));
  if (!descriptor_) throw std::system_error(errno, std::generic_category(), "signalfd");
}

Signals::~Signals() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

std::optional<int> Signals::Take() const {
  signalfd_siginfo signal{};
  if (read(*descriptor_, &signal, sizeof signal) != sizeof signal) return std::nullopt;
  return static_cast<int>(signal.ssi_signo);
}

void Signals::Stop() const {
  struct sigaction plain {};
  plain.sa_handler = SIG_DFL;
  struct sigaction before {};
  sigaction(SIGTSTP, &plain, &before);
  kill(0, SIGTSTP);
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGTSTP);
  sigset_t mask;
  sigprocmask(SIG_UNBLOCK, &stop, &mask);  // here the process stands still
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  sigaction(SIGTSTP, &before, nullptr);
}

}  // namespace rowlark::terminal
