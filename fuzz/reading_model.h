#pragma once

#include <memory>
#include <string>

#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "reading_classes.h"
#include "reading_schema.h"

namespace Reading {

/// A slow reader that follows the rules of reading, with one function for each rule, and remembers nothing. It uses
/// only these parts of the library: the tree, the conversions of values and the tests of namespaces and facets.
class Model {
 public:
  Model(Schema const& schema, Quillon9::CXmlSerializationContext const& ctx);
  ~Model();
  Model(Model const&) = delete;
  Model& operator=(Model const&) = delete;

  /// Read the document element \p root into the single object of the first class.
  void Read(Quillon9::CXmlElement* root);

  /// Like ValuesOf() for the library's object.
  std::string Values() const;
  Log m_log;

 private:
  class Reader;
  std::unique_ptr<Reader> m_reader;
};

}  // namespace Reading
