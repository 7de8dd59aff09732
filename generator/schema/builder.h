#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "schema/built_ins.h"
#include "schema/documents.h"
#include "schema/simple_values.h"
#include "schema/storage.h"

namespace Quillon9Generator::Schema {

/// Makes the components of a set from the nodes of its documents. First each global component gets its object and its
/// name; then all are filled. Only what needs another one complete (a type its base, a set of attributes its groups)
/// asks for that to be filled first; references elsewhere are pointers to objects that may be filled later, so they may
/// form circles.
class Builder {
 public:
  Builder(Storage& storage, Diagnostics& diagnostics);

  /// Fill \p set, whose storage this is, from all documents.
  void Build(Documents const& documents, SchemaSet& set);
  /// Link the types of \p set for its users, once its constraints have been checked.
  void Finish(SchemaSet const& set);

 private:
  enum class State { Empty, Filling, Filled };

  /// A global component and where it is defined. Those of built-in types have no node.
  template <class Object>
  struct Global {
    Node const* node = nullptr;
    Document const* document = nullptr;
    Object* object = nullptr;
    State state = State::Empty;
  };
  template <class Object>
  using Table = std::map<QualifiedName, Global<Object>>;

  /// What redefinitions replace. It has no name any more; only the elements that say what the new definition keeps of
  /// it still refer to it.
  template <class Object>
  struct Originals {
    std::deque<Global<Object>> all;
    std::map<std::pair<Document const*, Node const*>, Global<Object>*> byReference;
    /// Those that a group replaces that does not refer to them, by name.
    std::vector<std::pair<QualifiedName, Global<Object>*>> restricted;
  };

  /// The attributes of a type or group, before those of a base are known.
  struct AttributeSet {
    std::vector<AttributeUse> uses;
    std::vector<QualifiedName> prohibited;
    std::optional<Wildcard> wildcard;
  };
  /// An anonymous type, filled after the global ones so that it may be derived from the type that contains it.
  struct Pending {
    ComplexType* type;
    Node const* node;
    Document const* document;
  };
  /// A type as it is referred to: one of the two, or none after an error.
  struct TypeReference {
    SimpleType const* simple = nullptr;  ///< complete
    Global<ComplexType>* complex = nullptr;
  };
  /// A keyref whose key may be declared later.
  struct PendingKeyref {
    IdentityConstraint* constraint;
    Node const* node;
    Document const* document;
  };
  /// The indices of attribute uses.
  using UsesByName = std::map<QualifiedName, std::size_t>;
  struct GroupSize {
    int height = 0;  ///< 0 while it is being determined
    std::uint64_t particles = 0;
  };

  // declarations.cpp: the names of global components
  void Declare(Document const& document);
  void DeclareOne(Document const& document, Node const& node);
  template <class Object>
  void AddGlobal(Table<Object>& table, std::deque<Object>& storage, Document const& document, Node const& node);
  template <class Object>
  Object& NewObject(std::deque<Object>& storage, QualifiedName const& name, Node const& node);
  void AddType(Document const& document, Node const& node);
  void AddNotation(Document const& document, Node const& node);
  void CheckAttributeNamespace(std::string const& ns, Node const& node);
  template <class Object>
  void ReportDuplicate(Document const& document, Node const& node, Global<Object> const& first);
  std::string ReadName(Node const& node);
  std::optional<QualifiedName> GlobalName(Document const& document, Node const& node);
  std::optional<QualifiedName> LocalName(Document const& document, Node const& node, std::string_view formDefault);
  void FillAll(SchemaSet& set);
  void FillGlobal(Tag tag, QualifiedName const& name, SchemaSet& set);

  // redefine.cpp
  void Redefine(std::vector<Document const*> const& documents);
  void RedefineOne(Document const& document, Node const& node);
  template <class Object>
  void Replace(Table<Object>& table, std::deque<Object>& storage, Originals<Object>& originals,
               Document const& document, Node const& node);
  void CheckRedefinitions();
  void MergeOriginals();
  void Merge(ComplexType& type, ComplexType const& original);
  std::optional<Particle> Joined(std::optional<Particle> const& first, std::optional<Particle> const& second);
  template <class Object>
  static Global<Object>* Original(Originals<Object> const& originals, Document const& document, Node const& reference);

