#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/quillon9.h"
#include "schema/diagnostics.h"
#include "schema/files.h"
#include "schema/node.h"
#include "schema/places.h"

namespace Quillon9Generator::Schema {

/// One file with its elements. The nodes refer to texts that it owns.
class SourceFile {
 public:
  /// \p path is owned by the caller and outlives the places of all nodes; null for a text that the program brings.
  explicit SourceFile(std::string const* path);
  SourceFile(SourceFile const&) = delete;
  SourceFile& operator=(SourceFile const&) = delete;

  /// Read the file. A fault goes to \p diagnostics, with \p reference as its place if there is no file to read.
  /// \return whether the file was read.
  bool Read(Files const& files, Diagnostics& diagnostics, Place const& reference);
  /// Take \p text, which must be well-formed, in place of a file.
  void ReadText(char const* text);

  std::string const* GetPath() const { return m_path; }
  Node const& GetRoot() const { return m_root; }
  /// Return the octets of the file, to find copies of it.
  std::string_view GetOctets() const;

 private:
  void ReportUnreadable(Diagnostics& diagnostics, Place const& reference, std::string const& reason) const;
  void BuildNodes(Diagnostics* diagnostics);
  void Fill(Node& node, Quillon9::CXmlElement const& element, Scope const* outer, int depth);
  void FillAttributes(Node& node, Quillon9::CXmlElement const& element, Scope const* outer);
  void FillChildren(Node& node, Quillon9::CXmlElement const& element, int depth);
  void FillDocumentation(Node& node, Quillon9::CXmlElement const& element);
  void SkipTags(Quillon9::CXmlElement const& element);
  void Name(Node& node, std::string_view name);
  Place NextPlace();

  std::string const* m_path;
  Quillon9::CXmlSerializationContext m_context;
  std::unique_ptr<Quillon9::CXmlDocument> m_document;
  std::deque<Scope> m_scopes;
  std::deque<std::string> m_texts;  // of documentation with child elements
  Node m_root;
  TagPlaces m_tags;  // only while the nodes are built
  std::size_t m_nextPlace = 0;
  Diagnostics* m_diagnostics = nullptr;
};

}  // namespace Quillon9Generator::Schema
