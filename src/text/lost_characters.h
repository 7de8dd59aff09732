#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {

/// What a conversion could not keep, and wrote as "?" instead.
struct LostCharacter {
  std::uint32_t code;  ///< the character that the target encoding lacks, or the byte that is no part of a character
  bool isByte;

  /// For a remark.
  std::string GetText() const {
    return FormatString(isByte ? "The byte 0x%02X is not part of a character of the code page"
                               : "The character U+%04X has no place in the code page",
                        static_cast<unsigned>(code));
  }
};

/// Whom the conversions of the calling thread tell what they lose; nobody unless a scope says so. Only the branch that
/// writes the "?" asks for the observer, so a conversion without losses costs the same in any case.
class LostCharacters {
 public:
  class Observer {
   public:
    virtual void OnLost(LostCharacter const& lost) = 0;

   protected:
    ~Observer() = default;
  };

  /// Holds for the time of one read, write or check. Scopes nest; the innermost one counts, also one with nullptr.
  class Scope {
   public:
    explicit Scope(Observer* observer) : m_before(std::exchange(t_observer, observer)) {}
    ~Scope() { t_observer = m_before; }
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

   private:
    Observer* m_before;
  };

  static void Report(LostCharacter const& lost) {
    if (t_observer != nullptr) t_observer->OnLost(lost);
  }

 private:
  static inline thread_local Observer* t_observer = nullptr;
};

}  // namespace Quillon9
