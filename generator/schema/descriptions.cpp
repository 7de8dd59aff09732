#include "schema/descriptions.h"

#include "schema/documents.h"
#include "schema/grammar.h"

namespace Quillon9Generator::Schema {

namespace {

constexpr std::string_view kVersion11 = "http://schemas.xmlsoap.org/wsdl/";
constexpr std::string_view kVersion20 = "http://www.w3.org/ns/wsdl";

bool Is(Node const& node, std::string_view ns, std::string_view name) { return node.ns == ns && node.name == name; }

}  // namespace

bool IsDescription(Node const& root) {
  return Is(root, kVersion11, "definitions") || Is(root, kVersion20, "description");
}

DescriptionParts PartsOf(Node const& description) {
  DescriptionParts parts;
  std::string_view const ns = description.ns;
  for (Node const& child : description.children) {
    bool const isReference = Is(child, ns, "import") || (ns == kVersion20 && Is(child, ns, "include"));
    if (isReference && child.Has("location")) parts.others.push_back(&child);
    if (!Is(child, ns, "types")) continue;
    for (Node const& part : child.children) {
      if (part.tag == Tag::Schema) parts.schemas.push_back(&part);
      if (part.tag == Tag::Import) parts.imports.push_back(&part);
    }
  }
  return parts;
}

// ---- The part of Documents that reads them

void Documents::AddDescription(SourceFile const& source, Location location) {
  for (Document const& known : m_descriptions) {
    if (known.source == &source) return;
  }
  // Whatever it imports is of another namespace than its elements.
  m_descriptions.push_back({&source, std::move(location), std::string(source.GetRoot().ns), 0, false});
}

void Documents::FollowDescriptions() {
  for (std::size_t i = 0; i < m_descriptions.size(); ++i) {  // which grow meanwhile
    Document const& description = m_descriptions[i];
    DescriptionParts const parts = PartsOf(description.Root());
    for (Node const* schema : parts.schemas) {
      CheckGrammar(*schema, m_diagnostics);
      Add({description.source, description.location, TargetNamespace(*schema), 0, false, schema});
    }
    for (Node const* import : parts.imports) Import(description, *import);
    for (Node const* other : parts.others) ImportDescription(description, *other);
  }
  if (!m_descriptions.empty() && m_documents.empty() && !m_diagnostics.HasErrors()) {
    m_diagnostics.Error(m_descriptions.front().Root().place, "there is no schema in this description");
  }
}

void Documents::ImportDescription(Document const& description, Node const& node) {
  std::string_view const location = Trimmed(*node.Find("location"));
  std::vector<Location> const found = m_locations.Find(location, description.location);
  if (found.empty()) return ReportLost(node, location);
  SourceFile const* const source = Read(found.front().path, node.place);
  if (source == nullptr) return;
  if (IsDescription(source->GetRoot())) return AddDescription(*source, found.front());
  if (IsSchema(*source)) Add({source, found.front(), TargetNamespace(source->GetRoot()), ++m_imports, false});
}

}  // namespace Quillon9Generator::Schema
