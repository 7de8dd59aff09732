#include "code/header.h"

#include <algorithm>
#include <set>

#include "code/members.h"

namespace Quillon9Generator::Code {

using Plan::Class;
using Plan::Enumeration;
using Plan::Namespace;

namespace {

char const kSource[] = "Quillon9::CXmlSource const& source";
char const kContext[] = "Quillon9::CXmlSerializationContext const& ctx = Quillon9::DefaultContext()";

void PrintEnumeration(Text& text, Enumeration const& enumeration) {
  text.Comment(enumeration.documentation);
  bool isDocumented = false;
  std::string line = "enum class " + ShortName(enumeration) + " : int {";
  for (std::size_t i = 0; i < enumeration.enumerators.size(); ++i) {
    line += (i != 0 ? ", " : " ") + enumeration.enumerators[i].name;
    isDocumented = isDocumented || !enumeration.enumerators[i].documentation.empty();
  }
  line += " };";
  if (!isDocumented && text.Fits(line.size())) return text.Line(line);
  text.Line("enum class " + ShortName(enumeration) + " : int {");
  text.Indent(2);
  for (std::size_t i = 0; i < enumeration.enumerators.size(); ++i) {
    text.Comment(enumeration.enumerators[i].documentation);
    text.Line(enumeration.enumerators[i].name + (i + 1 < enumeration.enumerators.size() ? "," : ""));
  }
  text.Outdent(2);
  text.Line("};");
}

void PrintChoice(Text& text, Plan::Choice const& choice) {
  Enumeration enumeration;
  enumeration.cppName = "E" + choice.cppName;
  enumeration.enumerators.push_back({"None", "", ""});
  for (std::string const& name : choice.alternatives) enumeration.enumerators.push_back({name, "", ""});
  PrintEnumeration(text, enumeration);
}

/// The base in the declaration of \p cls and, without the argument of the template, in its constructor.
struct Base {
  std::string declared;
  std::string constructed;
};

Base BaseOf(Class const& cls, Scope const& scope) {
  std::string const plain = cls.base != nullptr ? NameOf(*cls.base, scope) : "Quillon9::CBoundObject";
  bool baseIsNillable = false;
  for (Class const* base = cls.base; base != nullptr; base = base->base) baseIsNillable |= base->nillable;
  if (cls.nillable && !baseIsNillable) return {"Quillon9::CNillable<" + plain + ">", "CNillable"};
  return {plain, cls.base != nullptr ? plain : "CBoundObject"};
}

void PrintConstructor(Text& text, Class const& cls, std::string const& base) {
  std::string const declarator = cls.shortName + "(Quillon9::CClassTables const& tables, char const* name)";
  std::string const rest = ": " + base + "(tables, name) {}";
  if (text.Fits(declarator.size() + 1 + rest.size())) return text.Line(declarator + ' ' + rest);
  text.Line(declarator);
  text.Line("    " + rest);
}

void PrintClass(Text& text, Class const& cls, Namespace const& ns) {
  Scope const scope{&ns, &cls};
  Base const base = BaseOf(cls, {&ns, cls.owner});
  text.Comment(cls.documentation);
  text.Line("class " + cls.shortName + " : public " + base.declared + " {");
  text.Line(" public:");
  text.Indent(2);
  if (cls.nested.size() > 1) {  // they may refer to one another
    for (Class const* nested : cls.nested) text.Line("class " + nested->shortName + ";");
  }
  for (Enumeration const* nested : cls.nestedEnumerations) {
    text.Blank();
    PrintEnumeration(text, *nested);
  }
  for (Plan::Choice const& choice : cls.choices) PrintChoice(text, choice);
  for (Class const* nested : cls.nested) {
    text.Blank();
    PrintClass(text, *nested, ns);
  }
  text.Blank();
  text.Line("static Quillon9::CClassTables s_class;");
  if (!cls.abstract) {
    std::string const name = cls.defaultElementName.empty() ? "\"\"" : Literal(cls.defaultElementName);
    text.Function("static CSmartPtr<" + cls.shortName + "> CreateInstance(char const* name = " + name + ")",
                  "return new " + cls.shortName + "(s_class, name);");
  }
  if (!cls.choices.empty() || !cls.members.empty()) text.Blank();
  for (Plan::Choice const& choice : cls.choices) {
    text.Function(
        "E" + choice.cppName + " Get" + choice.cppName + "() const",
        "return static_cast<E" + choice.cppName + ">(Alternative(s_class, " + std::to_string(choice.row) + "));");
  }
  for (Plan::Member const& member : cls.members) DeclareAccessors(text, member, scope);

  text.Blank();
  text.Outdent(2);
  text.Line(" protected:");
  text.Indent(2);
  PrintConstructor(text, cls, base.constructed);
  text.Line("Quillon9::CPropertyRef Property(int index) override;");
  text.Outdent(2);
  if (!cls.members.empty()) {
    text.Blank();
    text.Line(" private:");
    text.Indent(2);
    for (Plan::Member const& member : cls.members) DeclareField(text, member, scope);
    text.Outdent(2);
  }
  text.Line("};");
}

/// Collect the classes that \p cls refers to but that are not nested in another.
void AddReferences(std::set<Class const*>& referred, Class const& cls) {
  for (Plan::Member const& member : cls.members) {
    if (member.type != nullptr && member.type->owner == nullptr) referred.insert(member.type);
  }
  for (Class const* nested : cls.nested) AddReferences(referred, *nested);
}

void EnterNamespace(Text& text, std::string const& name) {
  if (text.Enter(name)) text.Line("");
}

/// The classes that others use before their definition.
std::set<Class const*> NeededBeforeDefinition(Plan::Plan const& plan) {
  std::set<Class const*> known;
  std::set<Class const*> needed;
  for (Class const* cls : plan.classes) {
    known.insert(cls);
    std::set<Class const*> referred;
    AddReferences(referred, *cls);
    for (Class const* each : referred) {
      if (known.count(each) == 0) needed.insert(each);
    }
  }
  return needed;
}

void PrintForwardDeclarations(Text& text, Namespace const& ns, std::set<Class const*> const& needed) {
  for (Class const* cls : ns.classes) {
    if (needed.count(cls) == 0) continue;
    EnterNamespace(text, ns.cppName);
    text.Line("class " + cls->shortName + ";");
  }
}

void PrintEnumerations(Text& text, Namespace const& ns) {
  for (Enumeration const* enumeration : ns.enumerations) {
    EnterNamespace(text, ns.cppName);
    text.Blank();
    PrintEnumeration(text, *enumeration);
  }
}

void PrintEnumerationFunctions(Text& text, Namespace const& ns) {
  std::vector<Enumeration const*> const all = AllEnumerations(ns);
  if (all.empty()) return;
  EnterNamespace(text, ns.cppName);
  text.Blank();
  text.Line("/// The text of the schema; null for a number that is no enumerator.");
  text.Line("///@{");
  for (Enumeration const* each : all) text.Line("char const* ToText(" + each->cppName + " value);");
  text.Line("///@}");
  text.Line("/// The enumerator for a text of the schema.");
  text.Line("/// \\throws Quillon9::CQnInvalidValueException for any other text.");
  text.Line("///@{");
  for (Enumeration const* each : all) text.Line(each->cppName + " " + FromTextName(*each) + "(std::string_view text);");
  text.Line("///@}");
}

std::string PointerTo(Plan::Root const& root, Namespace const& ns) { return "CSmartPtr<" + RootType(root, ns) + "> "; }

void PrintReadFunctions(Text& text, Plan::Plan const& plan, Namespace const& ns) {
  bool const hasDocuments = !ns.roots.empty() && ns.roots.front().isDocument;
  if (hasDocuments) {
    text.Line("/// Read a document whose element has the name of the function.");
    text.Line("///@{");
  }
  for (Plan::Root const& root : ns.roots) {
    if (!root.isDocument) break;
    text.Comment(root.documentation);
    text.Call(PointerTo(root, ns) + "Read" + root.cppName, {kSource, kContext}, ";");
  }
  if (hasDocuments) text.Line("///@}");
  if (DocumentsReadIn(plan, ns).empty()) return;
  text.Line(plan.namespaces.size() == 1
                ? "/// Read a document whose element is any of these."
                : "/// Read a document whose element is any of these, or of those of the other namespaces.");
  text.Call("CSmartPtr<Quillon9::CXmlObjectBase> ReadRoot", {kSource, kContext}, ";");
}

void PrintCreateFunctions(Text& text, Namespace const& ns) {
  if (ns.roots.empty()) return;
  text.Line("/// A new object for the element that has the name of the function.");
  text.Line("///@{");
  for (Plan::Root const& root : ns.roots) {
    if (CanBeCreated(root)) text.Line(PointerTo(root, ns) + "Create" + root.cppName + "();");
  }
  text.Line("///@}");
}

void PrintRootFunctions(Text& text, Plan::Plan const& plan, Namespace const& ns) {
  if (ns.roots.empty() && DocumentsReadIn(plan, ns).empty()) return;
  EnterNamespace(text, ns.cppName);
  text.Blank();
  for (Plan::Root const& root : ns.roots) {
    if (!root.alias.empty()) text.Line("using " + root.alias + " = " + RootType(root, ns) + ";");
  }
  text.Blank();
  PrintReadFunctions(text, plan, ns);
  PrintCreateFunctions(text, ns);
}

void AddEnumerations(std::vector<Enumeration const*>& all, Class const& cls) {
  all.insert(all.end(), cls.nestedEnumerations.begin(), cls.nestedEnumerations.end());
  for (Class const* nested : cls.nested) AddEnumerations(all, *nested);
}

void AddClasses(std::vector<Class const*>& all, Class const& cls) {
  for (Class const* nested : cls.nested) AddClasses(all, *nested);
  all.push_back(&cls);
}

}  // namespace

std::string FromTextName(Enumeration const& enumeration) {
  std::string const prefix = enumeration.owner != nullptr ? Identifier(*enumeration.owner) + '_' : "";
  return prefix + ShortName(enumeration).substr(1) + "FromText";
}

std::vector<Enumeration const*> AllEnumerations(Namespace const& ns) {
  std::vector<Enumeration const*> all = ns.enumerations;
  for (Class const* cls : ns.classes) AddEnumerations(all, *cls);
  return all;
}

std::vector<Class const*> AllClasses(Namespace const& ns) {
  std::vector<Class const*> all;
  for (Class const* cls : ns.classes) AddClasses(all, *cls);
  return all;
}

std::string RootType(Plan::Root const& root, Namespace const& ns) {
  if (root.anyType) return "Quillon9::CElement";
  Scope const scope{&ns, nullptr};
  return root.type != nullptr ? NameOf(*root.type, scope) : ValueElementType(root.value, scope);
}

bool CanBeCreated(Plan::Root const& root) { return !root.anyType && (root.type == nullptr || !root.type->abstract); }

std::vector<Plan::Root const*> DocumentsReadIn(Plan::Plan const& plan, Namespace const& ns) {
  std::vector<Plan::Root const*> documents;
  if (&ns != &plan.namespaces.front()) return documents;
  for (Namespace const& each : plan.namespaces) {
    for (Plan::Root const& root : each.roots) {
      if (root.isDocument) documents.push_back(&root);
    }
  }
  return documents;
}

Namespace const& NamespaceOf(Plan::Plan const& plan, Class const& cls) {
  return *std::find_if(plan.namespaces.begin(), plan.namespaces.end(),
                       [&cls](Namespace const& ns) { return ns.cppName == cls.cppNamespace; });
}

void PrintHeader(Text& text, Plan::Plan const& plan) {
  text.Line("#pragma once");
  text.Blank();
  text.Line("#include \"quillon9/generated.h\"");
  text.Blank();
  std::set<Class const*> const needed = NeededBeforeDefinition(plan);
  for (Namespace const& ns : plan.namespaces) {
    PrintForwardDeclarations(text, ns, needed);
    PrintEnumerations(text, ns);
  }
  for (Class const* cls : plan.classes) {
    EnterNamespace(text, cls->cppNamespace);
    text.Blank();
    PrintClass(text, *cls, NamespaceOf(plan, *cls));
  }
  for (Namespace const& ns : plan.namespaces) {
    PrintEnumerationFunctions(text, ns);
    PrintRootFunctions(text, plan, ns);
  }
  text.Enter("");
}

}  // namespace Quillon9Generator::Code
