#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {

/// A pattern that the regular expression library has compiled. There is one source file for each generation of PCRE,
/// and the build uses one of them: pattern_engine_pcre.cpp or pattern_engine_pcre2.cpp.
///
/// An object belongs to one thread until it is shared.
class CompiledPattern {
 public:
  enum class Answer { kNo, kYes, kGaveUp };

  /// Compile \p translated, UTF-8 up to the first zero byte, to be tried only at the start of a subject.
  /// \throws CQnException as ThrowInvalidPattern() does for \p given; std::bad_alloc.
  CompiledPattern(std::string const& given, std::string const& translated);
  ~CompiledPattern();
  CompiledPattern(CompiledPattern&&) noexcept;

  /// Return whether the first match found at the start of \p subject, which has \p length bytes, reaches its end. The
  /// engine gives up where the subject is not UTF-8 or needs more than the bounds below.
  /// \throws std::bad_alloc
  Answer Try(char const* subject, int length);
  /// The same, where giving up counts as no match.
  bool Matches(char const* subject, int length) { return Try(subject, length) == Answer::kYes; }

  /// Prepare for TryInAnyThread(), once.
  void Share();
  /// Try() for any number of threads at once, for a pattern without groups that have numbers. The engine may give up
  /// earlier on long subjects.
  /// \throws std::bad_alloc
  Answer TryInAnyThread(char const* subject, int length) const;

 private:
  struct Engine;
  std::unique_ptr<Engine> m_engine;
};

/// \p given is the pattern before its translation; \p offset is an offset in the translated pattern.
[[noreturn]] inline void ThrowInvalidPattern(std::string const& given, char const* message, int offset) {
  throw CQnException(FormatString("Invalid pattern [%s]: %s at offset %d", given.c_str(), message, offset));
}

// ---- Bounds on the work of a match, the same for both generations

/// Steps of the engine. A pattern that backtracks without end, such as "(a+)+$", stops after some milliseconds; a
/// repeated group takes a step or two for each repetition, so that long values still match. A step may scan the whole
/// value.
inline std::uint32_t MatchLimit(int length) {
  return static_cast<std::uint32_t>(
      std::min<std::uint64_t>(1000000 + 2 * static_cast<std::uint64_t>(length), UINT32_MAX));
}

/// Bytes of backtracking memory.
constexpr std::size_t kMaxBacktracking = std::size_t{128} << 20;

/// Backtracking memory of compiled patterns for a subject of \p length bytes: 32 bytes or a little more for each
/// repetition of a group. The memory is reserved, but used only as far as the match needs it.
constexpr std::size_t kFirstJitStack = 64 * 1024;
inline std::size_t MaxJitStack(int length) {
  return std::min(kMaxBacktracking, (std::size_t{1} << 20) + 128 * static_cast<std::size_t>(length));
}

/// How many times to try for machine code. An engine does not distinguish a pattern that it cannot compile from a lack
/// of memory, so a pattern without machine code gets another try with the next values.
constexpr int kMachineCodeTries = 3;

}  // namespace Quillon9
