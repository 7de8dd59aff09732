#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {

/// A pattern as the regular expression library compiled it. One source for each generation of PCRE defines this
/// class, and the build takes one of them: pattern_engine_pcre.cpp or pattern_engine_pcre2.cpp.
///
/// An object belongs to one thread.
class CompiledPattern {
 public:
  /// Compile \p translated, UTF-8 up to a first zero byte, to be tried at the start of a subject only.
  /// \throws CQnException as ThrowInvalidPattern() for \p given; std::bad_alloc.
  CompiledPattern(std::string const& given, std::string const& translated);
  ~CompiledPattern();
  CompiledPattern(CompiledPattern&&) noexcept;

  /// Tell whether the first match that is found at the start of \p subject, \p length bytes, reaches its end. What
  /// is no UTF-8, or needs more than the bounds below, does not match.
  /// \throws std::bad_alloc
  bool Matches(char const* subject, int length);

 private:
  struct Engine;
  std::unique_ptr<Engine> m_engine;
};

/// \p given is the pattern before it was translated, \p offset counts in what it was translated to.
[[noreturn]] inline void ThrowInvalidPattern(std::string const& given, char const* message, int offset) {
  throw CQnException(FormatString("Invalid pattern [%s]: %s at offset %d", given.c_str(), message, offset));
}

// ---- Bounds on the work of a match, the same for both generations

/// Steps of the engine. What backtracks without end, such as "(a+)+$", stops after some milliseconds; a repeated
/// group takes a step or two for each repetition, so that long values still match. A step may scan the whole value.
inline std::uint32_t MatchLimit(int length) {
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(1000000 + 2 * static_cast<std::uint64_t>(length), UINT32_MAX));
}

/// Bytes of backtracking memory.
constexpr std::size_t kMaxBacktracking = std::size_t{128} << 20;

/// Those of compiled patterns for a subject of \p length bytes: 32 or a little more for each repetition of a group.
/// The memory is reserved, and used only as far as the match needs it.
constexpr std::size_t kFirstJitStack = 64 * 1024;
inline std::size_t MaxJitStack(int length) {
  return std::min(kMaxBacktracking, (std::size_t{1} << 20) + 128 * static_cast<std::size_t>(length));
}

/// How often machine code is tried for. An engine does not tell what it cannot compile from what it had no memory
/// for, so a pattern without machine code gets another try with the next values.
constexpr int kMachineCodeTries = 3;

}  // namespace Quillon9
