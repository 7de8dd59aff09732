#include "values/schema_pattern_text.h"

#include <algorithm>
#include <cstdio>

namespace Quillon9 {

namespace {

using Kind = PatternNode::Kind;

std::string Literal(char32_t c, std::string_view escaped) {
  if (c < ' ' || c > '~') {
    char code[16];
    std::snprintf(code, sizeof code, "\\x{%X}", static_cast<unsigned>(c));
    return code;
  }
  std::string const text(1, static_cast<char>(c));
  return escaped.find(text) != std::string_view::npos ? "\\" + text : text;
}

std::string OutsideClass(char32_t c) { return Literal(c, "\\^$.|?*+()[]{}"); }
std::string InClass(char32_t c) { return Literal(c, "\\^-[]"); }

std::string TextOf(CharacterSet::Part const& part) {
  if (!part.category.empty()) return (part.isComplement ? "\\P{" : "\\p{") + part.category + "}";
  std::string text;
  for (auto const& [first, last] : part.ranges) {
    text += InClass(first);
    if (first != last) text += "-" + InClass(last);
  }
  return text;
}

std::string TextOf(CharacterSet const& set) {
  std::string text = set.isComplement ? "[^" : "[";
  for (CharacterSet::Part const& part : set.parts) text += TextOf(part);
  text += "]";
  return set.subtracted == nullptr ? text : "(?:(?!" + TextOf(*set.subtracted) + ")" + text + ")";
}

std::string CountsOf(PatternNode const& repeat) {
  bool const isLimited = repeat.most != PatternNode::kUnlimited;
  if (repeat.least == 0 && repeat.most == 1) return "?";
  if (!isLimited && repeat.least <= 1) return repeat.least == 0 ? "*" : "+";
  std::string const least = "{" + std::to_string(repeat.least);
  if (repeat.most == repeat.least) return least + "}";
  return least + "," + (isLimited ? std::to_string(repeat.most) : "") + "}";
}

void AppendChildren(std::string& text, PatternNode const& node, std::string_view separator);

void AppendAtom(std::string& text, PatternNode const& node) {
  switch (node.kind) {
    case Kind::Character: text += OutsideClass(node.character); break;
    case Kind::AnyInLine: text += "[^\\n\\r]"; break;
    case Kind::Set: text += TextOf(*node.set); break;
    case Kind::Sequence: AppendChildren(text, node, ""); break;
    case Kind::Choice:
      text += "(?:";
      AppendChildren(text, node, "|");
      text += ")";
      break;
    case Kind::Repeat:
      AppendAtom(text, node.children.front());
      text += CountsOf(node);
      break;
    case Kind::End: text += "\\z"; break;
    case Kind::Condition:
      text += "(?=";
      AppendChildren(text, node.children.front(), "|");
      text += ")";
      break;
  }
}

void AppendChildren(std::string& text, PatternNode const& node, std::string_view separator) {
  for (PatternNode const& child : node.children) {
    if (&child != &node.children.front()) text += separator;
    AppendAtom(text, child);
  }
}

}  // namespace

std::string TextForPcre(PatternNode const& node) {
  std::string text;
  AppendChildren(text, node, "|");
  return text;
}

bool HasSeveralWays(PatternNode const& node) {
  if (node.kind == Kind::Choice && node.children.size() > 1) return true;
  if (node.kind == Kind::Repeat && node.least != node.most) return true;
  return std::any_of(node.children.begin(), node.children.end(), HasSeveralWays);
}

}  // namespace Quillon9
