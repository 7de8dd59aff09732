#pragma once

#include <atomic>
#include <utility>

#include "quillon9/values/value_rules.h"

namespace Quillon9 {

/// Whether the calling thread reads, writes or checks by the rules of XML Schema at present, so that the layers between
/// need not pass it on. What programs convert themselves meanwhile, through CConversions or QnVariant, stays classic.
class RulesInUse {
 public:
  /// Holds for the time of one read, write or check. Scopes nest; the innermost one counts.
  class Scope {
   public:
    explicit Scope(ValueRules rules) : m_before(std::exchange(t_isSchema, rules == ValueRules_XmlSchema)) {
      if (t_isSchema && !s_isEverUsed.load(std::memory_order_relaxed))
        s_isEverUsed.store(true, std::memory_order_relaxed);
    }
    ~Scope() { t_isSchema = m_before; }
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

   private:
    bool m_before;
  };

  static bool AreSchema() { return s_isEverUsed.load(std::memory_order_relaxed) && t_isSchema; }

 private:
  static inline thread_local bool t_isSchema = false;
  // Programs that never use these rules are spared the call that finds the data of a thread.
  static inline std::atomic<bool> s_isEverUsed{false};
};

}  // namespace Quillon9
