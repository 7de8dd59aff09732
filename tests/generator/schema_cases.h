#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>

#include "schema_files.h"

namespace Quillon9Generator::Testing {

/// The body of a schema, and the messages about it.
struct SchemaCase {
  char const* body;
  char const* diagnostics;  ///< without "a.xsd:2:" in front of each line
};

inline std::string DiagnosticsOf(std::string const& body) {
  SchemaFiles files;
  files.WriteSchema("a.xsd", "urn:t", body);
  Schema::Print(files.Load({"a.xsd"}));
  return Replaced(files.Diagnostics(), "a.xsd:2:", "");
}

inline void Check(SchemaCase const* cases, std::size_t count) {
  for (SchemaCase const* one = cases; one != cases + count; ++one) {
    EXPECT_EQ(DiagnosticsOf(one->body), one->diagnostics) << one->body;
  }
}
inline void Check(std::initializer_list<SchemaCase> cases) { Check(cases.begin(), cases.size()); }

}  // namespace Quillon9Generator::Testing
