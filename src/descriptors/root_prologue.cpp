#include "descriptors/root_prologue.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/text_arguments.h"
#include "descriptors/form_access.h"
#include "quillon9/descriptors/unknown_content.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

namespace {

/// Whether \p text, a whole `<?...?>`, is \p instruction.
bool IsSameInstruction(std::string_view text, CMarkup const& instruction) {
  constexpr std::string_view kStart = "<?";
  constexpr std::string_view kEnd = "?>";
  std::size_t const end = text.find(kEnd);
  if (!StartsWith(text, kStart) || end == text.npos) return false;
  text = text.substr(kStart.size(), end - kStart.size());
  std::size_t const blank = std::min(text.find_first_of(" \t\r\n"), text.size());
  std::size_t const data = std::min(text.find_first_not_of(" \t\r\n", blank), text.size());
  return text.substr(0, blank) == instruction.target && text.substr(data) == instruction.text;
}

/// Whether \p unknown, which may be null, has \p instruction in front of the document element, where it is written.
bool HasInstruction(CUnknownContent const* unknown, std::string const& instruction) {
  if (unknown == nullptr) return false;
  std::vector<CMarkup> const& kept = unknown->GetDocumentMarkup();
  return std::any_of(kept.begin(), kept.end(), [&](CMarkup const& markup) {
    return markup.childrenInFront == 0 && !markup.IsComment() && IsSameInstruction(instruction, markup);
  });
}

}  // namespace

void WriteRootPrologue(CXmlWriter& writer, CUnknownContent const* unknown, CXmlSerializationContext const& ctx) {
  for (std::string const& instruction : ctx.GetProcessingInstructions()) {
    if (!HasInstruction(unknown, instruction)) writer.WritePI(instruction);
  }
  CNamespaceAliasMap const& aliases = *ctx.GetNamespaceAliases();
  for (int i = 0; i < aliases.GetNamespaceCount(); ++i) {
    std::string const ns = aliases.GetNamespaceAt(i);
    writer.AddNamespace(aliases.GetAliasFromNamespace(ns.c_str()), ns);
  }
  if (!ctx.GetDefaultNamespaceURI().empty()) writer.SetDefaultNamespace(ctx.GetDefaultNamespaceURI());
}

void BindKeptPrefixes(CXmlGeneratedClass const& object, CXmlSerializationContext const& ctx, CXmlWriter& writer) {
  ObjectForm const* const form = FormAccess::Find(object);
  if (form == nullptr) return;
  CNamespaceAliasMap const& aliases = *ctx.GetNamespaceAliases();
  for (auto const& [prefix, uri] : form->prefixes) {
    bool const isPlain = uri.find_first_of("&<\"") == std::string::npos;
    if (!isPlain || aliases.DoesAliasExist(prefix.c_str()) || aliases.DoesNamespaceExist(uri.c_str())) continue;
    if (XmlWriterAccess::IsFreeForDocument(writer, prefix, uri)) writer.AddNamespace(prefix, uri);
  }
}

}  // namespace Quillon9
