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

void DefineRootFunctions(Text& text, Namespace const& ns, std::string const& roots) {
  if (ns.roots.empty()) return;
  text.Blank();
  std::string const parameters = "(XmlSource const& source, Context const& ctx)";
  for (std::size_t i = 0; i < ns.roots.size(); ++i) {
    Plan::Root const& root = ns.roots[i];
    std::string const type = RootType(root, ns);
    std::string const row = roots + "[" + std::to_string(i) + "]";
    text.Function("CSmartPtr<" + type + "> Read" + root.cppName + parameters,
                  "return RootFrom<" + type + ">(source, " + row + ", ctx);");
    if (!CanBeCreated(root)) continue;
    text.Function("CSmartPtr<" + type + "> Create" + root.cppName + "()", "return NewRoot<" + type + ">(" + row + ");");
  }
  text.Function("CSmartPtr<Quillon9::CXmlObjectBase> ReadRoot" + parameters,
                "return Quillon9::ReadAnyRoot(source, " + roots + ", ctx);");
}

}  // namespace

void PrintSource(Text& text, Namespace const& ns) {
  Constants constants(ns);
  std::vector<Class const*> const classes = AllClasses(ns);
  for (Plan::Enumeration const* each : AllEnumerations(ns)) constants.Texts(*each);
  Text rows;
  std::map<Class const*, std::string> rowNames;
  for (Class const* cls : classes) rowNames[cls] = PrintRows(rows, *cls, constants);
  std::string const roots = PrintRoots(rows, ns, constants);

  text.Line("#include \"" + ns.fileStem + ".h\"");
  text.Blank();
  text.Line("namespace " + ns.cppName + " {");
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
  DefineRootFunctions(text, ns, roots);
  text.Blank();
  text.Line("}  // namespace " + ns.cppName);
}

}  // namespace Quillon9Generator::Code
