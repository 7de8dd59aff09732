#pragma once

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "schema/load.h"
#include "schema/locations.h"
#include "schema/source_file.h"
#include "schema/well_known.h"

namespace Quillon9Generator::Schema {

/// A file as one namespace has it. A file without a target namespace may be included into several.
struct Document {
  SourceFile const* source = nullptr;
  Location location;
  std::string targetNamespace;
  int import = 0;          ///< the number of the import that brought it, with what that file includes; 0 for none
  bool chameleon = false;  ///< names without a prefix are in the target namespace, which the file does not name
  Node const* embedded = nullptr;  ///< the schema, where it is one of a description; else that is the whole file

  Node const& Root() const { return embedded != nullptr ? *embedded : source->GetRoot(); }
};

/// The target namespace that \p schema names; empty for none.
std::string TargetNamespace(Node const& schema);

/// An import whose document was not found.
struct LostImport {
  Place place;
  std::string location;  ///< empty if the schema names none
};

/// Reads the main documents of a set and those that they include and import, each once.
class Documents {
 public:
  /// The paths of all files are kept in \p paths, which outlives the components.
  Documents(LoadOptions const& options, Files const& files, std::deque<std::string>& paths, Diagnostics& diagnostics);

  void Load();

  /// Return all documents in the order in which they were first referred to; none has the same content as another.
  std::vector<Document const*> const& All() const { return m_all; }
  /// Return the paths of all files, each once, in that order. Those of descriptions come first.
  std::vector<std::string const*> Paths() const;
  /// Return the first lost import of each namespace that no document has.
  std::map<std::string, LostImport> const& GetLostImports() const { return m_lost; }
  bool HasNamespace(std::string_view ns) const;

 private:
  SourceFile const* Read(std::string const& path, Place const& reference);
  SourceFile const* ReadSchema(std::string const& path, Place const& reference);
  bool IsSchema(SourceFile const& source);
  void AddMain(std::string const& path);
  void Add(Document document);
  bool IsCopy(Document const& document);
  void Follow(Document const& document);
  void Include(Document const& document, Node const& node);
  void ReportLost(Node const& node, std::string_view location);
  void Import(Document const& document, Node const& node);
  bool ImportFrom(Location const& location, Node const& node, std::string const& ns, bool mustMatch);
  void AddWellKnown(WellKnown const& known);
  bool AddMissing();

  // descriptions.cpp
  void AddDescription(SourceFile const& source, Location location);
  void FollowDescriptions();
  void ImportDescription(Document const& description, Node const& node);

  LoadOptions const& m_options;
  Files const& m_files;
  std::deque<std::string>& m_paths;
  Diagnostics& m_diagnostics;
  Catalog m_catalog;
  Locations m_locations;
  std::map<std::pair<unsigned long, unsigned long>, std::unique_ptr<SourceFile>> m_sources;  // by identity
  std::map<std::string, std::unique_ptr<SourceFile>> m_wellKnown;                            // by namespace
  std::set<std::pair<Node const*, std::string>> m_known;  // with the target namespace
  std::map<std::pair<std::string_view, std::string>, SourceFile const*> m_contents;
  std::deque<Document> m_descriptions;
  std::deque<Document> m_documents;
  std::vector<Document const*> m_all;
  std::map<std::string, LostImport> m_lost;  // by namespace
  int m_imports = 0;
};

}  // namespace Quillon9Generator::Schema
