#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// What was found wrong, in the form of a compiler: `orders.xsd:14:9: error: no type "po:SKU"; is an import missing?`
struct Diagnostic {
  enum class Severity { Error, Warning };
  Severity severity = Severity::Error;
  std::string file;  ///< empty if it concerns no file
  int line = 0;      ///< 0 if it concerns the file as a whole
  int column = 0;
  std::string text;
};

/// Collects the errors and warnings of one run, in the order in which they are found; the same text at the same place
/// only once.
class Diagnostics {
 public:
  void Error(Place const& place, std::string text);
  void Warning(Place const& place, std::string text);
  void Error(std::string file, std::string text);

  bool HasErrors() const { return m_hasErrors; }
  std::vector<Diagnostic> const& All() const { return m_all; }

 private:
  void Add(Diagnostic diagnostic);

  std::vector<Diagnostic> m_all;
  std::unordered_set<std::string> m_known;  // the lines of all
  bool m_hasErrors = false;
};

/// The line of \p diagnostic, without a line feed.
std::string Format(Diagnostic const& diagnostic);

}  // namespace Quillon9Generator::Schema
