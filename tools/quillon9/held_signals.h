#pragma once

#include <csignal>

namespace Quillon9Tool {

/// Holds back signals that would end the program, so that it can remove its temporary file first. They take effect when
/// the object is destroyed. For a program with one thread.
class HeldSignals {
 public:
  HeldSignals();
  HeldSignals(HeldSignals const&) = delete;
  HeldSignals& operator=(HeldSignals const&) = delete;
  ~HeldSignals();

  /// \throws CQnException if such a signal is pending.
  void ThrowIfInterrupted() const;
  /// Wait until something can be read from \p descriptor, or its end has been reached.
  /// \throws CQnException if such a signal is pending; std::system_error.
  void WaitToRead(int descriptor) const;

 private:
  sigset_t m_held;
  sigset_t m_before;
};

}  // namespace Quillon9Tool
