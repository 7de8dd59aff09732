#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>
#include <utility>

namespace Quillon9 {

/// Whether the calling thread holds its text in UTF-8 at present, whatever its locale and ASCIIOnly(bool) say. The
/// conversions of CEncoder, patterns and lengths consult it, so that the layers between need not pass it on.
class Utf8Text {
 public:
  enum class Use {
    kNo,
    kYes,
    kCountingCharacters,  ///< the same, and the lengths of strings are numbers of characters instead of bytes
  };

  /// Holds for the time of one read, write or check. Scopes nest; the innermost one counts.
  class Scope {
   public:
    explicit Scope(Use use) : m_before(std::exchange(t_use, use)) {
      if (use != Use::kNo && !s_isEverUsed.load(std::memory_order_relaxed))
        s_isEverUsed.store(true, std::memory_order_relaxed);
    }
    ~Scope() { t_use = m_before; }
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

   private:
    Use m_before;
  };

  static Use Current() { return s_isEverUsed.load(std::memory_order_relaxed) ? t_use : Use::kNo; }
  static bool IsInUse() { return Current() != Use::kNo; }

  /// The number of characters in \p text, which is UTF-8.
  static std::size_t CountCharacters(std::string_view text);

  /// The length of \p text as a facet counts it.
  static std::size_t LengthOf(std::string_view text) {
    return Current() == Use::kCountingCharacters ? CountCharacters(text) : text.size();
  }

  /// \p place in \p text, at most its end, or the start of the well-formed UTF-8 sequence that it would cut.
  static std::size_t OutsideCharacters(std::string_view text, std::size_t place);

  /// Do nothing unless \p text is ill-formed while UTF-8 is in use.
  /// \throws CQnInvalidValueException "The text is not well-formed UTF-8 after [%s]" with the end of the part that is.
  static void Check(std::string_view text) {
    if (IsInUse()) CheckWellFormed(text);
  }

  /// Whether \p message is that of Check().
  static bool IsIllFormed(std::string_view message);

 private:
  static void CheckWellFormed(std::string_view text);

  static inline thread_local Use t_use = Use::kNo;
  // Whether any thread has ever used UTF-8. Programs that never do are spared the call that finds the data of a thread,
  // which each check of a text would make. A thread sees its own change, so no order is needed.
  static inline std::atomic<bool> s_isEverUsed{false};
};

}  // namespace Quillon9
