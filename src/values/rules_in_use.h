#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "quillon9/values/value_rules.h"

namespace Quillon9 {

/// Whether the calling thread reads, writes or checks by the rules of XML Schema at present, so that the layers between
/// need not pass it on. What programs convert themselves meanwhile, through CConversions or QnVariant, stays classic.
class RulesInUse {
  enum class Rules : std::uint8_t { Unset, Classic, Schema };

 public:
  /// Holds for the time of one read, write or check. Scopes nest; the innermost one counts.
  class Scope {
   public:
    explicit Scope(ValueRules rules)
        : m_before(std::exchange(t_rules, rules == ValueRules_XmlSchema ? Rules::Schema : Rules::Classic)) {
      if (t_rules == Rules::Schema && !s_isEverUsed.load(std::memory_order_relaxed))
        s_isEverUsed.store(true, std::memory_order_relaxed);
    }
    ~Scope() { t_rules = m_before; }
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

   private:
    Rules m_before;
  };

  static bool AreSchema() { return s_isEverUsed.load(std::memory_order_relaxed) && t_rules == Rules::Schema; }
  /// The same for \p object, which a program may change while there is no read, write or check: then it is the object
  /// that asks for rules. One that asks for those of XML Schema must have been made within a scope of them.
  template <class Object>
  static bool AreSchemaFor(Object const& object) {
    if (!s_isEverUsed.load(std::memory_order_relaxed)) return false;
    if (t_rules != Rules::Unset) return t_rules == Rules::Schema;
    return object.GetDefaultValueRules() == ValueRules_XmlSchema;
  }

 private:
  static inline thread_local Rules t_rules = Rules::Unset;
  // Programs that never use these rules are spared the call that finds the data of a thread.
  static inline std::atomic<bool> s_isEverUsed{false};
};

}  // namespace Quillon9
