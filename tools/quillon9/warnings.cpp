#include "warnings.h"

#include <cstdio>

namespace Quillon9Tool {

void Warnings::Add(std::string const& text) { m_lines += "quillon9: " + m_name + ": warning: " + text + '\n'; }

void Warnings::Add(std::size_t count, char const* one, char const* many) {
  if (count != 0) Add(std::to_string(count) + ' ' + (count == 1 ? one : many));
}

void Warnings::Add(Losses const& losses) {
  Add(losses.comments, "comment is left out", "comments are left out");
  Add(losses.processingInstructions, "processing instruction is left out", "processing instructions are left out");
  Add(losses.documentTypes, "document type declaration is left out", "document type declarations are left out");
  Add(losses.entityReferences, "unexpanded entity reference is left out", "unexpanded entity references are left out");
  Add(losses.declarations, "notation, unparsed entity or piece of additional data is left out",
      "notations, unparsed entities or pieces of additional data are left out");
  Add(losses.floats, "value is encoded as float and comes out as another number",
      "values are encoded as float and come out as other numbers");
}

void Warnings::Print() const { std::fputs(m_lines.c_str(), stderr); }

}  // namespace Quillon9Tool
