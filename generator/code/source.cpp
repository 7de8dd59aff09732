#include "code/source.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <utility>

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

/// What the header of \p cls could not define, since it does not include the classes of all members.
void DefineWithOtherClasses(Text& text, Class const& cls, Namespace const& ns, HeaderFile const& header) {
  if (!HoldsOtherClasses(cls, header)) return;
  std::string const name = cls.cppName + "::" + cls.shortName;
  text.Function(name + "(Quillon9::CClassTables const& tables, char const* name) : " + BaseInConstructor(cls, ns) +
                    "(tables, name)",
                "");
  text.Line(cls.cppName + "::~" + cls.shortName + "() = default;");
  for (Plan::Member const& member : cls.members) DefineAccessors(text, member, {&ns, &cls, &header});
}

void DefineClass(Text& text, Class const& cls, Namespace const& ns, std::string const& row) {
  std::vector<std::string> arguments = {row};
  if (!cls.abstract) arguments.push_back("&MakeObject<" + cls.cppName + ">");
  text.Call("ClassTables " + cls.cppName + "::s_class", arguments, ";", '{');
  DefineProperties(text, cls, ns);
}

/// \p texts is the name of the table of texts.
void DefineEnumerationFunctions(Text& text, Plan::Enumeration const& enumeration, std::string const& texts) {
  std::string const& name = enumeration.cppName;
  text.Function("char const* ToText(" + name + " value)", "return " + texts + ".ToText(static_cast<int>(value));");
  text.Function(name + " " + FromTextName(enumeration) + "(std::string_view text)",
                "return static_cast<" + name + ">(" + texts + ".FromText(text));");
}

void DefineReadRoot(Text& text, std::size_t documents, std::size_t all, std::string const& roots) {
  if (documents == 0) return;
  std::string const count = documents < all ? ", " + std::to_string(documents) : "";
  text.Function("CSmartPtr<Quillon9::CXmlObjectBase> ReadRoot(XmlSource const& source, Context const& ctx)",
                "return Quillon9::ReadAnyRoot(source, " + roots + count + ", ctx);");
}

void DefineRootFunctions(Text& text, Namespace const& ns, Plan::Root const& root, std::string const& row) {
  std::string const type = RootType(root, ns);
  if (root.isDocument) {
    text.Function("CSmartPtr<" + type + "> Read" + root.cppName + "(XmlSource const& source, Context const& ctx)",
                  "return RootFrom<" + type + ">(source, " + row + ", ctx);");
  }
  if (!CanBeCreated(root)) return;
  text.Function("CSmartPtr<" + type + "> Create" + root.cppName + "()", "return NewRoot<" + type + ">(" + row + ");");
}

}  // namespace

/// What a source defines in one namespace.
class SourcePrinter::Section {
 public:
  /// \p main are the constants of the first section; null for that itself.
  Section(Plan::Plan const& plan, Namespace const& ns, SourceFile const& source, Constants* main)
      : m_ns(ns), m_source(source), m_constants(ns, main) {
    if (source.isMain) m_documents = DocumentsReadIn(plan, ns);
    m_rootsWithRows = m_documents;
    for (HeaderFile const* header : source.headers) {
      for (Plan::Enumeration const* each : AllEnumerations(*header, ns)) {
        m_enumerations.emplace_back(each, m_constants.Texts(*each));
      }
      for (Plan::Root const* root : header->PartOf(ns).roots) m_roots.push_back(root);
      for (Class const* cls : AllClasses(*header, ns)) m_classes.emplace_back(cls, header);
    }
    bool const areDocumentsThere = !m_documents.empty();
    for (Plan::Root const* root : m_roots) {
      if (!areDocumentsThere || !root->isDocument) m_rootsWithRows.push_back(root);
    }
    for (auto const& [cls, header] : m_classes) m_rowNames[cls] = PrintRows(m_rows, *cls, m_constants);
    m_rootRows = PrintRoots(m_rows, m_rootsWithRows, m_constants);
  }

  SourceFile const& Source() const { return m_source; }
  Constants& GetConstants() { return m_constants; }

  void Print(Text& text) const {
    if (m_rowNames.empty() && m_enumerations.empty() && m_rootsWithRows.empty() && !m_constants.HasShared()) return;
    text.Enter(m_ns.cppName);
    PrintTables(text);
    for (auto const& [cls, header] : m_classes) {
      DefineClass(text, *cls, m_ns, m_rowNames.at(cls));
      DefineWithOtherClasses(text, *cls, m_ns, *header);
    }
    text.Blank();
    for (auto const& [enumeration, texts] : m_enumerations) DefineEnumerationFunctions(text, *enumeration, texts);
    text.Blank();
    DefineRoots(text);
  }

 private:
  void PrintTables(Text& text) const {
    text.Line("namespace {");
    text.Line("");
    text.Line("using namespace Quillon9::Rows;");
    text.Blank();
    text.Line("// clang-format off");
    m_constants.Print(text);
    text.Append(m_rows.Content());
    text.Line("// clang-format on");
    text.Blank();
    text.Line("}  // namespace");
    text.Blank();
    m_constants.PrintShared(text);
  }

  void DefineRoots(Text& text) const {
    std::map<Plan::Root const*, std::size_t> places;
    for (Plan::Root const* root : m_rootsWithRows) places.emplace(root, places.size());
    for (Plan::Root const* root : m_roots) {
      DefineRootFunctions(text, m_ns, *root, m_rootRows + "[" + std::to_string(places.at(root)) + "]");
    }
    DefineReadRoot(text, m_documents.size(), m_rootsWithRows.size(), m_rootRows);
  }

  Namespace const& m_ns;
  SourceFile const& m_source;
  Constants m_constants;
  std::vector<std::pair<Class const*, HeaderFile const*>> m_classes;             // with the nested ones
  std::vector<std::pair<Plan::Enumeration const*, std::string>> m_enumerations;  // with the names of their texts
  std::vector<Plan::Root const*> m_roots;                                        // those that it has functions for
  std::vector<Plan::Root const*> m_documents;                                    // those that ReadRoot() reads
  std::vector<Plan::Root const*> m_rootsWithRows;                                // m_documents come first
  Text m_rows;
  std::map<Class const*, std::string> m_rowNames;
  std::string m_rootRows;
};

SourcePrinter::SourcePrinter(Plan::Plan const& plan, FilePlan const& files) : m_plan(plan) {
  Constants* main = nullptr;
  for (SourceFile const& source : files.sources) {
    for (Namespace const& ns : plan.namespaces) {
      m_sections.push_back(std::make_unique<Section>(plan, ns, source, main));
      if (main == nullptr) main = &m_sections.front()->GetConstants();
    }
  }
}

SourcePrinter::~SourcePrinter() = default;

void SourcePrinter::Print(Text& text, SourceFile const& source) const {
  for (HeaderFile const* included : source.includes) text.Line(IncludeOf(source.path, included->path));
  std::set<std::string> shared;
  for (auto const& section : m_sections) {
    if (&section->Source() == &source) section->GetConstants().AddShared(shared);
  }
  if (!shared.empty()) {
    text.Enter(m_plan.namespaces.front().cppName);
    text.Line("");
    for (std::string const& name : shared) text.Line("extern Quillon9::CClassTables " + name + ";");
    text.Blank();
  }
  for (auto const& section : m_sections) {
    if (&section->Source() == &source) section->Print(text);
  }
  text.Enter("");
}

}  // namespace Quillon9Generator::Code
