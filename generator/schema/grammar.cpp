#include "schema/grammar.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "schema/grammar_rules.h"
#include "schema/lexical.h"
#include "schema/representation.h"

namespace Quillon9Generator::Schema {

namespace {

std::string Named(Node const& node) { return "xs:" + std::string(node.name); }

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

/// What XML Schema 1.1 added and what only checks documents, so that leaving it out does no harm to the classes.
bool IsCheckOfVersion11(Tag tag) { return tag == Tag::Assert || tag == Tag::Assertion || tag == Tag::ExplicitTimezone; }

bool IsCheckOfVersion11(std::string_view attribute) {
  return attribute == "notNamespace" || attribute == "notQName" || attribute == "inheritable" ||
         attribute == "xpathDefaultNamespace";
}

bool IsStructureOfVersion11(Tag tag) {
  return tag == Tag::Alternative || tag == Tag::OpenContent || tag == Tag::DefaultOpenContent || tag == Tag::Override;
}

class Grammar {
 public:
  explicit Grammar(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  void Check(Node const& node, Form form) {
    Rule const& rule = RuleOf(form);
    CheckAttributes(node, rule);
    bool const isFree = form == Form::Appinfo || form == Form::Documentation;
    if (isFree) return CheckDocumentation(node);
    if (!Trimmed(node.text).empty()) m_diagnostics.Error(node.place, "unexpected text in " + Named(node));
    CheckChildren(node, rule);
    CheckRepresentation(node, form, m_diagnostics);
  }

 private:
  void CheckAttributes(Node const& node, Rule const& rule) {
    for (NodeAttribute const& attribute : node.attributes) {
      if (attribute.ns.empty()) {
        CheckAttribute(node, attribute, rule);
      } else if (attribute.ns == kSchemaNamespace) {
        Report(node, Named(node) + " has no attribute " + Quoted(attribute.name) + " of the namespace of XML Schema");
      }
    }
    for (AttributeRule const& wanted : rule.attributes) {
      if (wanted.required && !node.Has(wanted.name)) Report(node, Named(node) + " has no " + std::string(wanted.name));
    }
  }

  void CheckAttribute(Node const& node, NodeAttribute const& attribute, Rule const& rule) {
    if (attribute.name == "id") return CheckId(node, Trimmed(attribute.value));
    auto const found = std::find_if(rule.attributes.begin(), rule.attributes.end(),
                                    [&](AttributeRule const& each) { return each.name == attribute.name; });
    if (found != rule.attributes.end()) {
      std::string const fault = FaultOf(found->kind, attribute.name, attribute.value);
      if (!fault.empty()) Report(node, fault);
    } else if (IsCheckOfVersion11(attribute.name)) {
      m_diagnostics.Warning(
          node.place, "the attribute " + Quoted(attribute.name) + " belongs to XML Schema 1.1 and is not checked");
    } else {
      Report(node, Named(node) + " has no attribute " + Quoted(attribute.name));
    }
  }

  void CheckId(Node const& node, std::string_view id) {
    std::string const fault = FaultOf(AttributeKind::Id, "id", id);
    if (!fault.empty()) return Report(node, fault);
    if (!m_ids.insert(id).second) Report(node, "the id " + Quoted(id) + " stands twice in this file");
  }

  void CheckDocumentation(Node const& node) {
    for (NodeAttribute const& attribute : node.attributes) {
      std::string_view const language = Trimmed(attribute.value);
      if (attribute.ns != kXmlNamespace || attribute.name != "lang" || language.empty()) continue;
      if (!IsLanguage(language)) Report(node, Quoted(language) + " is not a language");
    }
  }

  void CheckChildren(Node const& node, Rule const& rule) {
    Slot const* current = rule.slots.data();
    Slot const* const end = current + rule.slots.size();
    Node const* last = nullptr;  // the child before
    for (Node const& child : node.children) {
      Slot const* found = nullptr;
      Form const form = FormOf(child, current, end, found);
      if (found == nullptr) {
        ReportChild(node, child, last, rule);
        continue;
      }
      CheckRequired(node, current, found, last);
      Check(child, form);
      current = found->repeated ? found : found + 1;
      if (child.tag == Tag::SimpleContent || child.tag == Tag::ComplexContent) current = end;
      last = &child;
    }
    CheckRequired(node, current, end, last);
  }

  /// Find the slot from \p current on that takes \p child.
  static Form FormOf(Node const& child, Slot const* current, Slot const* end, Slot const*& found) {
    for (Slot const* slot = current; slot != end; ++slot) {
      for (Slot::Child const& each : slot->children) {
        if (each.tag != child.tag) continue;
        found = slot;
        return each.form;
      }
    }
    return Form::Schema;
  }

  void CheckRequired(Node const& node, Slot const* from, Slot const* to, Node const* last) {
    for (Slot const* slot = from; slot != to; ++slot) {
      if (!slot->required || (slot->repeated && last != nullptr && Takes(*slot, *last))) continue;
      std::string names;
      for (std::size_t i = 0; i != slot->children.size(); ++i) {
        if (i != 0) names += i + 1 == slot->children.size() ? " or " : ", ";
        names += "xs:" + std::string(NameOf(slot->children[i].tag));
      }
      Report(node, Named(node) + " needs " + names);
    }
  }

  static bool Takes(Slot const& slot, Node const& child) {
    return std::any_of(slot.children.begin(), slot.children.end(),
                       [&](Slot::Child const& each) { return each.tag == child.tag; });
  }

  void ReportChild(Node const& node, Node const& child, Node const* last, Rule const& rule) {
    bool const isKnown =
        std::any_of(rule.slots.begin(), rule.slots.end(), [&](Slot const& slot) { return Takes(slot, child); });
    if (isKnown && last != nullptr) {
      bool const isAlternative = std::any_of(rule.slots.begin(), rule.slots.end(), [&](Slot const& slot) {
        return Takes(slot, child) && Takes(slot, *last);
      });
      bool const ends = last->tag == Tag::SimpleContent || last->tag == Tag::ComplexContent;
      Report(child, Named(child) + " cannot stand " + (isAlternative || ends ? "next to " : "after ") + Named(*last) +
                        " in " + Named(node));
    } else if (IsCheckOfVersion11(child.tag)) {
      m_diagnostics.Warning(child.place, Named(child) + " belongs to XML Schema 1.1 and is not checked");
    } else if (IsStructureOfVersion11(child.tag)) {
      Report(child, Named(child) + " belongs to XML Schema 1.1, which is not supported");
    } else if (child.tag == Tag::Foreign) {
      Report(child, "unexpected element " + Quoted(child.name) + " in " + Named(node));
    } else if (child.tag == Tag::Unknown && node.tag == Tag::Restriction) {
      Report(child, "unknown facet " + Named(child));
    } else {
      Report(child, "unexpected " + Named(child) + " in " + Named(node));
    }
  }

  void Report(Node const& node, std::string text) { m_diagnostics.Error(node.place, std::move(text)); }

  Diagnostics& m_diagnostics;
  std::unordered_set<std::string_view> m_ids;
};

}  // namespace

void CheckGrammar(Node const& schema, Diagnostics& diagnostics) { Grammar(diagnostics).Check(schema, Form::Schema); }

}  // namespace Quillon9Generator::Schema
