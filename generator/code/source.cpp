#include "code/source.h"

#include <map>

#include "code/constants.h"
#include "code/header.h"
#include "code/members.h"
#include "code/tables.h"

namespace Quillon9Generator::Code {

using Plan::Class;
using Plan::Namespace;

namespace {

void DefineProperties(Text& text, Class const& cls, Namespace const& ns) {
  std::string const base =
      cls.base != nullptr ? NameOf(*cls.base, {&ns, &cls}) + "::Property(index)" : std::string("{}");
  std::string const signature = "Quillon9::CPropertyRef " + cls.cppName + "::Property(int index)";
  if (cls.members.empty()) {
    text.Function("Quillon9::CPropertyRef " + cls.cppName + "::Property(int" + (cls.base != nullptr ? " index)" : ")"),
                  "return " + base + ";");
    return;
  }
  text.Line(signature + " {");
  text.Indent(2);
  text.Line("switch (index) {");
  for (Plan::Member const& member : cls.members) {
    text.Line("  case " + std::to_string(member.property) + ": return " + PropertyOf(member) + ";");
  }
  text.Line("}");
  text.Line("return " + base + ";");
  text.Outdent(2);
  text.Line("}");
}

void DefineClass(Text& text, Class const& cls, Namespace const& ns, std::string const& row) {
  text.Blank();
  text.Line("// ---- " + cls.cppName);
  text.Blank();
  std::string const factory = cls.abstract ? "" : ", &Quillon9::MakeObject<" + cls.cppName + ">";
  text.Line("Quillon9::CClassTables " + cls.cppName + "::s_class{" + row + factory + "};");
  text.Line(cls.cppName + "::~" + cls.shortName + "() = default;");
  DefineProperties(text, cls, ns);
  for (Plan::Member const& member : cls.members) DefineAccessors(text, member, {&ns, &cls});
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
  std::vector<std::string> const parameters = {"Quillon9::CXmlSource const& source",
                                               "Quillon9::CXmlSerializationContext const& ctx"};
  auto const read = [&](std::string const& type, std::string const& name, std::string const& body) {
    text.Blank();
    text.Call("CSmartPtr<" + type + "> " + name, parameters, " {");
    text.Line("  return " + body + ";");
    text.Line("}");
  };
  for (std::size_t i = 0; i < ns.roots.size(); ++i) {
    Plan::Root const& root = ns.roots[i];
    std::string const type = RootType(root, ns);
    std::string const row = roots + "[" + std::to_string(i) + "]";
    read(type, "Read" + root.cppName, "Quillon9::ReadRoot<" + type + ">(source, " + row + ", ctx)");
    if (!CanBeCreated(root)) continue;
    text.Function("CSmartPtr<" + type + "> Create" + root.cppName + "()",
                  "return Quillon9::CreateRoot<" + type + ">(" + row + ");");
  }
  read("Quillon9::CXmlObjectBase", "ReadRoot", "Quillon9::ReadAnyRoot(source, " + roots + ", ctx)");
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
  for (Class const* cls : classes) DefineClass(text, *cls, ns, rowNames[cls]);
  DefineEnumerationFunctions(text, ns, constants);
  DefineRootFunctions(text, ns, roots);
  text.Blank();
  text.Line("}  // namespace " + ns.cppName);
}

}  // namespace Quillon9Generator::Code
