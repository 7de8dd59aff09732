#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/values/schema_pattern.h"
#include "values/character_ranges.h"

namespace Quillon9 {

/// A set of characters: "[...]" or an escape such as "\i".
struct CharacterSet {
  /// One of the parts whose characters are in the set: ranges in the order in which they were written, or a category.
  struct Part {
    CharacterRanges ranges;
    std::string category;       ///< not empty: a category of Unicode
    bool isComplement = false;  ///< of the category
  };
  std::vector<Part> parts;
  bool isComplement = false;                 ///< of all parts
  std::unique_ptr<CharacterSet> subtracted;  ///< null for none
};

/// A part of a regular expression.
struct PatternNode {
  enum class Kind : std::uint8_t {
    Character,
    AnyInLine,  ///< every character but the two that end a line
    Set,
    Sequence,
    Choice,    ///< one of its children, which are sequences; every group is one
    Repeat,    ///< its only child, at least and at most that often
    End,       ///< nothing, at the end of the text
    Condition  ///< nothing, where its only child matches the text that follows
  };
  /// No limit on a number of repetitions.
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

  explicit PatternNode(Kind k) : kind(k) {}

  Kind kind;
  char32_t character = 0;
  std::unique_ptr<CharacterSet> set;
  std::uint64_t least = 0;
  std::uint64_t most = 0;
  /// Whether the child of a repetition matches the empty text, so that least does not count.
  bool isForNothing = false;
  std::vector<PatternNode> children;
};

enum class PatternSyntax : std::uint8_t {
  Schema,  ///< W3C XML Schema Part 2, appendix F (https://www.w3.org/TR/xmlschema-2/#regexs)
  /// The same, and what TextForPcre() and CSchemaPattern::Combine() write in addition: groups without a number,
  /// conditions, the end of the text, and characters by their code. None of these begins like an expression of Schema.
  Translated
};

/// Read a regular expression in UTF-8. The result is a choice, with at most 100 levels of groups. \p faults receives what
/// is wrong.
/// \throws CQnException as ThrowInvalidPattern() does, once \p faults has the error.
PatternNode ParsePattern(std::string_view text, PatternSyntax syntax, CSchemaPattern::Faults& faults);

}  // namespace Quillon9
