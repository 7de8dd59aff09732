#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>

#include "schema/load.h"

namespace Quillon9Generator::Testing {

inline std::string Replaced(std::string text, std::string const& part, std::string const& by) {
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size())) {
    text.replace(at, part.size(), by);
  }
  return text;
}

inline std::string ReadText(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A folder of files for one test, which is removed with the object.
class SchemaFiles {
 public:
  SchemaFiles() {
    char name[] = "/tmp/quillon9_schema_XXXXXX";
    m_folder = std::string(mkdtemp(name)) + "/";
  }
  ~SchemaFiles() { std::filesystem::remove_all(m_folder); }
  SchemaFiles(SchemaFiles const&) = delete;
  SchemaFiles& operator=(SchemaFiles const&) = delete;

  std::string Path(std::string const& name) const { return m_folder + name; }

  void Write(std::string const& name, std::string const& text) const {
    std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
    std::ofstream(Path(name), std::ios::binary) << text;
  }

  /// Write a schema with the prefix xs for XML Schema and t for its target namespace; \p body begins on line 2.
  void WriteSchema(std::string const& name, std::string const& target, std::string const& body,
                   std::string const& attributes = "") const {
    Write(name, "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:t='" + target + "'" +
                    (target.empty() ? "" : " targetNamespace='" + target + "'") + " " + attributes + ">\n" + body +
                    "\n</xs:schema>");
  }

  Schema::SchemaSet Load(Schema::LoadOptions const& options) {
    Schema::Diagnostics diagnostics;
    Schema::SchemaSet set = Schema::LoadSchemas(options, diagnostics);
    m_diagnostics.clear();
    for (Schema::Diagnostic const& diagnostic : diagnostics.All()) {
      m_diagnostics += Replaced(Format(diagnostic), m_folder, "") + "\n";
    }
    return set;
  }
  Schema::SchemaSet Load(std::initializer_list<char const*> names) {
    Schema::LoadOptions options;
    for (char const* name : names) options.documents.push_back(Path(name));
    return Load(options);
  }

  /// Return the errors and warnings of the last load, a line each, without the folder.
  std::string const& Diagnostics() const { return m_diagnostics; }

 private:
  std::string m_folder;
  std::string m_diagnostics;
};

}  // namespace Quillon9Generator::Testing
