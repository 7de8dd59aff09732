#include <string>

#include "commands.h"
#include "failure.h"
#include "files.h"
#include "input_document.h"
#include "namespaces.h"
#include "tree_walk.h"
#include "utf8.h"

namespace Quillon9Tool {

using namespace Quillon9;

namespace {

/// Prints one line for each element, with its text, and for each attribute, indenting the contents of an element.
class TreePrinter {
 public:
  TreePrinter(InputDocument const& document, bool keepSpace)
      : m_root(document.GetRoot()), m_namespaces(m_root, document.GetPrefixes()), m_keepSpace(keepSpace) {}

  void Print() {
    Walk(
        m_root, [this](CXmlElement const& element) { Start(element); },
        [this](CXmlElement const&) { m_indent.resize(m_indent.size() - kStep.size()); });
    m_console.Finish();
  }

 private:
  static constexpr std::string_view kStep = "  ";

  void Start(CXmlElement const& element) {
    Line(Escaped(m_namespaces.NameOf(element)), TextOf(element, m_keepSpace), false);
    m_indent += kStep;
    if (&element == &m_root) Declarations();
    for (CXmlAttribute const* const attribute : element.GetAttributes()) {
      Line("@" + Escaped(m_namespaces.NameOf(*attribute)), attribute->GetValue(), true);
    }
  }

  void Declarations() {
    if (!m_namespaces.GetDefault().empty()) Line("xmlns", m_namespaces.GetDefault(), true);
    for (auto const& [uri, prefix] : m_namespaces.GetPrefixes()) {
      if (uri != CXmlWriter::XML_NAMESPACE) Line("xmlns:" + prefix, uri, true);
    }
  }

  void Line(std::string const& name, std::string const& value, bool showsEmpty) {
    m_console.Write(m_indent);
    m_console.Write(name);
    if (showsEmpty || !value.empty()) m_console.Write(" = " + Quoted(value));
    m_console.Write("\n");
  }

  CXmlElement const& m_root;
  Namespaces m_namespaces;
  bool m_keepSpace;
  std::string m_indent;
  Console m_console;
};

}  // namespace

void PrintTree(TreeOptions const& options) {
  InputDocument const document(options.input);
  Named(InputName(options.input), [&] { TreePrinter(document, options.keepSpace).Print(); });
}

}  // namespace Quillon9Tool
