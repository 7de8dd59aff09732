#pragma once

#include <map>
#include <string>
#include <vector>

#include "pages/contents.h"

namespace Quillon9Generator::Pages {

/// A reference to \p entry from any page.
std::string LinkTo(Entry const& entry);

/// Prints entries, and notes which of them refer to which.
class Entries {
 public:
  explicit Entries(Contents const& contents) : m_contents(contents) {}

  /// What the schema says about \p entry.
  std::string Print(Entry const& entry);
  /// The entries that refer to \p entry, of those that have been printed.
  std::string Users(Entry const& entry) const;

 private:
  using Facts = std::string;  // the rows of a definition list

  std::string Body(Entry const& entry);
  std::string ElementBody(Schema::ElementDeclaration const& element);
  std::string AttributeBody(Schema::AttributeDeclaration const& attribute);
  std::string ComplexTypeBody(Schema::ComplexType const& type);
  std::string SimpleTypeBody(Schema::SimpleType const& type);
  std::string GroupBody(Schema::GroupDefinition const& group);
  Facts FactsOf(Schema::ComplexType const& type);
  Facts ConstraintsOf(Schema::ElementDeclaration const& element);

  /// A reference to the component, or its name where it has no entry.
  std::string Mention(Schema::Component const* component, Schema::QualifiedName const& name) const;
  /// The same, which makes the current entry a user of it.
  std::string Link(Schema::Component const* component, Schema::QualifiedName const& name);
  std::string Link(Schema::SimpleType const& type);
  /// A reference to the type, or the definition of a type that has no entry.
  std::string TypeText(Schema::SimpleType const& type);
  std::string TypeText(Schema::ElementDeclaration const& element);
  std::string Derivation(Schema::ComplexType const& type);
  std::string Definition(Schema::SimpleType const& type);
  /// The facets that \p type adds to those of \p base.
  std::string FacetList(Schema::SimpleType const& type, Schema::SimpleType const& base);
  std::string Values(Schema::SimpleType const& type);
  /// The nearest type from the base of \p type up that has an entry or is built in.
  Schema::SimpleType const& KnownBase(Schema::SimpleType const& type) const;

  // The rows of a table of content, at a depth of nesting.
  void AddContent(Schema::ComplexType const& type, int depth);
  void AddText(Schema::ComplexType const& type, int depth);
  void AddParticle(Schema::Particle const& particle, int depth);
  void AddElement(Schema::ElementDeclaration const& element, Schema::Particle const& particle, int depth);
  void AddGroup(Schema::ModelGroup const& group, Schema::Particle const& particle, int depth);
  void AddAttributes(Schema::ComplexType const& type, bool isExtension, int depth);
  void AddAttribute(Schema::AttributeUse const& use, int depth);
  void AddRow(int depth, std::string const& name, std::string const& occurs, std::string const& type,
              std::string const& description);
  std::string TakeTable();

  Contents const& m_contents;
  Entry const* m_current = nullptr;
  std::string m_rows;
  std::map<Entry const*, std::vector<Entry const*>> m_users;
  /// Where a local attribute was printed first: each user of an attribute group has it.
  std::map<Schema::AttributeDeclaration const*, Entry const*> m_printed;
};

}  // namespace Quillon9Generator::Pages
