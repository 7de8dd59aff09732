#include "values/schema_pattern_matcher.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/stack_left.h"
#include "quillon9/base/exceptions.h"
#include "text/utf8_scan.h"
#include "values/pattern_engine.h"
#include "values/pattern_matching.h"
#include "values/remembered_value.h"

namespace Quillon9 {

namespace {

using Kind = PatternNode::Kind;

// The work of a match in places, each of which takes some nanoseconds, and the memory for known answers.
constexpr std::size_t kMostWork = std::size_t{1} << 27;
constexpr std::size_t kMostKnownPlaces = std::size_t{1} << 22;
constexpr std::size_t kCategoryWork = 8;  // asking PCRE takes longer than a step

CompiledPattern CompileCategory(std::string const& pattern) { return CompiledPattern(pattern, pattern); }

bool HasCategory(std::string_view character, CharacterSet::Part const& part) {
  RememberedValue<CompileCategory> const compiled("\\p{" + part.category + "}");
  return (*compiled).Matches(character.data(), static_cast<int>(character.size())) != part.isComplement;
}

/// \p utf8 is \p character in UTF-8.
bool IsIn(CharacterSet const& set, char32_t character, std::string_view utf8) {
  bool const isInPart = std::any_of(set.parts.begin(), set.parts.end(), [&](CharacterSet::Part const& part) {
    return part.category.empty() ? Contains(part.ranges, character) : HasCategory(utf8, part);
  });
  return isInPart != set.isComplement && (set.subtracted == nullptr || !IsIn(*set.subtracted, character, utf8));
}

bool IsOneOf(PatternNode const& node, char32_t character, std::string_view utf8) {
  switch (node.kind) {
    case Kind::Character: return character == node.character;
    case Kind::AnyInLine: return character != '\n' && character != '\r';
    default: return IsIn(*node.set, character, utf8);
  }
}

std::size_t WorkOf(PatternNode const& node) {
  if (node.kind != Kind::Set) return 1;
  std::size_t work = 1;
  for (CharacterSet const* set = node.set.get(); set != nullptr; set = set->subtracted.get()) {
    for (CharacterSet::Part const& part : set->parts) work += part.category.empty() ? 1 : kCategoryWork;
  }
  return work;
}

}  // namespace

/// Takes marks for the time of a repetition.
class PatternMatcher::Reached {
 public:
  explicit Reached(PatternMatcher& matcher) : m_matcher(matcher), m_index(matcher.m_repetitions) {
    if (m_index == matcher.m_marks.size()) {
      matcher.Spend(matcher.m_text.size());
      matcher.m_marks.emplace_back().marks.resize(matcher.m_text.size() + 1);
    }
    ++matcher.m_marks[m_index].present;
    ++matcher.m_repetitions;
  }
  ~Reached() { --m_matcher.m_repetitions; }
  Reached(Reached const&) = delete;
  Reached& operator=(Reached const&) = delete;

  /// Returns whether \p place is new.
  bool Add(std::uint32_t place) {
    Marks& marks = m_matcher.m_marks[m_index];
    if (marks.marks[place] == marks.present) return false;
    marks.marks[place] = marks.present;
    return true;
  }

 private:
  PatternMatcher& m_matcher;
  std::size_t m_index;
};

bool PatternMatcher::Matches(PatternNode const& root) {
  Places const ends = Ends(root, {0});
  return !ends.empty() && ends.back() == m_text.size();
}

void PatternMatcher::Spend(std::size_t work) {
  m_spent += work;
  if (m_spent > kMostWork) ThrowTooLongToMatch();
}

PatternMatcher::Places PatternMatcher::Ends(PatternNode const& node, Places starts) {
  Spend(starts.size() + 1);
  switch (node.kind) {
    case Kind::Character:
    case Kind::AnyInLine:
    case Kind::Set: return EndsOfCharacter(node, std::move(starts));
    case Kind::Choice: return EndsOfChoice(node, starts);
    case Kind::Repeat: return EndsOfRepeat(node, starts);
    case Kind::Condition: return WhereConditionHolds(node, starts);
    case Kind::End:
      if (starts.back() != m_text.size()) return {};
      return {starts.back()};
    case Kind::Sequence: break;
  }
  for (PatternNode const& child : node.children) {
    if (starts.empty()) break;
    starts = Ends(child, std::move(starts));
  }
  return starts;
}

PatternMatcher::Places PatternMatcher::EndsOfCharacter(PatternNode const& node, Places starts) {
  Spend(starts.size() * WorkOf(node));
  std::size_t count = 0;
  for (std::uint32_t const start : starts) {
    if (start == m_text.size()) continue;
    auto const* const bytes = reinterpret_cast<std::uint8_t const*>(m_text.data()) + start;
    std::size_t const length = SequenceLength(bytes, m_text.size() - start);
    if (IsOneOf(node, DecodeSequence(bytes, length), m_text.substr(start, length))) {
      starts[count++] = start + static_cast<std::uint32_t>(length);
    }
  }
  starts.resize(count);
  return starts;
}

PatternMatcher::Places PatternMatcher::EndsOfChoice(PatternNode const& choice, Places const& starts) {
  if (ThreadNesting::OfThread().stack.IsShort()) ThrowTooLongToMatch();
  Places ends = Ends(choice.children.front(), starts);
  for (std::size_t i = 1; i < choice.children.size(); ++i) {
    Places const others = Ends(choice.children[i], starts);
    Places both;
    std::set_union(ends.begin(), ends.end(), others.begin(), others.end(), std::back_inserter(both));
    Spend(both.size());
    ends = std::move(both);
  }
  return ends;
}

// A repetition inside of another one is asked again and again, often from places that it knows.
PatternMatcher::Places PatternMatcher::EndsOfRepeat(PatternNode const& repeat, Places const& starts) {
  auto const key = std::pair(&repeat, starts);
  auto const known = m_known.find(key);
  if (known != m_known.end()) {
    Spend(known->second.size());
    return known->second;
  }
  Places ends = FindEndsOfRepeat(repeat, starts);
  m_knownPlaces += starts.size() + ends.size();
  if (m_knownPlaces <= kMostKnownPlaces) m_known.emplace(key, ends);
  return ends;
}

PatternMatcher::Places PatternMatcher::FindEndsOfRepeat(PatternNode const& repeat, Places starts) {
  PatternNode const& child = repeat.children.front();
  std::uint64_t const least = repeat.isForNothing ? 0 : repeat.least;
  for (std::uint64_t count = 0; count < least && !starts.empty(); ++count) starts = Ends(child, std::move(starts));
  Reached reached(*this);
  for (std::uint32_t const start : starts) reached.Add(start);
  Places ends = starts;
  for (std::uint64_t count = least; count < repeat.most && !starts.empty(); ++count) {
    starts = Ends(child, std::move(starts));
    auto const isOld = [&reached](std::uint32_t place) { return !reached.Add(place); };
    starts.erase(std::remove_if(starts.begin(), starts.end(), isOld), starts.end());
    ends.insert(ends.end(), starts.begin(), starts.end());
  }
  if (!std::is_sorted(ends.begin(), ends.end())) std::sort(ends.begin(), ends.end());
  return ends;
}

PatternMatcher::Places PatternMatcher::WhereConditionHolds(PatternNode const& condition, Places const& starts) {
  Places holding;
  for (std::uint32_t const start : starts) {
    if (!Ends(condition.children.front(), {start}).empty()) holding.push_back(start);
  }
  return holding;
}

}  // namespace Quillon9
