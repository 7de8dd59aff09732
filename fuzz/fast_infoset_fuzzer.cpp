#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fastinfoset/constants.h"
#include "quillon9/binding/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"

namespace {

/// A context that puts entries into every table beforehand.
Quillon9::CXmlSerializationContext ContextWithVocabulary() {
  Quillon9::CXmlSerializationContext context;
  Quillon9::CFIVocabulary& vocabulary = context.GetFIContext()->GetVocabulary();
  vocabulary.AddElement("p", "urn:p", "element");
  vocabulary.AddAttribute("", "", "attribute");
  vocabulary.AddElementValue("text");
  vocabulary.AddAttributeValue("value");
  context.GetFIContext()->SetUseGeneratedVocabulary(true);
  return context;
}

/// Gives a tree or a failure, and nothing else.
void Load(Quillon9::CXmlSerializationContext const& context, std::uint8_t const* data, std::size_t size) {
  Quillon9::CXmlDocument document(context);
  try {
    document.LoadXmlStream(data, size);
  } catch (Quillon9::CQnException const&) {
    return;
  }
  if (document.GetDocumentElement() == nullptr) __builtin_trap();
}

}  // namespace

/// Only what has the header reaches the reader of Fast Infoset; all else is for the fuzz target of documents.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  using Quillon9::fi::kHeader;
  static Quillon9::CXmlSerializationContext const withVocabulary = ContextWithVocabulary();
  if (size <= sizeof kHeader || std::memcmp(data, kHeader, sizeof kHeader) != 0) return -1;
  Load(Quillon9::CXmlSerializationContext::m_defaultContext, data, size);
  Load(withVocabulary, data, size);
  return 0;
}
