#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "plan/content.h"
#include "plan/derivation.h"
#include "plan/make_plan.h"
#include "plan/plan.h"
#include "plan/reachable.h"
#include "plan/value_types.h"

namespace Quillon9Generator::Plan {

/// Makes the classes, enumerations and roots of a plan, with members and tables, but without names, numbers and order:
/// until then, the short name of a class and the name of a root are what they shall have in words of the schema, and the
/// namespaces of classes and enumerations are those of XML.
class ClassBuilder {
 public:
  ClassBuilder(Selection const& selection, PlanOptions const& options, Plan& plan, Schema::Diagnostics& diagnostics);

  void Build();

 private:
  /// How a part of the content occurs.
  struct Position {
    bool mandatory = true;
    int choice = -1;
  };

  void NoteElementsOfGroups();
  void MakeClassesOfTypes();
  void MakeRoots();
  void FinishClasses();

  Class* NewClass(std::string shortName, Class const* owner);
  Class* ClassOf(Schema::ComplexType const& type, Class const* user);
  Class* NewClassOf(Schema::ComplexType const& type, Class const* user);
  void Fill(Class& cls, Schema::ComplexType const& type);
  void FillContent(Class& cls, Schema::ComplexType const& type);
  void AddText(Class& cls, Schema::ComplexType const& type);
  void AddAttributes(Class& cls, Schema::ComplexType const& type);
  void AddAttribute(Class& cls, Schema::AttributeUse const& use);
  void AddAttributeWildcard(Class& cls, Schema::ComplexType const& type);
  void RestateAttributes(Class& cls, Schema::ComplexType const& type, std::vector<Member const*> const& inherited);
  std::optional<Member> RestatedAttribute(Class const& cls, Schema::ComplexType const& type, Member const& ofBase);
  void RestateValue(Class const& cls, Member& member, Schema::SimpleType const* type, Schema::QualifiedName const& name,
                    void const* declaration, bool global);

  void AddNode(Class& cls, ContentNode const& node, Position position);
  void Restate(Class& cls, ContentNode const& node);
  void RestateElementType(Class& cls, Member& member, Schema::ElementDeclaration const& element);
  void AddGroup(Class& cls, ContentNode const& node, Position position);
  void AddElement(Class& cls, ContentNode const& node, Position position);
  void AddWildcard(Class& cls, ContentNode const& node, Position position);
  void AddRounds(Class& cls, ContentNode const& node, Position position);
  void AddRow(Class& cls, Member member, Position position);
  void SetElementType(Class& cls, Member& member, Schema::ElementDeclaration const& element);
  void NoteUse(Class& cls, Schema::ElementDeclaration const& element);
  void WarnOfTextRules(Schema::ElementDeclaration const& element);
  ElementGroup const* GroupOf(Schema::ElementDeclaration const& head);
  std::string Documentation(std::string text, Schema::Place const& place);
  ValueType ValueOf(Schema::SimpleType const* type, Schema::QualifiedName const& name, void const* declaration,
                    bool global, Class const& user);

  Selection const& m_selection;
  Schema::SchemaSet const& m_set;
  PlanOptions const& m_options;
  Plan& m_plan;
  Schema::Diagnostics& m_diagnostics;
  ValueTypes m_values;
  Derivations m_derivations;
  std::size_t m_documented = 0;  ///< octets of documentation of members
  std::size_t m_budget;          ///< how many parts of content models may still come

  std::map<Schema::ComplexType const*, Class*> m_classes;
  std::map<Schema::ElementDeclaration const*, ElementGroup*> m_elementGroups;  ///< by their heads
  std::map<void const*, Schema::GroupDefinition const*> m_groups;  ///< of the declarations of local elements
  std::vector<std::pair<Class*, Schema::ComplexType const*>> m_toFill;
  std::set<Class const*> m_filled;
  std::map<Class const*, std::set<Schema::QualifiedName>> m_elementsOf;  ///< the elements that a class is the type of
};

}  // namespace Quillon9Generator::Plan
