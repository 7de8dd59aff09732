#include "code/header.h"

#include <algorithm>

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

void PrintConstructor(Text& text, Class const& cls, std::string const& base, bool isDefined) {
  std::string const declarator = cls.shortName + "(Quillon9::CClassTables const& tables, char const* name)";
  if (!isDefined) return text.Line(declarator + ';');
  std::string const rest = ": " + base + "(tables, name) {}";
  if (text.Fits(declarator.size() + 1 + rest.size())) return text.Line(declarator + ' ' + rest);
  text.Line(declarator);
  text.Line("    " + rest);
}

void PrintClass(Text& text, Class const& cls, Namespace const& ns, HeaderFile const& header) {
  Scope const scope{&ns, &cls, &header};
  Base const base = BaseOf(cls, {&ns, cls.owner, &header});
  bool const isWhole = !HoldsOtherClasses(cls, header);
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
    PrintClass(text, *nested, ns, header);
  }
  text.Blank();
  if (!isWhole) text.Line('~' + cls.shortName + "() override;");
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
  PrintConstructor(text, cls, base.constructed, isWhole);
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

void EnterNamespace(Text& text, std::string const& name) {
  if (text.Enter(name)) text.Line("");
}

/// Declare what the classes of the header need of \p ns.
void PrintDeclarations(Text& text, HeaderFile const& header, Namespace const& ns) {
  for (Class const* cls : header.declared) {
    if (cls->cppNamespace != ns.cppName) continue;
    EnterNamespace(text, ns.cppName);
    text.Line("class " + cls->shortName + ";");
  }
  for (Enumeration const* enumeration : header.PartOf(ns).enumerations) {
    EnterNamespace(text, ns.cppName);
    text.Blank();
    PrintEnumeration(text, *enumeration);
  }
}

void PrintEnumerationFunctions(Text& text, HeaderFile const& header, Namespace const& ns) {
  std::vector<Enumeration const*> const all = AllEnumerations(header, ns);
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

std::string CommentOfReadRoot(Plan::Plan const& plan, HeaderFile const& header) {
  Namespace const& ns = plan.namespaces.front();
  if (header.PartOf(ns).roots.size() != ns.roots.size())
    return "/// Read a document of the schemas, whatever its element is.";
  return std::string("/// Read a document whose element is any of these") +
         (plan.namespaces.size() == 1 ? "." : ", or of those of the other namespaces.");
}

void PrintReadFunctions(Text& text, Namespace const& ns, std::vector<Plan::Root const*> const& roots) {
  std::vector<Plan::Root const*> documents;
  std::copy_if(roots.begin(), roots.end(), std::back_inserter(documents),
               [](Plan::Root const* root) { return root->isDocument; });
  if (documents.empty()) return;
  text.Line("/// Read a document whose element has the name of the function.");
  text.Line("///@{");
  for (Plan::Root const* root : documents) {
    text.Comment(root->documentation);
    text.Call(PointerTo(*root, ns) + "Read" + root->cppName, {kSource, kContext}, ";");
  }
  text.Line("///@}");
}

void PrintCreateFunctions(Text& text, Namespace const& ns, std::vector<Plan::Root const*> const& roots) {
  if (roots.empty()) return;
  text.Line("/// A new object for the element that has the name of the function.");
  text.Line("///@{");
  for (Plan::Root const* root : roots) {
    if (CanBeCreated(*root)) text.Line(PointerTo(*root, ns) + "Create" + root->cppName + "();");
  }
  text.Line("///@}");
}

void PrintRootFunctions(Text& text, Plan::Plan const& plan, HeaderFile const& header, Namespace const& ns) {
  std::vector<Plan::Root const*> const roots = header.PartOf(ns).roots;
  bool const hasReadRoot = header.isMain && !DocumentsReadIn(plan, ns).empty();
  if (roots.empty() && !hasReadRoot) return;
  EnterNamespace(text, ns.cppName);
  text.Blank();
  for (Plan::Root const* root : roots) {
    if (!root->alias.empty()) text.Line("using " + root->alias + " = " + RootType(*root, ns) + ";");
  }
  text.Blank();
  PrintReadFunctions(text, ns, roots);
  if (hasReadRoot) {
    text.Line(CommentOfReadRoot(plan, header));
    text.Call("CSmartPtr<Quillon9::CXmlObjectBase> ReadRoot", {kSource, kContext}, ";");
  }
  PrintCreateFunctions(text, ns, roots);
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

std::string BaseInConstructor(Class const& cls, Namespace const& ns) {
  return BaseOf(cls, {&ns, cls.owner, nullptr}).constructed;
}

std::string IncludeOf(std::string const& from, std::string const& to) {
  std::string const folder = from.substr(0, from.rfind('/') + 1);
  bool const isBelow = to.compare(0, folder.size(), folder) == 0;
  return "#include \"" + (isBelow ? to.substr(folder.size()) : "../" + to) + "\"";
}

std::string FromTextName(Enumeration const& enumeration) {
  std::string const prefix = enumeration.owner != nullptr ? Identifier(*enumeration.owner) + '_' : "";
  return prefix + ShortName(enumeration).substr(1) + "FromText";
}

std::vector<Enumeration const*> AllEnumerations(HeaderFile const& header, Namespace const& ns) {
  std::vector<Enumeration const*> all = header.PartOf(ns).enumerations;
  for (Class const* cls : header.ClassesOf(ns)) AddEnumerations(all, *cls);
  return all;
}

std::vector<Class const*> AllClasses(HeaderFile const& header, Namespace const& ns) {
  std::vector<Class const*> all;
  for (Class const* cls : header.ClassesOf(ns)) AddClasses(all, *cls);
  return all;
}

std::string RootType(Plan::Root const& root, Namespace const& ns) {
  if (root.anyType) return "Quillon9::CElement";
  Scope const scope{&ns, nullptr, nullptr};
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

void PrintHeader(Text& text, Plan::Plan const& plan, HeaderFile const& header) {
  text.Line("#pragma once");
  text.Blank();
  text.Line("#include \"quillon9/generated.h\"");
  text.Blank();
  for (HeaderFile const* included : header.includes) text.Line(IncludeOf(header.path, included->path));
  text.Blank();
  for (Namespace const& ns : plan.namespaces) PrintDeclarations(text, header, ns);
  for (Class const* cls : header.classes) {
    EnterNamespace(text, cls->cppNamespace);
    text.Blank();
    PrintClass(text, *cls, NamespaceOf(plan, *cls), header);
  }
  for (Namespace const& ns : plan.namespaces) {
    PrintEnumerationFunctions(text, header, ns);
    PrintRootFunctions(text, plan, header, ns);
  }
  text.Enter("");
}

}  // namespace Quillon9Generator::Code
