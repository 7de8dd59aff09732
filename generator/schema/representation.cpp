#include "schema/representation.h"

#include <initializer_list>
#include <limits>
#include <string>

#include "schema/counts.h"
#include "schema/xpath.h"

namespace Quillon9Generator::Schema {

namespace {

class Representation {
 public:
  Representation(Node const& node, Diagnostics& diagnostics) : m_node(node), m_diagnostics(diagnostics) {}

  void CheckElement(Form form) {
    CheckReference({"name", "type", "default", "fixed", "nillable", "block", "form"},
                   {Tag::SimpleType, Tag::ComplexType, Tag::Key, Tag::Keyref, Tag::Unique});
    CheckType({Tag::SimpleType, Tag::ComplexType});
    CheckValueConstraint();
    CheckOccurrence();
    if (form == Form::ElementOfAll) CheckMost("an element in xs:all cannot occur more than once");
  }

  void CheckAttribute() {
    CheckReference({"name", "type", "form"}, {Tag::SimpleType});
    CheckType({Tag::SimpleType});
    CheckValueConstraint();
    std::string_view const use = Value("use", "optional");
    if (m_node.Has("default") && use != "optional") {
      Report("an attribute with a default cannot be " + std::string(use));
    }
    if (Value("name", "") == "xmlns") Report("an attribute cannot have the name \"xmlns\"");
  }

  void CheckOccurrence() {
    std::optional<int> const min = ReadCount(Value("minOccurs", "1"));
    std::string_view const most = Value("maxOccurs", "1");
    std::optional<int> const max = most == "unbounded" ? kTooLarge : ReadCount(most);
    if (min && max && *min > *max) Report("minOccurs is greater than maxOccurs");
  }

  void CheckAll() {
    CheckOccurrence();
    std::optional<int> const max = ReadCount(Value("maxOccurs", "1"));
    if (max != 1) Report("xs:all must occur once at most");
  }

  void CheckMost(char const* text) {
    std::optional<int> const max = ReadCount(Value("maxOccurs", "1"));
    if (!max || *max > 1) Report(text);
  }

  void CheckOneType(char const* attribute) {
    if (m_node.Has(attribute) != (m_node.Child(Tag::SimpleType) != nullptr)) return;
    Report("xs:" + std::string(m_node.name) + " needs either " + attribute + " or xs:simpleType");
  }

  void CheckUnion() {
    if (Value("memberTypes", "").empty() && m_node.Child(Tag::SimpleType) == nullptr) {
      Report("xs:union has no member types");
    }
  }

  void CheckPath(bool mayEndInAttribute) {
    std::string const fault = FaultOfPath(Value("xpath", ""), mayEndInAttribute, *m_node.scope);
    if (!fault.empty()) {
      Report("wrong path \"" + std::string(Value("xpath", "")) + "\" of xs:" + std::string(m_node.name) + ": " + fault);
    }
  }

  void CheckWildcard() {
    if (m_node.Has("namespace") && m_node.Has("notNamespace")) {
      Report("namespace and notNamespace cannot stand together");
    }
  }

  void CheckNotation() {
    if (!m_node.Has("public") && !m_node.Has("system")) Report("xs:notation needs public or system");
  }

  void CheckNotEmpty(char const* attribute) {
    if (m_node.Has(attribute) && Value(attribute, "").empty()) {
      Report("the " + std::string(attribute) + " of xs:" + std::string(m_node.name) + " cannot be empty");
    }
  }

 private:
  std::string_view Value(std::string_view attribute, std::string_view otherwise) const {
    return Trimmed(m_node.Find(attribute).value_or(otherwise));
  }

  /// With ref, what the referred declaration has cannot stand here. Without, a name is needed.
  void CheckReference(std::initializer_list<char const*> attributes, std::initializer_list<Tag> children) {
    std::string const self = "xs:" + std::string(m_node.name);
    if (!m_node.Has("ref")) {
      if (!m_node.Has("name")) Report(self + " has no name");
      return;
    }
    for (char const* attribute : attributes) {
      if (m_node.Has(attribute)) Report(self + " with ref cannot have the attribute \"" + attribute + "\"");
    }
    for (Tag child : children) {
      if (m_node.Child(child) != nullptr) Report(self + " with ref cannot have xs:" + std::string(NameOf(child)));
    }
  }

  void CheckType(std::initializer_list<Tag> children) {
    for (Tag child : children) {
      if (!m_node.Has("type") || m_node.Child(child) == nullptr) continue;
      Report("xs:" + std::string(m_node.name) + " has both an attribute type and an anonymous type");
    }
  }

  void CheckValueConstraint() {
    if (m_node.Has("default") && m_node.Has("fixed")) Report("default and fixed cannot stand together");
  }

  void Report(std::string text) { m_diagnostics.Error(m_node.place, std::move(text)); }

  Node const& m_node;
  Diagnostics& m_diagnostics;
};

}  // namespace

void CheckRepresentation(Node const& node, Form form, Diagnostics& diagnostics) {
  Representation check(node, diagnostics);
  switch (form) {
    case Form::GlobalElement:
    case Form::LocalElement:
    case Form::ElementOfAll: return check.CheckElement(form);
    case Form::GlobalAttribute:
    case Form::LocalAttribute: return check.CheckAttribute();
    case Form::GroupReference:
    case Form::Model: return check.CheckOccurrence();
    case Form::Any: check.CheckOccurrence(); return check.CheckWildcard();
    case Form::AnyAttribute: return check.CheckWildcard();
    case Form::All: return check.CheckAll();
    case Form::RestrictionOfSimpleType: return check.CheckOneType("base");
    case Form::List: return check.CheckOneType("itemType");
    case Form::Union: return check.CheckUnion();
    case Form::Selector: return check.CheckPath(false);
    case Form::Field: return check.CheckPath(true);
    case Form::Notation: return check.CheckNotation();
    case Form::Schema: return check.CheckNotEmpty("targetNamespace");
    case Form::Import: return check.CheckNotEmpty("namespace");
    default: return;
  }
}

}  // namespace Quillon9Generator::Schema
