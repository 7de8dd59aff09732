#pragma once

#include <csignal>

namespace Quillon9Tool {

/// Keeps signals that would end the program waiting, so that it can remove its temporary file first. They take effect
/// at the end of the object. For a program with one thread.
class HeldSignals {
 public:
  HeldSignals();
  HeldSignals(HeldSignals const&) = delete;
  HeldSignals& operator=(HeldSignals const&) = delete;
  ~HeldSignals();

  /// \throws CQnException when such a signal waits.
  void ThrowIfInterrupted() const;

 private:
  sigset_t m_held;
  sigset_t m_before;
};

}  // namespace Quillon9Tool
