#include <algorithm>

#include "schema/builder.h"
#include "schema/counts.h"
#include "schema/lexical.h"

namespace Quillon9Generator::Schema {

namespace {

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
  return Trimmed(*text) == "true" || Trimmed(*text) == "1";
}

void Builder::ReadOccurrence(Node const& node, Particle& particle) {
  std::string_view const max = Trimmed(node.Find("maxOccurs").value_or("1"));
  int const most = max == "unbounded" ? kTooLarge : ReadCount(max).value_or(1);
  int const least = ReadCount(Trimmed(node.Find("minOccurs").value_or("1"))).value_or(1);
  if (least == kTooLarge) m_diagnostics.Error(node.place, "minOccurs is too large");
  particle.minOccurs = std::min(least, most);
  particle.maxOccurs = most == kTooLarge ? Particle::kUnbounded : most;
}

void Builder::ReadValueConstraint(Node const& node, std::optional<std::string>& defaultValue,
                                  std::optional<std::string>& fixedValue) {
  if (auto const text = node.Find("default")) defaultValue = std::string(*text);
  if (auto const text = node.Find("fixed")) fixedValue = std::string(*text);
}

bool Builder::IsQualified(Document const& document, Node const& node, std::string_view formDefault) {
  std::optional<std::string_view> const own = node.Find("form");
  return Trimmed(own ? *own : document.Root().Find(formDefault).value_or("")) == "qualified";
}

unsigned Builder::ReadDerivations(Document const& document, Node const& node, std::string_view attribute,
                                  unsigned all) {
  std::string const byDefault = std::string(attribute) + "Default";
  std::string_view const text = Trimmed(node.Find(attribute).value_or(document.Root().Find(byDefault).value_or("")));
  if (text == "#all") return all;
  unsigned set = 0;
  for (std::string_view const word : Words(text)) {
    if (word == "extension") set |= kExtension;
    if (word == "restriction") set |= kRestriction;
    if (word == "substitution") set |= kSubstitution;
    if (word == "list") set |= kList;
    if (word == "union") set |= kUnion;
  }
  return set & all;
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
