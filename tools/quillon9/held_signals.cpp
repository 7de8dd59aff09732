#include "held_signals.h"

#include <poll.h>
#include <sys/signalfd.h>

#include <cerrno>

#include "quillon9/quillon9.h"
#include "xmlio/file_descriptor.h"

namespace Quillon9Tool {

namespace {

constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGPIPE, SIGQUIT, SIGTERM, SIGXCPU};

/// Return the signals that end the program. A program started in the background, or by nohup, ignores some of them.
sigset_t EndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (int const signal : kEndingSignals) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  return signals;
}

}  // namespace

HeldSignals::HeldSignals() : m_held(EndingSignals()) { ::sigprocmask(SIG_BLOCK, &m_held, &m_before); }

HeldSignals::~HeldSignals() { ::sigprocmask(SIG_SETMASK, &m_before, nullptr); }

void HeldSignals::ThrowIfInterrupted() const {
  sigset_t pending;
  ::sigpending(&pending);
  for (int const signal : kEndingSignals) {
    if (sigismember(&m_held, signal) == 1 && sigismember(&pending, signal) == 1) {
      throw Quillon9::CQnException("interrupted");
    }
  }
}

void HeldSignals::WaitToRead(int descriptor) const {
  Quillon9::CFileDescriptor const signals(::signalfd(-1, &m_held, SFD_CLOEXEC));
  if (!signals.IsOpen()) Quillon9::ThrowSystemError();
  pollfd both[] = {{descriptor, POLLIN, 0}, {signals.Get(), POLLIN, 0}};
  while (::poll(both, 2, -1) == -1) {
    if (errno != EINTR) Quillon9::ThrowSystemError();
  }
  ThrowIfInterrupted();
}

}  // namespace Quillon9Tool
