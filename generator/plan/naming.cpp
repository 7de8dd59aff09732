#include "plan/naming.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "plan/names.h"

namespace Quillon9Generator::Plan {

namespace {

/// What generated code uses without a namespace in front, or inherits as the name of a base.
constexpr char const* kNamesOfLibrary[] = {"CBoundObject", "CSmartPtr", "CXmlGeneratedClass", "CXmlObjectBase"};

/// Members for whose names a generated class has functions already: GetElementName(), CreateInstance(), SetNil().
constexpr char const* kInheritedAccessors[] = {"Base",
                                               "ClassAttributeInfo",
                                               "ClassElementInfo",
                                               "ClassElementInfoCount",
                                               "ClassInfo",
                                               "ClassTables",
                                               "ElementName",
                                               "Instance",
                                               "Namespace",
                                               "Nil",
                                               "TargetNamespace",
                                               "TypeAttribute"};

bool IsNamedByElement(Member const& member) {
  return member.place == Member::Place::Element && !member.name.local.empty();
}

/// A name for an enumerator. With "_" in front of its capital it would be reserved for the compiler.
std::string EnumeratorName(std::string name) {
  name.erase(0, std::min(name.find_first_not_of('_'), name.size()));
  return NoMacro(UpperCamel(name.empty() ? "Empty" : name));
}

std::string TextName(Class const& cls, NameScope const& scope) {
  std::string const name = cls.mixed ? "Text" : "Value";
  return scope.IsFree(name) ? name : "Content";
}

/// Names the members and choices of classes, a base before what derives from it.
class MemberNames {
 public:
  MemberNames() {
    for (char const* name : kInheritedAccessors) m_inherited.Reserve(name);
  }

  void NameAll(Class& cls) {
    NameScope& scope = ScopeOf(cls);
    for (Member& member : cls.members) {
      if (IsNamedByElement(member)) Set(member, scope, UpperCamel(member.name.local), "Element");
    }
    for (Member& member : cls.members) {
      if (member.place == Member::Place::Attribute && !member.name.local.empty()) NameAttribute(cls, member, scope);
    }
    for (Member& member : cls.members) {
      if (member.cppName.empty()) NameUntagged(cls, member, scope);
    }
    for (Choice& choice : cls.choices) choice.cppName = scope.Take("Choice");
    for (Choice& choice : cls.choices) NameAlternatives(cls, choice);
  }

 private:
  NameScope& ScopeOf(Class const& cls) {
    NameScope const* const outer = cls.base != nullptr ? &m_scopes.at(cls.base) : &m_inherited;
    return m_scopes.emplace(&cls, NameScope(outer)).first->second;
  }

  // The suffix is for a name that the library has; elements of one name are numbered.
  void Set(Member& member, NameScope& scope, std::string name, std::string_view suffix) {
    if (!m_inherited.IsFree(name)) name += suffix;
    member.cppName = scope.Take(std::move(name));
  }

  void NameAttribute(Class const& cls, Member& member, NameScope& scope) {
    std::string name = UpperCamel(member.name.local);
    if (!scope.IsFree(name) && m_inherited.IsFree(name) && IsNameOfContent(cls, name)) name += "Attribute";
    Set(member, scope, std::move(name), "Attribute");
  }

  // Whether an element or the text, of the class or a base, has this name.
  static bool IsNameOfContent(Class const& cls, std::string const& name) {
    auto const hasName = [&name](Member const& other) {
      return other.place != Member::Place::Attribute && other.cppName == name;
    };
    for (Class const* each = &cls; each != nullptr; each = each->base) {
      if (std::any_of(each->members.begin(), each->members.end(), hasName)) return true;
    }
    return false;
  }

  void NameUntagged(Class const& cls, Member& member, NameScope& scope) {
    if (member.place == Member::Place::Text) {
      member.cppName = scope.Take(TextName(cls, scope));
    } else if (member.kind == Member::Kind::Rounds) {
      Set(member, scope, UpperCamel(member.type->shortName), "Group");
    } else {
      member.cppName = scope.Take(member.place == Member::Place::Attribute ? "AnyAttribute" : "Any");
    }
  }

  static void NameAlternatives(Class const& cls, Choice& choice) {
    NameScope scope;
    scope.Reserve("None");
    int depth = 0;
    bool isNew = true;  // the first member of an alternative names it
    for (auto row = static_cast<std::size_t>(choice.row) + 1; depth >= 0; ++row) {
      Row const& each = cls.rows[row];
      if (each.kind == Row::Kind::Member) {
        if (isNew) {
          std::string const& member = cls.members[static_cast<std::size_t>(each.member)].cppName;
          choice.alternatives.push_back(scope.Take(EnumeratorName(member)));
        }
        isNew = depth == 0;
      } else {
        depth += each.kind == Row::Kind::End ? -1 : 1;
        if (depth == 0) isNew = true;
      }
    }
  }

