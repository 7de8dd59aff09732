#include "schema/node.h"

#include <algorithm>
#include <unordered_map>

namespace Quillon9Generator::Schema {

namespace {

std::unordered_map<std::string_view, Tag> const& Tags() {
  static auto const& tags = *new std::unordered_map<std::string_view, Tag>{
      {"all", Tag::All},
      {"alternative", Tag::Alternative},
      {"annotation", Tag::Annotation},
      {"any", Tag::Any},
      {"anyAttribute", Tag::AnyAttribute},
      {"appinfo", Tag::Appinfo},
      {"assert", Tag::Assert},
      {"assertion", Tag::Assertion},
      {"attribute", Tag::Attribute},
      {"attributeGroup", Tag::AttributeGroup},
      {"choice", Tag::Choice},
      {"complexContent", Tag::ComplexContent},
      {"complexType", Tag::ComplexType},
      {"defaultOpenContent", Tag::DefaultOpenContent},
      {"documentation", Tag::Documentation},
      {"element", Tag::Element},
      {"enumeration", Tag::Enumeration},
      {"explicitTimezone", Tag::ExplicitTimezone},
      {"extension", Tag::Extension},
      {"field", Tag::Field},
      {"fractionDigits", Tag::FractionDigits},
      {"group", Tag::Group},
      {"import", Tag::Import},
      {"include", Tag::Include},
      {"key", Tag::Key},
      {"keyref", Tag::Keyref},
      {"length", Tag::Length},
      {"list", Tag::List},
      {"maxExclusive", Tag::MaxExclusive},
      {"maxInclusive", Tag::MaxInclusive},
      {"maxLength", Tag::MaxLength},
      {"minExclusive", Tag::MinExclusive},
      {"minInclusive", Tag::MinInclusive},
      {"minLength", Tag::MinLength},
      {"notation", Tag::Notation},
      {"openContent", Tag::OpenContent},
      {"override", Tag::Override},
      {"pattern", Tag::Pattern},
      {"redefine", Tag::Redefine},
      {"restriction", Tag::Restriction},
      {"schema", Tag::Schema},
      {"selector", Tag::Selector},
      {"sequence", Tag::Sequence},
      {"simpleContent", Tag::SimpleContent},
      {"simpleType", Tag::SimpleType},
      {"totalDigits", Tag::TotalDigits},
      {"union", Tag::Union},
      {"unique", Tag::Unique},
      {"whiteSpace", Tag::WhiteSpace},
  };
  return tags;
}

}  // namespace

Tag TagOf(std::string_view localName) {
  auto const found = Tags().find(localName);
  return found != Tags().end() ? found->second : Tag::Unknown;
}

std::string_view NameOf(Tag tag) {
  auto const found = std::find_if(Tags().begin(), Tags().end(), [=](auto const& each) { return each.second == tag; });
  return found != Tags().end() ? found->first : std::string_view();
}

std::optional<std::string_view> Scope::Find(std::string_view prefix) const {
  for (Scope const* scope = this; scope != nullptr; scope = scope->outer) {
    auto const& declared = scope->bindings;
    auto const found =
        std::lower_bound(declared.begin(), declared.end(), prefix,
                         [](auto const& binding, std::string_view wanted) { return binding.first < wanted; });
    if (found != declared.end() && found->first == prefix) return found->second;
  }
  if (prefix == "xml") return kXmlNamespace;
  if (prefix.empty()) return std::string_view();
  return std::nullopt;
}

std::optional<std::string_view> Node::Find(std::string_view attribute) const {
  for (NodeAttribute const& candidate : attributes) {
    if (candidate.name == attribute && candidate.ns.empty()) return candidate.value;
  }
  return std::nullopt;
}

Node const* Node::Child(Tag child) const {
  auto const found =
      std::find_if(children.begin(), children.end(), [=](Node const& node) { return node.tag == child; });
  return found != children.end() ? &*found : nullptr;
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  std::size_t const first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

}  // namespace Quillon9Generator::Schema
