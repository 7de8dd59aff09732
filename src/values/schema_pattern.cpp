#include "quillon9/values/schema_pattern.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "text/utf8_scan.h"
#include "values/fixed_pattern.h"
#include "values/pattern_engine.h"
#include "values/pattern_matching.h"
#include "values/schema_pattern_access.h"
#include "values/schema_pattern_matcher.h"
#include "values/schema_pattern_syntax.h"
#include "values/schema_pattern_text.h"

namespace Quillon9 {

namespace {

using Answer = CompiledPattern::Answer;

std::uint8_t const* BytesOf(std::string_view text) { return reinterpret_cast<std::uint8_t const*>(text.data()); }
bool IsAscii(std::string_view text) { return AsciiLength(BytesOf(text), text.size()) == text.size(); }
bool IsUtf8(std::string_view text) { return LegalUtf8Length(BytesOf(text), text.size()) == text.size(); }

PatternNode Parse(std::string_view pattern, PatternSyntax syntax) {
  CSchemaPattern::Faults faults;
  return ParsePattern(pattern, syntax, faults);
}

/// An expression that PCRE compiles when it is first needed.
class PcrePattern {
 public:
  explicit PcrePattern(std::string text) : m_text(std::move(text)) {}

  /// Any thread. PCRE also gives up on texts that are not UTF-8.
  Answer Ask(std::string_view text) const {
    std::call_once(m_once, [this] { Compile(); });
    return m_compiled ? m_compiled->TryInAnyThread(text.data(), static_cast<int>(text.size())) : Answer::kGaveUp;
  }

 private:
  void Compile() const {
    try {
      m_compiled.emplace(m_text, m_text);
      m_compiled->Share();
    } catch (CQnException const&) {
      m_compiled.reset();  // too large for PCRE
    }
  }

  std::string m_text;
  std::once_flag mutable m_once;
  std::optional<CompiledPattern> mutable m_compiled;
};

/// The alternatives of a derivation step for PCRE.
struct Step {
  explicit Step(std::vector<std::string> const& alternatives) : severalWays(alternatives.size() > 1) {
    for (std::string const& alternative : alternatives) {
      PatternNode const root = Parse(alternative, PatternSyntax::Schema);
      if (&alternative != &alternatives.front()) text += "|";
      text += TextForPcre(root);
      severalWays = severalWays || HasSeveralWays(root);
    }
  }

  std::string text;
  bool severalWays;
};

}  // namespace

struct CSchemaPattern::Compiled {
  Compiled(std::string_view pattern, PatternSyntax syntax)
      : root(Parse(pattern, syntax)),
        pcre(std::string(kForEveryLength) + "(?:" + TextForPcre(root) + ")\\z"),
        fixed(CFixedPattern::Parse(pattern)) {}

  PatternNode root;
  PcrePattern pcre;
  std::optional<CFixedPattern> fixed;
};

CSchemaPattern::CSchemaPattern(std::string_view pattern)
    : m_compiled(std::make_unique<Compiled const>(pattern, PatternSyntax::Schema)) {}
CSchemaPattern::CSchemaPattern(std::unique_ptr<Compiled const> compiled) : m_compiled(std::move(compiled)) {}
CSchemaPattern::~CSchemaPattern() = default;
CSchemaPattern::CSchemaPattern(CSchemaPattern&&) noexcept = default;
CSchemaPattern& CSchemaPattern::operator=(CSchemaPattern&&) noexcept = default;

bool CSchemaPattern::Matches(std::string_view text) const {
  if (m_compiled->fixed) {
    if (m_compiled->fixed->Matches(text)) return true;
    if (IsAscii(text)) return false;  // "\d" is also for digits of other scripts
  }
  if (text.size() > INT_MAX) ThrowTooLongToMatch();
  Answer const answer = m_compiled->pcre.Ask(text);
  return answer == Answer::kGaveUp ? SchemaPatternAccess::MatchesWithoutPcre(*this, text) : answer == Answer::kYes;
}

CSchemaPattern::Faults CSchemaPattern::Check(std::string_view pattern) {
  Faults faults;
  try {
    ParsePattern(pattern, PatternSyntax::Schema, faults);
  } catch (CQnException const&) {
    // the faults say why
  }
  return faults;
}

std::string CSchemaPattern::Combine(std::vector<std::vector<std::string>> const& steps) {
  std::string conditions;
  std::optional<Step> last;
  for (auto step = steps.begin(); step != steps.end(); ++step) {
    if (std::find(steps.begin(), step, *step) != step) continue;  // a repeated step adds nothing
    if (last) conditions += "(?=(?:" + last->text + ")\\z)";
    last.emplace(*step);
  }
  if (!last) return "";
  if (conditions.empty() && !last->severalWays && !last->text.empty()) return last->text;
  if (!conditions.empty()) conditions.insert(0, kForEveryLength);
  return conditions + "(?:" + last->text + ")\\z";
}

CSchemaPattern SchemaPatternAccess::FromRestriction(std::string_view pattern) {
  return CSchemaPattern(std::make_unique<CSchemaPattern::Compiled const>(pattern, PatternSyntax::Translated));
}

bool SchemaPatternAccess::MatchesWithoutPcre(CSchemaPattern const& pattern, std::string_view text) {
  return IsUtf8(text) && PatternMatcher(text).Matches(pattern.m_compiled->root);
}

}  // namespace Quillon9