  NameScope m_inherited;
  std::map<Class const*, NameScope> m_scopes;
};

void NameFields(Class& cls) {
  NameScope scope;
  scope.Reserve("m_csInit");
  for (Member& member : cls.members) member.field = scope.Take(FieldName(member.cppName));
}

void NameEnumerators(Enumeration& enumeration) {
  NameScope scope;
  for (Enumerator& enumerator : enumeration.enumerators) {
    enumerator.name = scope.Take(EnumeratorName(UpperCamel(enumerator.text)));
  }
}

/// Gives the names of one plan.
class Namer {
 public:
  explicit Namer(Plan& plan) : m_plan(plan) {
    for (auto const& cls : plan.classStorage) m_mutable[cls.get()] = cls.get();
    for (auto const& each : plan.enumerationStorage) m_mutableEnumerations[each.get()] = each.get();
    for (Namespace const& ns : plan.namespaces) ReserveNames(ns);
  }

  void NameAll() {
    NameTypesOfNamespace();
    NameMembersInOrder();
    for (Class const* cls : m_plan.classes) {
      m_mutable.at(cls)->cppName = cls->shortName;
      NameNested(*cls, {});
    }
    for (auto const& enumeration : m_plan.enumerationStorage) NameEnumerators(*enumeration);
    for (Namespace& ns : m_plan.namespaces) NameRoots(ns);
  }

 private:
  // A namespace cannot have a class with the name of one nested in it.
  void ReserveNames(Namespace const& ns) {
    NameScope& types = m_types[ns.cppName];
    for (char const* name : kNamesOfLibrary) types.Reserve(name);
    std::string const prefix = ns.cppName + "::";
    for (Namespace const& other : m_plan.namespaces) {
      if (other.cppName.compare(0, prefix.size(), prefix) != 0) continue;
      types.Reserve(other.cppName.substr(prefix.size(), other.cppName.find(':', prefix.size()) - prefix.size()));
    }
  }

  void NameTypesOfNamespace() {
    for (bool const isNamed : {true, false}) {
      for (auto const& cls : m_plan.classStorage) {
        if (cls->owner != nullptr || cls->name.local.empty() == isNamed) continue;
        cls->shortName = m_types.at(cls->cppNamespace).Take("C" + UpperCamel(cls->shortName), isNamed ? "" : "Element");
      }
      for (auto const& enumeration : m_plan.enumerationStorage) {
        if (enumeration->owner != nullptr || enumeration->name.local.empty() == isNamed) continue;
        enumeration->cppName =
            m_types.at(enumeration->cppNamespace).Take(NoMacro("E" + UpperCamel(enumeration->cppName)));
      }
    }
  }

  void NameMembersInOrder() {
    std::vector<Class const*> pending(m_plan.classes.rbegin(), m_plan.classes.rend());
    while (!pending.empty()) {
      Class& cls = *m_mutable.at(pending.back());
      pending.pop_back();
      m_members.NameAll(cls);
      NameFields(cls);
      NameRounds(cls);
      pending.insert(pending.end(), cls.nested.rbegin(), cls.nested.rend());
    }
  }

  // The class of a round is named as its collection.
  void NameRounds(Class const& cls) {
    for (Member const& member : cls.members) {
      if (member.kind == Member::Kind::Rounds) m_mutable.at(member.type)->shortName = member.cppName;
    }
  }

  void NameNested(Class const& cls, std::vector<std::string> outer) {
    NameScope scope;
    for (char const* name : kNamesOfLibrary) scope.Reserve(name);
    for (Class const* base = &cls; base != nullptr; base = base->base) outer.push_back(base->shortName);
    for (std::string const& name : outer) scope.Reserve(name);
    for (Choice const& choice : cls.choices) scope.Reserve("E" + choice.cppName);
    for (Class const* nested : cls.nested) {
      Class& named = *m_mutable.at(nested);
      named.shortName = scope.Take("C" + UpperCamel(named.shortName));
      named.cppName = cls.cppName + "::" + named.shortName;
    }
    for (Enumeration const* nested : cls.nestedEnumerations) {
      Enumeration& named = *m_mutableEnumerations.at(nested);
      named.cppName = cls.cppName + "::" + scope.Take(NoMacro("E" + UpperCamel(named.cppName)));
    }
    for (Class const* nested : cls.nested) NameNested(*nested, outer);
  }

  void NameRoots(Namespace& ns) {
    NameScope& types = m_types.at(ns.cppName);
    NameScope roots;
    roots.Reserve("Root");  // ReadRoot()
    for (Root& root : ns.roots) {
      root.cppName = roots.Take(UpperCamel(root.cppName), "Element");
      std::string const alias = "C" + root.cppName;
      if (root.type == nullptr || !types.IsFree(alias)) continue;
      root.alias = types.Take(alias);
    }
  }

  Plan& m_plan;
  std::map<std::string, NameScope> m_types;  ///< by the C++ namespace
  MemberNames m_members;
  std::map<Class const*, Class*> m_mutable;
  std::map<Enumeration const*, Enumeration*> m_mutableEnumerations;
};

}  // namespace

void GiveNames(Plan& plan) { Namer(plan).NameAll(); }

}  // namespace Quillon9Generator::Plan
