#include "code/report.h"

#include <algorithm>
#include <vector>

#include "code/header.h"
#include "code/members.h"
#include "plan/make_plan.h"

namespace Quillon9Generator::Code {

using Plan::Class;
using Plan::Enumeration;
using Plan::Member;

namespace {

/// What is longer is cut, and what is wider does not move the other cells: a hostile schema has long names.
constexpr std::size_t kLongestCell = 500;
constexpr std::size_t kWidestColumn = 100;

/// Lines of cells, which stand below one another. An empty cell is shown as a dash.
class Table {
 public:
  void Add(std::vector<std::string> cells) {
    for (std::string& cell : cells) cell = cell.empty() ? "-" : ShortenedText(cell, kLongestCell);
    m_rows.push_back(std::move(cells));
  }

  std::string Take() {
    std::vector<std::size_t> widths;
    for (auto const& row : m_rows) {
      widths.resize(std::max(widths.size(), row.size()));
      for (std::size_t i = 0; i < row.size(); ++i) {
        widths[i] = std::max(widths[i], std::min(Width(row[i]), kWidestColumn));
      }
    }
    std::string text;
    for (auto const& row : m_rows) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        std::size_t const width = Width(row[i]);
        text += "  " + row[i];
        if (i + 1 < row.size() && width < widths[i]) text.append(widths[i] - width, ' ');
      }
      text += '\n';
    }
    return text;
  }

 private:
  std::vector<std::vector<std::string>> m_rows;
};

std::string PlaceText(Schema::Place const& place) {
  if (place.file == nullptr) return "built in";
  return VisibleText(*place.file) + ":" + std::to_string(place.line);
}

/// The name of a component of a class for the namespace \p ns, which is left out.
std::string NameText(Schema::QualifiedName const& name, std::string const& ns) {
  return name.ns.empty() || name.ns == ns ? name.local : "{" + VisibleText(name.ns) + "}" + name.local;
}

std::string OccursText(Member const& member) {
  std::string least = std::to_string(member.minOccurs);
  if (member.minOccurs == member.maxOccurs) return least;
  return least + ".." + (member.maxOccurs == Schema::Particle::kUnbounded ? "*" : std::to_string(member.maxOccurs));
}

std::string ComponentText(Member const& member, Class const& cls) {
  switch (member.kind) {
    case Member::Kind::Rounds: return "group";
    case Member::Kind::Any:
    case Member::Kind::Anys: return "any element " + VisibleText(member.restriction);
    case Member::Kind::AnyAttributes: return "any attribute " + VisibleText(member.restriction);
    default: break;
  }
  if (member.place == Member::Place::Text) return "text";
  return (member.place == Member::Place::Attribute ? "attribute " : "element ") +
         NameText(member.name, cls.targetNamespace);
}

std::string SchemaTypeText(Member const& member, Class const& cls) {
  switch (member.kind) {
    case Member::Kind::Value:
    case Member::Kind::Values:
    case Member::Kind::NillableValue:
    case Member::Kind::NillableValues: return member.value.schemaName;
    case Member::Kind::Object:
    case Member::Kind::Objects:
      return member.type != nullptr ? NameText(member.type->name, cls.targetNamespace) : std::string();
    case Member::Kind::AnyType:
    case Member::Kind::AnyTypes: return "xs:anyType";
    case Member::Kind::Rounds:
    case Member::Kind::Any:
    case Member::Kind::Anys:
    case Member::Kind::AnyAttributes: break;
  }
  return "";
}

std::string KindOf(Member const& member) {
  std::string const kind = Plan::KindText(member.kind);
  if (member.group != nullptr) return kind + " of a substitution group";
  return member.value.item != nullptr ? kind + ", a list" : kind;
}

std::string FunctionFor(Plan::Root const& root) {
  if (root.isDocument) return "Read" + root.cppName + "()";
  return CanBeCreated(root) ? "Create" + root.cppName + "()" : std::string();
}

std::string ListOf(std::vector<std::string> const& names) {
  std::string text;
  for (std::string const& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

class Reporter {
 public:
  explicit Reporter(Plan::Namespace const& ns) : m_ns(ns) {}

  std::string Print() {
    m_text = "namespace " + m_ns.cppName + "\n";
    PrintRoots();
    for (Enumeration const* enumeration : m_ns.enumerations) PrintEnumeration(*enumeration);
    for (Class const* cls : m_ns.classes) PrintClass(*cls);
    return std::move(m_text);
  }

 private:
  void PrintRoots() {
    if (m_ns.roots.empty()) return;
    Table table;
    for (Plan::Root const& root : m_ns.roots) {
      table.Add({FunctionFor(root), "element " + NameText(root.name, ""), RootType(root, m_ns), PlaceText(root.place)});
    }
    m_text += "\nglobal elements\n" + table.Take();
  }

  void PrintEnumeration(Enumeration const& enumeration) {
    std::string const name = enumeration.name.local.empty() ? "" : " " + NameText(enumeration.name, "");
    m_text += "\nenum class " + enumeration.cppName + "  " + (name.empty() ? "anonymous " : "") + "simpleType" + name +
              "  " + PlaceText(enumeration.place) + "\n";
    Table table;
    for (Plan::Enumerator const& each : enumeration.enumerators) {
      table.Add({enumeration.cppName + "::" + each.name, "\"" + VisibleText(each.text) + "\""});
    }
    m_text += table.Take();
  }

  void PrintClass(Class const& cls) {
    m_text += "\nclass " + cls.cppName + (cls.base != nullptr ? " : " + NameOf(*cls.base, {&m_ns, nullptr}) : "") +
              "  " + Origin(cls) + (cls.abstract ? "  abstract" : "") + (cls.nillable ? "  nillable" : "") +
              (cls.mixed ? "  mixed" : "") + "  " + PlaceText(cls.place) + "\n";
    Table table;
    Scope const scope{&m_ns, nullptr};
    for (Plan::Choice const& choice : cls.choices) {
      table.Add({cls.cppName + "::Get" + choice.cppName + "()", "choice of " + ListOf(choice.alternatives), "", "1",
                 "choice", cls.cppName + "::E" + choice.cppName});
    }
    for (Member const& member : cls.members) {
      table.Add({cls.cppName + "::Get" + member.cppName + "()", ComponentText(member, cls), SchemaTypeText(member, cls),
                 OccursText(member), KindOf(member), AccessedType(member, scope)});
    }
    m_text += table.Take();
    for (Enumeration const* nested : cls.nestedEnumerations) PrintEnumeration(*nested);
    for (Class const* nested : cls.nested) PrintClass(*nested);
  }

  static std::string Origin(Class const& cls) {
    if (cls.round) return "repeated group";
    if (!cls.name.local.empty()) return "complexType " + NameText(cls.name, "");
    return "anonymous complexType" +
           (cls.defaultElementName.empty() ? "" : " of " + NameText({cls.targetNamespace, cls.defaultElementName}, ""));
  }

  Plan::Namespace const& m_ns;
  std::string m_text;
};

}  // namespace

std::string Report(Plan::Plan const& plan) {
  std::string text;
  for (Plan::Namespace const& ns : plan.namespaces) {
    text += (text.empty() ? "" : "\n") + Reporter(ns).Print();
  }
  return text;
}

}  // namespace Quillon9Generator::Code
