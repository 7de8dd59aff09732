#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "values/schema_pattern_syntax.h"

namespace Quillon9 {

/// Matches one text against regular expressions without PCRE: for those that PCRE refuses or that cost it too much.
/// Each part of an expression turns the set of the places where it may begin into the set of those where it may end, so
/// that no place is tried twice, and a number of repetitions costs no more than the length of the text.
class PatternMatcher {
 public:
  explicit PatternMatcher(std::string_view text) : m_text(text) {}

  /// Whether the whole of the text, which must be well-formed UTF-8, matches the expression.
  /// \throws CQnException "The value is too long to be matched"
  bool Matches(PatternNode const& root);

 private:
  using Places = std::vector<std::uint32_t>;  // offsets in bytes, ascending

  /// Which places a repetition has reached. A mark is valid if it is that of the present use, so that none needs to be
  /// cleared.
  struct Marks {
    std::vector<std::uint32_t> marks;
    std::uint32_t present = 0;
  };
  class Reached;

  Places Ends(PatternNode const& node, Places starts);
  Places EndsOfCharacter(PatternNode const& node, Places starts);
  Places EndsOfChoice(PatternNode const& choice, Places const& starts);
  Places EndsOfRepeat(PatternNode const& repeat, Places const& starts);
  Places FindEndsOfRepeat(PatternNode const& repeat, Places starts);
  Places WhereConditionHolds(PatternNode const& condition, Places const& starts);
  void Spend(std::size_t work);

  std::string_view m_text;
  std::size_t m_spent = 0;
  std::vector<Marks> m_marks;  // one for each repetition that is under way, and those that were
  std::size_t m_repetitions = 0;
  std::map<std::pair<PatternNode const*, Places>, Places> m_known;
  std::size_t m_knownPlaces = 0;
};

}  // namespace Quillon9
