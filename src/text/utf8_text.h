#pragma once

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
    explicit Scope(Use use) : m_before(std::exchange(t_use, use)) {}
    ~Scope() { t_use = m_before; }
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

   private:
    Use m_before;
  };

  static Use Current() { return t_use; }
  static bool IsInUse() { return t_use != Use::kNo; }

  /// The length of \p text as a facet counts it.
  static std::size_t LengthOf(std::string_view text) {
    return t_use == Use::kCountingCharacters ? CountCharacters(text) : text.size();
  }

  /// Do nothing unless \p text is ill-formed while UTF-8 is in use.
  /// \throws CQnInvalidValueException "The text is not well-formed UTF-8 after [%s]" with the end of the part that is.
  static void Check(std::string_view text) {
    if (IsInUse()) CheckWellFormed(text);
  }

 private:
  static std::size_t CountCharacters(std::string_view text);
  static void CheckWellFormed(std::string_view text);

  static inline thread_local Use t_use = Use::kNo;
};

}  // namespace Quillon9
