#include "descriptors/root_prologue.h"

#include <string>

#include "descriptors/form_access.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

void WriteRootPrologue(CXmlWriter& writer, CXmlSerializationContext const& ctx) {
  for (std::string const& instruction : ctx.GetProcessingInstructions()) writer.WritePI(instruction);
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
