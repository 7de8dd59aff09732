#include "schema/attribute_kinds.h"

#include <algorithm>
#include <initializer_list>

#include "schema/counts.h"
#include "schema/lexical.h"
#include "schema/node.h"

namespace Quillon9Generator::Schema {

namespace {

using Texts = std::initializer_list<std::string_view>;

bool IsOneOf(std::string_view text, Texts texts) { return std::find(texts.begin(), texts.end(), text) != texts.end(); }

bool IsCount(std::string_view text) { return ReadCount(text).has_value(); }

bool AreOf(std::string_view list, Texts texts) {
  std::vector<std::string_view> const words = Words(list);
  return std::all_of(words.begin(), words.end(), [&](std::string_view word) { return IsOneOf(word, texts); });
}

bool AreQNames(std::string_view list) {
  std::vector<std::string_view> const words = Words(list);
  return std::all_of(words.begin(), words.end(), IsQName);
}

bool IsUriInWildcard(std::string_view word) { return word.substr(0, 2) != "##" && IsUri(word); }

bool AreNamespaces(std::string_view text) {
  if (text == "##any" || text == "##other") return true;
  std::vector<std::string_view> const words = Words(text);
  return std::all_of(words.begin(), words.end(), [](std::string_view word) {
    return IsOneOf(word, {"##targetNamespace", "##local"}) || IsUriInWildcard(word);
  });
}

bool IsRight(AttributeKind kind, std::string_view value) {
  switch (kind) {
    case AttributeKind::Text: return true;
    case AttributeKind::Id:
    case AttributeKind::Name: return IsNCName(value);
    case AttributeKind::QualifiedName: return IsQName(value);
    case AttributeKind::QualifiedNames: return AreQNames(value);
    case AttributeKind::Boolean: return IsOneOf(value, {"true", "false", "1", "0"});
    case AttributeKind::Count: return IsCount(value);
    case AttributeKind::CountOrUnbounded: return value == "unbounded" || IsCount(value);
    case AttributeKind::Uri: return IsUri(value);
    case AttributeKind::Form: return IsOneOf(value, {"qualified", "unqualified"});
    case AttributeKind::Use: return IsOneOf(value, {"optional", "required", "prohibited"});
    case AttributeKind::Processing: return IsOneOf(value, {"strict", "lax", "skip"});
    case AttributeKind::Namespaces: return AreNamespaces(value);
    case AttributeKind::DerivationSet: return value == "#all" || AreOf(value, {"extension", "restriction"});
    case AttributeKind::FinalOfSimpleType: return value == "#all" || AreOf(value, {"list", "union", "restriction"});
    case AttributeKind::FinalDefault:
      return value == "#all" || AreOf(value, {"extension", "restriction", "list", "union"});
    case AttributeKind::Block: return value == "#all" || AreOf(value, {"extension", "restriction", "substitution"});
  }
  return true;
}

}  // namespace

std::string FaultOf(AttributeKind kind, std::string_view name, std::string_view value) {
  value = Trimmed(value);
  if (IsRight(kind, value)) return {};
  std::string const quoted = "\"" + std::string(value) + "\"";
  switch (kind) {
    case AttributeKind::Id:
    case AttributeKind::Name:
    case AttributeKind::QualifiedName: return quoted + " is not a name";
    case AttributeKind::QualifiedNames: return quoted + " is not a list of names";
    case AttributeKind::Boolean: return std::string(name) + "=" + quoted + " is neither true nor false";
    case AttributeKind::Form: return "the form " + quoted + " is neither qualified nor unqualified";
    case AttributeKind::Uri: return std::string(name) + "=" + quoted + " is not a URI";
    default: return "wrong " + std::string(name) + " " + quoted;
  }
}

}  // namespace Quillon9Generator::Schema
