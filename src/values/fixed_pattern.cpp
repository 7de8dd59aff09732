#include "values/fixed_pattern.h"

#include <algorithm>
#include <cstddef>

#include "values/number_text.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kMostCharacters = 64;

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Characters that stand for themselves anywhere, inside a class and outside of it.
bool IsPlain(char c) { return IsLetter(c) || IsDigit(c) || c == ' ' || c == '_'; }

bool IsMark(char c) { return std::string_view("-,:;/@=#%&!'\"<>~").find(c) != std::string_view::npos; }

bool SkipStart(std::string_view& text, std::string_view start) {
  if (text.substr(0, start.size()) != start) return false;
  text.remove_prefix(start.size());
  return true;
}

/// The number of repetitions at the start of \p text, 1 if there is none; 0 if it is malformed.
std::size_t TakeCount(std::string_view& text) {
  if (!SkipStart(text, "{")) return 1;
  std::size_t count = 0;
  while (!text.empty() && IsDigit(text.front()) && count <= kMostCharacters) {
    count = count * 10 + static_cast<std::size_t>(text.front() - '0');
    text.remove_prefix(1);
  }
  return SkipStart(text, "}") ? count : 0;
}

}  // namespace

std::optional<CFixedPattern> CFixedPattern::Parse(std::string_view text) {
  CFixedPattern pattern;
  while (!text.empty()) {
    std::optional<CharacterSet> const set = TakeSet(text);
    if (!set) return std::nullopt;
    std::size_t const count = TakeCount(text);
    if (count == 0 || pattern.m_sets.size() + count > kMostCharacters) return std::nullopt;
    pattern.m_sets.insert(pattern.m_sets.end(), count, *set);
  }
  return pattern;
}

std::optional<CFixedPattern::CharacterSet> CFixedPattern::TakeSet(std::string_view& text) {
  CharacterSet set;
  if (SkipStart(text, "[")) return TakeClass(text);
  if (SkipStart(text, "\\d")) {
    set.AddRange('0', '9');
    return set;
  }
  if (text.front() == '\\' && (text.substr(1, 1) == "-" || text.substr(1, 1) == ".")) {
    text.remove_prefix(1);
  } else if (!IsPlain(text.front()) && !IsMark(text.front())) {
    return std::nullopt;
  }
  set.Add(static_cast<unsigned char>(text.front()));
  text.remove_prefix(1);
  return set;
}

std::optional<CFixedPattern::CharacterSet> CFixedPattern::TakeClass(std::string_view& text) {
  CharacterSet set;
  do {
    if (SkipStart(text, "\\p{Nd}")) {  // as the generator writes the "\d" of a schema
      set.AddRange('0', '9');
      if (text.substr(0, 1) == "-") return std::nullopt;
      continue;
    }
    if (text.empty() || !IsPlain(text.front())) return std::nullopt;
    char const first = text.front();
    text.remove_prefix(1);
    char last = first;
    if (SkipStart(text, "-")) {
      if (text.empty() || !IsPlain(text.front()) || text.front() < first) return std::nullopt;
      last = text.front();
      text.remove_prefix(1);
    }
    set.AddRange(first, last);
  } while (!SkipStart(text, "]"));
  return set;
}

bool CFixedPattern::Matches(std::string_view value) const {
  if (value.size() != m_sets.size()) return false;
  auto set = m_sets.begin();
  return std::all_of(value.begin(), value.end(), [&](char c) { return (set++)->Has(static_cast<unsigned char>(c)); });
}

}  // namespace Quillon9