  // completion.cpp: in which order components are filled that need one another
  bool MayDescend(Node const& node);
  template <class Object>
  bool Begin(Global<Object>& global);
  template <class Object>
  void End(Global<Object>& global);

  // references.cpp: names in attribute values
  std::optional<QualifiedName> Resolve(Document const& document, Node const& node, std::string_view text);
  template <class Object>
  Global<Object>* Find(Table<Object>& table, char const* kind, Document const& document, Node const& node,
                       std::string_view text);
  void ReportMissing(char const* kind, Node const& node, std::string_view text, QualifiedName const& name,
                     bool isInTarget);
  std::string HintFor(QualifiedName const& name, bool isInTarget) const;
  TypeReference FindType(Document const& document, Node const& node, std::string_view text);
  SimpleType const* FindSimpleType(Document const& document, Node const& node, std::string_view text);

  // attribute_values.cpp: other attribute values
  bool ReadBool(Node const& node, std::string_view attribute, bool otherwise);
  /// Return the set that \p attribute gives, or else the default of the schema, of those in \p all.
  static unsigned ReadDerivations(Document const& document, Node const& node, std::string_view attribute, unsigned all);
  void ReadOccurrence(Node const& node, Particle& particle);
  void ReadValueConstraint(Node const& node, std::optional<std::string>& defaultValue,
                           std::optional<std::string>& fixedValue);
  bool IsQualified(Document const& document, Node const& node, std::string_view formDefault);
  static void Describe(Component& component, Node const& node);
  static void DescribeDocument(Node const& root, SchemaSet& set);

  // simple_types.cpp, facets.cpp
  void Complete(Global<SimpleType>& global);
  SimpleType const* ReferredSimpleType(Document const& document, Node const& node, std::string_view attribute);
  SimpleType const* AnonymousSimpleType(Document const& document, Node const& node);
  void FillSimpleType(SimpleType& type, Document const& document, Node const& node);
  void FillRestriction(SimpleType& type, Document const& document, Node const& node);
  void Derive(SimpleType& type, SimpleType const* base);
  void FillList(SimpleType& type, Document const& document, Node const& node);
  void FillUnion(SimpleType& type, Document const& document, Node const& node);
  void CheckFinal(SimpleType const& type, unsigned derivation, Node const& node);
  static bool HasFacets(Node const& node);
  void ApplyFacets(SimpleType& type, Document const& document, Node const& node);
  void CheckPatternOf(Node const& facet);
  void TakeNames(Document const& document, Node const& facet, SimpleType const& type, EnumerationValue& value);
  void TakeNotation(Node const& facet, EnumerationValue& value);
  bool CheckFacet(SimpleType const& type, Node const& facet);
  void ApplyWhiteSpace(SimpleType& type, Node const& facet);
  void ApplyFacet(SimpleType& type, Node const& facet, std::string const& value);
  void ApplyBound(SimpleType& type, Node const& facet, std::string const& value);
  void ApplyNumber(std::optional<long>& number, Node const& facet, std::string const& value);
  /// Return whether \p count more values may be copied.
  bool MayInherit(std::size_t count, Place const& place);

  // elements.cpp
  void FillElement(ElementDeclaration& element, Document const& document, Node const& node);
  void FillElementType(ElementDeclaration& element, Document const& document, Node const& node);
  void FillSubstitution(ElementDeclaration& element, Document const& document, Node const& node);
  void CompleteSubstitutions();

  // identity_constraints.cpp
  void ReadIdentityConstraints(ElementDeclaration& element, Document const& document, Node const& node);
  void ResolveKeyrefs();
  void CheckSubstitution(ElementDeclaration& element);
  void TakeTypeOfHead(ElementDeclaration& element);
  void CollectStandIns();

