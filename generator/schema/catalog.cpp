#include "schema/catalog.h"

#include <utility>

#include "schema/node.h"
#include "schema/paths.h"

namespace Quillon9Generator::Schema {

namespace {

constexpr char const* kCatalogNamespace = "urn:oasis:names:tc:entity:xmlns:xml:catalog";

std::string BaseOf(Quillon9::CXmlElement const& element, std::string const& outer) {
  std::string const& base = element.GetAttribute("base", std::string(kXmlNamespace));
  return base.empty() ? outer : Resolved(outer, base);
}

}  // namespace

void Catalog::Read(std::string const& path, Diagnostics& diagnostics) {
  if (!m_read.insert(path).second) return;
  Quillon9::CXmlSerializationContext context;
  context.SetTextEncoding(Quillon9::TextEncoding_UTF8);
  Quillon9::CXmlDocument document(context);
  try {
    m_files.Load(document, path);
  } catch (Quillon9::CQnException const& failure) {
    diagnostics.Error(path, failure.GetMessage());
    return;
  }
  Quillon9::CXmlElement const& root = *document.GetDocumentElement();
  if (root.GetNamespaceURI() != kCatalogNamespace || root.GetLocalName() != "catalog") {
    diagnostics.Error(path, "this is not an XML catalog: the document element is \"" + root.GetLocalName() + "\"");
    return;
  }
  ReadEntries(root, BaseOf(root, path), diagnostics);
}

void Catalog::ReadEntries(Quillon9::CXmlElement const& parent, std::string const& base, Diagnostics& diagnostics) {
  for (Quillon9::CXmlElement const& element : parent.Children(nullptr, kCatalogNamespace)) {
    std::string const ownBase = BaseOf(element, base);
    if (element.GetLocalName() == "group") {
      ReadEntries(element, ownBase, diagnostics);
    } else if (element.GetLocalName() == "nextCatalog") {
      Read(Resolved(ownBase, element.GetAttribute("catalog", "")), diagnostics);
    } else {
      ReadEntry(element, ownBase);
    }
  }
}

void Catalog::ReadEntry(Quillon9::CXmlElement const& element, std::string const& base) {
  struct Row {
    char const* element;
    Entry::Kind kind;
    char const* address;
    char const* target;
  };
  static constexpr Row kRows[] = {
      {"system", Entry::Kind::Whole, "systemId", "uri"},
      {"uri", Entry::Kind::Whole, "name", "uri"},
      {"rewriteSystem", Entry::Kind::Start, "systemIdStartString", "rewritePrefix"},
      {"rewriteURI", Entry::Kind::Start, "uriStartString", "rewritePrefix"},
      {"systemSuffix", Entry::Kind::End, "systemIdSuffix", "uri"},
      {"uriSuffix", Entry::Kind::End, "uriSuffix", "uri"},
  };
  for (Row const& row : kRows) {
    if (element.GetLocalName() != row.element) continue;
    Add(row.kind, element.GetAttribute(row.address, ""), Resolved(base, element.GetAttribute(row.target, "")));
  }
}

void Catalog::Add(Entry::Kind kind, std::string const& address, std::string target) {
  if (!address.empty() && !IsRemote(target)) m_entries.push_back({kind, address, std::move(target)});
}

std::optional<std::string> Catalog::Find(std::string_view address) const {
  Entry const* best = nullptr;  // an entry for the whole address goes before the longest for a part of it
  for (Entry const& entry : m_entries) {
    std::size_t const size = entry.address.size();
    if (entry.kind == Entry::Kind::Whole && entry.address == address) return entry.target;
    if (size > address.size() || (best != nullptr && size <= best->address.size())) continue;
    bool const matches = entry.kind == Entry::Kind::Start ? address.substr(0, size) == entry.address
                         : entry.kind == Entry::Kind::End ? address.substr(address.size() - size) == entry.address
                                                          : false;
    if (matches) best = &entry;
  }
  if (best == nullptr) return std::nullopt;
  if (best->kind == Entry::Kind::End) return best->target;
  return best->target + std::string(address.substr(best->address.size()));
}

}  // namespace Quillon9Generator::Schema
