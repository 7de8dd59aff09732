#include "schema/diagnostics.h"

#include <utility>

namespace Quillon9Generator::Schema {

namespace {

Diagnostic At(Diagnostic::Severity severity, Place const& place, std::string text) {
  return {severity, place.file != nullptr ? *place.file : std::string(), place.line, place.column, std::move(text)};
}

}  // namespace

void Diagnostics::Error(Place const& place, std::string text) {
  Add(At(Diagnostic::Severity::Error, place, std::move(text)));
}

void Diagnostics::Warning(Place const& place, std::string text) {
  Add(At(Diagnostic::Severity::Warning, place, std::move(text)));
}

void Diagnostics::Error(std::string file, std::string text) {
  Add({Diagnostic::Severity::Error, std::move(file), 0, 0, std::move(text)});
}

void Diagnostics::Add(Diagnostic diagnostic) {
  std::string const line = Format(diagnostic);
  if (!m_known.insert(line).second) return;
  if (diagnostic.severity == Diagnostic::Severity::Error) m_hasErrors = true;
  m_all.push_back(std::move(diagnostic));
}

std::string Format(Diagnostic const& diagnostic) {
  std::string line;
  if (!diagnostic.file.empty()) line = diagnostic.file + ":";
  if (diagnostic.line != 0) {
    line += std::to_string(diagnostic.line) + ":" + std::to_string(diagnostic.column) + ":";
  }
  if (!line.empty()) line += " ";
  line += diagnostic.severity == Diagnostic::Severity::Error ? "error: " : "warning: ";
  return line + diagnostic.text;
}

}  // namespace Quillon9Generator::Schema
