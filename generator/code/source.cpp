#include "code/source.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "code/constants.h"
#include "code/header.h"
#include "code/members.h"
#include "code/tables.h"

namespace Quillon9Generator::Code {

using Plan::Class;
using Plan::Namespace;

namespace {

/// More members are not named in one call, since compilers limit the depth of the expression that it becomes.
constexpr std::size_t kMostPicked = 100;

/// The body of a class whose properties take one call; empty for the others.
std::string OneCall(Class const& cls, Namespace const& ns) {
  if (cls.members.empty()) {
    return cls.base != nullptr ? "return " + NameOf(*cls.base, {&ns, &cls}) + "::Property(index);" : "return {};";
  }
  if (cls.base != nullptr || cls.members.size() > kMostPicked) return "";
  std::string call = "return Pick(index";
  for (Plan::Member const& member : cls.members) call += ", " + PropertyOf(member);
  return call + ");";
}

/// The calls that pick a property: of the base, and of the class in portions.
void DefineProperties(Text& text, Class const& cls, Namespace const& ns) {
  bool const usesIndex = cls.base != nullptr || !cls.members.empty();
  std::string const start = "PropertyRef " + cls.cppName + "::Property(int" + (usesIndex ? " index" : "") + ") {";
  std::string const call = OneCall(cls, ns);
  std::string const line = start + ' ' + call + " }";
  if (!call.empty() && text.Fits(line.size())) return text.Line(line);
  text.Line(start);
  text.Indent(2);
  if (cls.members.empty()) text.Line(call);
  if (cls.base != nullptr && !cls.members.empty()) {
    text.Line("if (index < " + std::to_string(cls.firstProperty) + ") return " + NameOf(*cls.base, {&ns, &cls}) +
              "::Property(index);");
  }
  for (std::size_t begin = 0; begin < cls.members.size(); begin += kMostPicked) {
    std::size_t const end = std::min(begin + kMostPicked, cls.members.size());
    int const first = cls.members[begin].property;
    std::vector<std::string> arguments = {first == 0 ? "index" : "index - " + std::to_string(first)};
    for (std::size_t i = begin; i < end; ++i) arguments.push_back(PropertyOf(cls.members[i]));
    bool const isLast = end == cls.members.size();
    std::string const condition = isLast ? "" : "if (index < " + std::to_string(cls.members[end].property) + ") ";
    text.Call(condition + "return Pick", arguments, ";");
  }
  text.Outdent(2);
  text.Line("}");
}

void DefineClass(Text& text, Class const& cls, Namespace const& ns, std::string const& row) {
  std::vector<std::string> arguments = {row};
  if (!cls.abstract) arguments.push_back("&MakeObject<" + cls.cppName + ">");
  text.Call("ClassTables " + cls.cppName + "::s_class", arguments, ";", '{');
  DefineProperties(text, cls, ns);
}

void DefineEnumerationFunctions(Text& text, Namespace const& ns, Constants& constants) {
  text.Blank();
  for (Plan::Enumeration const* each : AllEnumerations(ns)) {
    std::string const texts = constants.Texts(*each);
    text.Function("char const* ToText(" + each->cppName + " value)",
                  "return " + texts + ".ToText(static_cast<int>(value));");
    text.Function(each->cppName + " " + FromTextName(*each) + "(std::string_view text)",
                  "return static_cast<" + each->cppName + ">(" + texts + ".FromText(text));");
  }
}

/// The elements that have rows: those of ReadRoot() come first, then those of the namespace that are not among them.
std::vector<Plan::Root const*> RootsWithRows(Plan::Plan const& plan, Namespace const& ns) {
  std::vector<Plan::Root const*> roots = DocumentsReadIn(plan, ns);
  bool const areDocumentsThere = !roots.empty();
  for (Plan::Root const& root : ns.roots) {
    if (!areDocumentsThere || !root.isDocument) roots.push_back(&root);
  }
  return roots;
}

void DefineReadRoot(Text& text, std::size_t documents, std::size_t all, std::string const& roots) {
  if (documents == 0) return;
  std::string const count = documents < all ? ", " + std::to_string(documents) : "";
  text.Function("CSmartPtr<Quillon9::CXmlObjectBase> ReadRoot(XmlSource const& source, Context const& ctx)",
                "return Quillon9::ReadAnyRoot(source, " + roots + count + ", ctx);");
}

void DefineRootFunctions(Text& text, Namespace const& ns, std::vector<Plan::Root const*> const& rows,
                         std::string const& roots) {
  std::string const parameters = "(XmlSource const& source, Context const& ctx)";
  for (Plan::Root const& root : ns.roots) {
    std::string const type = RootType(root, ns);
    auto const place = std::find(rows.begin(), rows.end(), &root) - rows.begin();
    std::string const row = roots + "[" + std::to_string(place) + "]";
    if (root.isDocument) {
      text.Function("CSmartPtr<" + type + "> Read" + root.cppName + parameters,
                    "return RootFrom<" + type + ">(source, " + row + ", ctx);");
    }
    if (!CanBeCreated(root)) continue;
    text.Function("CSmartPtr<" + type + "> Create" + root.cppName + "()", "return NewRoot<" + type + ">(" + row + ");");
  }
}

void DefineNamespace(Text& text, Plan::Plan const& plan, Namespace const& ns) {
  Constants constants(ns);
  std::vector<Class const*> const classes = AllClasses(ns);
  for (Plan::Enumeration const* each : AllEnumerations(ns)) constants.Texts(*each);
  Text rows;
  std::map<Class const*, std::string> rowNames;
  for (Class const* cls : classes) rowNames[cls] = PrintRows(rows, *cls, constants);
  std::vector<Plan::Root const*> const rootsWithRows = RootsWithRows(plan, ns);
  std::string const roots = PrintRoots(rows, rootsWithRows, constants);

  text.Line("namespace {");
  text.Line("");
  text.Line("using namespace Quillon9::Rows;");
  text.Blank();
  text.Line("// clang-format off");
  constants.Print(text);
  text.Append(rows.Take());
  text.Line("// clang-format on");
  text.Blank();
  text.Line("}  // namespace");
  text.Blank();
  for (Class const* cls : classes) DefineClass(text, *cls, ns, rowNames[cls]);
  DefineEnumerationFunctions(text, ns, constants);
  text.Blank();
  DefineRootFunctions(text, ns, rootsWithRows, roots);
  DefineReadRoot(text, DocumentsReadIn(plan, ns).size(), rootsWithRows.size(), roots);
}

bool IsEmpty(Namespace const& ns) { return ns.classes.empty() && ns.enumerations.empty() && ns.roots.empty(); }

}  // namespace

void PrintSource(Text& text, Plan::Plan const& plan) {
  text.Line("#include \"" + plan.namespaces.front().fileStem + ".h\"");
  for (Namespace const& ns : plan.namespaces) {
    if (IsEmpty(ns) && DocumentsReadIn(plan, ns).empty()) continue;
    text.Enter(ns.cppName);
    DefineNamespace(text, plan, ns);
  }
  text.Enter("");
}

}  // namespace Quillon9Generator::Code
