#include <algorithm>
#include <limits>

#include "schema/builder.h"

namespace Quillon9Generator::Schema {

namespace {

constexpr int kTooLarge = std::numeric_limits<int>::max();

/// Return the number, kTooLarge beyond the range, or no value for another text.
std::optional<int> ReadCount(std::string_view text) {
  text = Trimmed(text);
  if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  int value = 0;
  for (char const digit : text) {
    if (value > (kTooLarge - 9) / 10) return kTooLarge;
    value = value * 10 + (digit - '0');
  }
  return value;
}

/// Return \p text with its lines trimmed, without empty lines around it and with at most one between others.
std::string WithTrimmedLines(std::string_view text) {
  std::string result;
  bool isParagraphOpen = true;
  text = Trimmed(text);
  while (!text.empty()) {
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view const line = Trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() && !isParagraphOpen) continue;
    if (!result.empty()) result += '\n';
    result += line;
    isParagraphOpen = !line.empty();
  }
  return result;
}

}  // namespace

bool Builder::ReadBool(Node const& node, std::string_view attribute, bool otherwise) {
  std::optional<std::string_view> const text = node.Find(attribute);
  if (!text) return otherwise;
  std::string_view const value = Trimmed(*text);
  if (value == "true" || value == "1") return true;
  if (value != "false" && value != "0") {
    m_diagnostics.Error(node.place,
                        std::string(attribute) + "=\"" + std::string(value) + "\" is neither true nor false");
  }
  return false;
}

unsigned Builder::ReadDerivations(Document const& document, Node const& node, std::string_view attribute,
                                  unsigned all) {
  std::string const byDefault = std::string(attribute) + "Default";
  std::string_view text = Trimmed(node.Find(attribute).value_or(document.Root().Find(byDefault).value_or("")));
  if (text == "#all") return all;
  unsigned set = 0;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find_first_of(" \t\r\n"), text.size());
    std::string_view const word = text.substr(0, end);
    if (word == "extension") set |= kExtension;
    if (word == "restriction") set |= kRestriction;
    if (word == "substitution") set |= kSubstitution;
    text = Trimmed(text.substr(end));
  }
  return set & all;
}

void Builder::ReadOccurrence(Node const& node, Particle& particle) {
  std::string_view const min = Trimmed(node.Find("minOccurs").value_or("1"));
  std::string_view const max = Trimmed(node.Find("maxOccurs").value_or("1"));
  std::optional<int> const minCount = ReadCount(min);
  std::optional<int> const maxCount = max == "unbounded" ? kTooLarge : ReadCount(max);
  if (!minCount || *minCount == kTooLarge) {
    m_diagnostics.Error(node.place, "wrong minOccurs \"" + std::string(min) + "\"");
  } else if (!maxCount) {
    m_diagnostics.Error(node.place, "wrong maxOccurs \"" + std::string(max) + "\"");
  } else if (*minCount > *maxCount) {
    m_diagnostics.Error(node.place, "minOccurs is greater than maxOccurs");
  } else {
    particle.minOccurs = *minCount;
    particle.maxOccurs = *maxCount == kTooLarge ? Particle::kUnbounded : *maxCount;
  }
}

void Builder::ReadValueConstraint(Node const& node, std::optional<std::string>& defaultValue,
                                  std::optional<std::string>& fixedValue) {
  if (auto const text = node.Find("default")) defaultValue = std::string(*text);
  if (auto const text = node.Find("fixed")) fixedValue = std::string(*text);
  if (defaultValue && fixedValue) m_diagnostics.Error(node.place, "default and fixed cannot stand together");
}

bool Builder::IsQualified(Document const& document, Node const& node, std::string_view formDefault) {
  std::optional<std::string_view> const own = node.Find("form");
  std::string_view const form = Trimmed(own ? *own : document.Root().Find(formDefault).value_or("unqualified"));
  if (form != "qualified" && form != "unqualified") {
    m_diagnostics.Error(own ? node.place : document.Root().place,
                        "the form \"" + std::string(form) + "\" is neither qualified nor unqualified");
  }
  return form == "qualified";
}

void Builder::Describe(Component& component, Node const& node) {
  component.place = node.place;
  for (Node const& annotation : node.children) {
    if (annotation.tag != Tag::Annotation) continue;
    for (Node const& documentation : annotation.children) {
      if (documentation.tag != Tag::Documentation) continue;
      std::string const text = WithTrimmedLines(documentation.text);
      if (text.empty()) continue;
      if (!component.documentation.empty()) component.documentation += '\n';
      component.documentation += text;
    }
  }
}

}  // namespace Quillon9Generator::Schema