  // particles.cpp
  std::optional<Particle> MakeParticle(Document const& document, Node const& node);
  bool MakeTerm(Particle& particle, Document const& document, Node const& node);
  bool MakeElementTerm(Particle& particle, Document const& document, Node const& node);
  bool MakeGroupTerm(Particle& particle, Document const& document, Node const& node);
  void FillModelGroup(ModelGroup& group, Document const& document, Node const& node);
  void FillGroup(GroupDefinition const& definition, Document const& document, Node const& node);

  // wildcards.cpp
  Wildcard MakeWildcard(Document const& document, Node const& node);
  Wildcard Intersection(Wildcard const& first, Wildcard const& second);
  Wildcard United(Wildcard const& first, Wildcard const& second);

  // attributes.cpp
  void FillAttribute(AttributeDeclaration& attribute, Document const& document, Node const& node);
  AttributeSet MakeAttributes(Document const& document, Node const& node);
  void AddAttribute(AttributeSet& set, Document const& document, Node const& node);
  AttributeDeclaration const* ReferredAttribute(Document const& document, Node const& node);
  AttributeDeclaration const* LocalAttribute(Document const& document, Node const& node);
  void AddUses(std::vector<AttributeUse>& uses, std::vector<AttributeUse> const& added);
  static UsesByName ByName(std::vector<AttributeUse> const& uses);
  void AddAttributeGroup(AttributeSet& set, Document const& document, Node const& node);
  void Complete(Global<AttributeSet>& global);

  // complex_types.cpp
  void Complete(Global<ComplexType>& global);
  void FillComplexType(ComplexType& type, Document const& document, Node const& node);
  void FillSimpleContent(ComplexType& type, Document const& document, Node const& node);
  void FillComplexContent(ComplexType& type, Document const& document, Node const& node, bool mixed);
  void KeepSimpleContent(ComplexType& type, ComplexType const& base, Node const& derivation);
  Node const* DerivationIn(Node const& content);
  TypeReference FindBase(Document const& document, Node const& derivation);
  SimpleType const* SimpleContentOf(ComplexType const& base, Node const& derivation);
  SimpleType const* RestrictedContent(ComplexType const& base, Document const& document, Node const& derivation);
  std::optional<Particle> OwnParticle(Document const& document, Node const& node);
  static void SetBase(ComplexType& type, ComplexType const* base, Node const& derivation);
  void SetParticle(ComplexType& type, ComplexType const* base, std::optional<Particle> own, bool mixed);
  void SetAttributes(ComplexType& type, ComplexType const* base, AttributeSet own);
  static void Restrict(std::vector<AttributeUse>& uses, AttributeSet const& own);

  // checks.cpp: what can only be seen when all components are there
  void LinkDerivedTypes(SchemaSet const& set);
  void CheckGroups();
  GroupSize SizeOf(ModelGroup const* group, Place const& reference, int depth);

  Storage& m_storage;
  Diagnostics& m_diagnostics;
  BuiltInTypes const m_builtIns;
  Documents const* m_documents = nullptr;
  Table<ElementDeclaration> m_elements;
  Table<AttributeDeclaration> m_attributes;
  Table<SimpleType> m_simpleTypes;
  Table<ComplexType> m_complexTypes;
  Table<GroupDefinition> m_groups;
  Table<AttributeSet> m_attributeGroups;
  std::deque<AttributeSet> m_attributeSets;
  std::vector<std::pair<Tag, QualifiedName>> m_order;  // of all global components
  Originals<SimpleType> m_oldSimpleTypes;
  Originals<ComplexType> m_oldComplexTypes;
  std::unordered_set<ComplexType const*> m_hiddenTypes;  // those of the originals
  Originals<GroupDefinition> m_oldGroups;
  Originals<AttributeSet> m_oldAttributeGroups;
  std::deque<Pending> m_pending;
  std::map<QualifiedName, IdentityConstraint*> m_identityConstraints;
  std::map<QualifiedName, Node const*> m_notations;
  std::vector<PendingKeyref> m_keyrefs;
  std::unordered_map<ModelGroup const*, GroupSize> m_sizes;
  ValueRules m_values;
  std::uint64_t m_inherited = 0;
  int m_depth = 0;  // of types and groups that are being completed
};

}  // namespace Quillon9Generator::Schema
