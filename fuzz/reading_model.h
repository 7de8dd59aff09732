#pragma once

#include <memory>
#include <string>

#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "reading_classes.h"
#include "reading_schema.h"

namespace Reading {

/// A slow reader by the rules of reading, one function for each, that remembers nothing. Of the library it takes the
/// tree, the conversions of values and the tests of namespaces and facets.
class Model {
 public:
  Model(Schema const& schema, Quillon9::CXmlSerializationContext const& ctx);
  ~Model();
  Model(Model const&) = delete;
  Model& operator=(Model const&) = delete;

  /// Read the document element \p root into the one object of the first class.
  void Read(Quillon9::CXmlElement* root);

  /// As ValuesOf() of the library's object.
  std::string Values() const;
  Log m_log;

 private:
  class Reader;
  std::unique_ptr<Reader> m_reader;
};

}  // namespace Reading
