#include "schema/documents.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>

#include "schema/built_ins.h"
#include "schema/descriptions.h"
#include "schema/grammar.h"
#include "schema/paths.h"

namespace Quillon9Generator::Schema {

namespace {

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

}  // namespace

std::string TargetNamespace(Node const& schema) {
  return std::string(Trimmed(schema.Find("targetNamespace").value_or("")));
}

Documents::Documents(LoadOptions const& options, Files const& files, std::deque<std::string>& paths,
                     Diagnostics& diagnostics)
    : m_options(options),
      m_files(files),
      m_paths(paths),
      m_diagnostics(diagnostics),
      m_catalog(files),
      m_locations(m_catalog, options.includePaths, files) {}

void Documents::Load() {
  for (std::string const& path : m_options.catalogs) m_catalog.Read(path, m_diagnostics);
  for (std::string const& path : m_options.documents) AddMain(path);
  FollowDescriptions();
  std::size_t followed = 0;
  do {
    for (; followed < m_documents.size(); ++followed) Follow(m_documents[followed]);
  } while (AddMissing());
}

bool Documents::HasNamespace(std::string_view ns) const {
  return std::any_of(m_all.begin(), m_all.end(),
                     [=](Document const* document) { return document->targetNamespace == ns; });
}

std::vector<std::string const*> Documents::Paths() const {
  std::vector<std::string const*> paths;
  auto const add = [&paths](std::string const* path) {
    if (path != nullptr && std::find(paths.begin(), paths.end(), path) == paths.end()) paths.push_back(path);
  };
  for (Document const& description : m_descriptions) add(description.source->GetPath());
  // Copies count as well: they may differ some day.
  for (Document const& document : m_documents) add(document.source->GetPath());
  return paths;
}

/// Return the file, or null if it could not be read, for which one error is enough.
SourceFile const* Documents::Read(std::string const& path, Place const& reference) {
  Files::Status const status = m_files.Find(path);
  if (status.error != 0) {
    std::string const reason = "cannot read " + Quoted(path) + ": " + std::strerror(status.error);
    reference.file != nullptr ? m_diagnostics.Error(reference, reason) : m_diagnostics.Error(path, reason);
    return nullptr;
  }
  auto const [entry, isNew] = m_sources.try_emplace(status.identity);
  if (!isNew) return entry->second.get();
  auto file = std::make_unique<SourceFile>(&m_paths.emplace_back(path));
  if (!file->Read(m_files, m_diagnostics, reference)) return nullptr;
  if (file->GetRoot().tag == Tag::Schema) CheckGrammar(file->GetRoot(), m_diagnostics);
  return (entry->second = std::move(file)).get();
}

/// The same for a file that must be a schema.
SourceFile const* Documents::ReadSchema(std::string const& path, Place const& reference) {
  SourceFile const* const source = Read(path, reference);
  return source != nullptr && IsSchema(*source) ? source : nullptr;
}

/// Return whether the file is a schema; if not, report that.
bool Documents::IsSchema(SourceFile const& source) {
  Node const& root = source.GetRoot();
  if (root.tag == Tag::Schema) return true;
  m_diagnostics.Error(root.place, "this is not a schema: the document element is " + Quoted(root.name));
  return false;
}

void Documents::AddMain(std::string const& path) {
  if (WellKnown const* const known = FindWellKnownAt(path)) return AddWellKnown(*known);
  SourceFile const* const source = Read(path, {});
  if (source == nullptr) return;
  if (IsDescription(source->GetRoot())) return AddDescription(*source, {path, {}});
  if (IsSchema(*source)) Add({source, {path, {}}, TargetNamespace(source->GetRoot()), 0, false});
}

void Documents::Add(Document document) {
  if (!m_known.insert({&document.Root(), document.targetNamespace}).second) return;
  bool const isCopy = IsCopy(document);
  m_documents.push_back(std::move(document));
  if (!isCopy) m_all.push_back(&m_documents.back());
}

// One file is often there twice, under the address of its maker and in a folder next to its user. What it includes must
// still be followed, since that may differ.
bool Documents::IsCopy(Document const& document) {
  if (document.embedded != nullptr) return false;
  return !m_contents.try_emplace({document.source->GetOctets(), document.targetNamespace}, document.source).second;
}

void Documents::Follow(Document const& document) {
  for (Node const& node : document.Root().children) {
    if (node.tag == Tag::Include || node.tag == Tag::Redefine) Include(document, node);
    if (node.tag == Tag::Import) Import(document, node);
  }
}

void Documents::Include(Document const& document, Node const& node) {
  std::string_view const location = Trimmed(node.Find("schemaLocation").value_or(""));
  if (!node.Has("schemaLocation")) return;
  std::vector<Location> const found = m_locations.Find(location, document.location);
  if (found.empty()) return ReportLost(node, location);
  SourceFile const* const source = ReadSchema(found.front().path, node.place);
  if (source == nullptr) return;
  std::string const ns = TargetNamespace(source->GetRoot());
  if (!ns.empty() && ns != document.targetNamespace) {
    return m_diagnostics.Error(node.place, Quoted(location) + " has the target namespace " + Quoted(ns) +
                                               " and can only be imported, not included");
  }
  Add({source, found.front(), document.targetNamespace, document.import,
       ns.empty() && !document.targetNamespace.empty()});
}

/// What is missing is an error where something refers to it.
void Documents::ReportLost(Node const& node, std::string_view location) {
  std::string const text =
      "cannot find " + Quoted(location) + (IsRemote(location) ? "; name a file for it with --catalog" : "");
  bool const isNeeded = std::any_of(node.children.begin(), node.children.end(),
                                    [](Node const& child) { return child.tag != Tag::Annotation; });
  isNeeded ? m_diagnostics.Error(node.place, text) : m_diagnostics.Warning(node.place, text);
}

void Documents::Import(Document const& document, Node const& node) {
  std::string const ns(Trimmed(node.Find("namespace").value_or("")));
  if (ns == document.targetNamespace) {
    return m_diagnostics.Error(node.place, "a schema cannot import its own namespace " + Quoted(ns));
  }
  std::string_view const location = Trimmed(node.Find("schemaLocation").value_or(""));
  if (!location.empty()) {
    for (Location const& found : m_locations.Find(location, document.location)) {
      // A file that only has the name of a remote one may be another.
      bool const isCertain = !IsRemote(location) || !found.address.empty();
      if (ImportFrom(found, node, ns, isCertain)) return;
    }
  }
  std::optional<Location> const found = m_locations.FindNamespace(ns);
  if (found && ImportFrom(*found, node, ns, true)) return;
  LostImport& lost = m_lost[ns];
  if (lost.location.empty()) lost = {node.place, std::string(location)};
}

/// Return whether the import is done with, if only by an error.
bool Documents::ImportFrom(Location const& location, Node const& node, std::string const& ns, bool mustMatch) {
  SourceFile const* const source = ReadSchema(location.path, node.place);
  if (source == nullptr) return true;
  std::string const target = TargetNamespace(source->GetRoot());
  if (target == ns) {
    Add({source, location, ns, ++m_imports, false});
  } else if (mustMatch) {
    m_diagnostics.Error(node.place,
                        Quoted(location.path) + " has the target namespace " + Quoted(target) + ", not " + Quoted(ns));
  }
  return target == ns || mustMatch;
}

void Documents::AddWellKnown(WellKnown const& known) {
  std::string const ns(known.ns);
  auto& source = m_wellKnown[ns];
  if (source != nullptr) return;
  source = std::make_unique<SourceFile>(nullptr);
  source->ReadText(known.text);
  Add({source.get(), {}, ns, ++m_imports, false});
}

namespace {

/// Whether \p node or one inside it refers to something of the namespace of XML Schema besides its built-in types.
bool RefersToSchemaForSchemas(Node const& node) {
  static constexpr std::string_view kReferences[] = {"ref", "type", "base", "itemType", "substitutionGroup"};
  for (NodeAttribute const& attribute : node.attributes) {
    bool const isReference =
        std::find(std::begin(kReferences), std::end(kReferences), attribute.name) != std::end(kReferences);
    if (!isReference || !attribute.ns.empty() || node.tag == Tag::Foreign) continue;
    std::string_view const name = Trimmed(attribute.value);
    std::size_t const colon = name.find(':');
    bool const hasPrefix = colon != std::string_view::npos;
    if (node.scope->Find(hasPrefix ? name.substr(0, colon) : std::string_view()) != kSchemaNamespace) continue;
    if (!IsBuiltInType(hasPrefix ? name.substr(colon + 1) : name)) return true;
  }
  return std::any_of(node.children.begin(), node.children.end(), RefersToSchemaForSchemas);
}

}  // namespace

/// Bring the well-known schemas for namespaces that no file brings, which is certain only when all others are there.
/// Return whether there is a new document. Few of those who import the namespace of XML Schema need more than its
/// types.
bool Documents::AddMissing() {
  std::size_t const before = m_documents.size();
  auto const isNeeded = [this](std::string const& ns) {
    return ns != kSchemaNamespace || std::any_of(m_all.begin(), m_all.end(), [](Document const* document) {
             return RefersToSchemaForSchemas(document->Root());
           });
  };
  for (auto lost = m_lost.begin(); lost != m_lost.end();) {
    std::string const& ns = lost->first;
    WellKnown const* const known = FindWellKnown(ns);
    bool const isThere = HasNamespace(ns);
    if (!isThere && known != nullptr && isNeeded(ns)) AddWellKnown(*known);
    lost = isThere || known != nullptr ? m_lost.erase(lost) : std::next(lost);
  }
  return m_documents.size() != before;
}

}  // namespace Quillon9Generator::Schema
