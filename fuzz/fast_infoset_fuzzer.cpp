#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "fastinfoset/constants.h"
#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "tree.h"

namespace {

using namespace Quillon9;

enum Options : unsigned { kWithVocabulary = 1, kWithoutNamespaces = 2, kSmall = 4 };

/// With a vocabulary, every table has entries from the start.
CXmlSerializationContext ContextOf(unsigned options) {
  CXmlSerializationContext context;
  if ((options & kWithoutNamespaces) != 0) context.SetSchemaType(SchemaType_DTD);
  if ((options & kWithVocabulary) == 0) return context;
  CFIVocabulary& vocabulary = context.GetFIContext()->GetVocabulary();
  vocabulary.AddElement("p", "urn:p", "element");
  vocabulary.AddAttribute("", "", "attribute");
  vocabulary.AddElementValue("text");
  vocabulary.AddAttributeValue("value");
  context.GetFIContext()->SetUseGeneratedVocabulary(true);
  return context;
}

}  // namespace

/// Only input with the header reaches the reader of Fast Infoset; the fuzz target of documents covers the rest. The
/// input gives a failure or a tree, which can be written in the same format, and in text if its names and characters
/// allow it, and is then read again.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  using Quillon9::fi::kHeader;
  Fuzzing::Input input(data, size);
  unsigned const options = input.Options();
  if (input.Size() <= sizeof kHeader || std::memcmp(input.Data(), kHeader, sizeof kHeader) != 0) return -1;
  Fuzzing::LimitContent((options & kSmall) != 0 ? 4000 : 1u << 20);
  CXmlSerializationContext const context = ContextOf(options);
  CXmlDocument document(context);
  try {
    document.LoadXmlStream(input.Data(), input.Size());
  } catch (CQnException const&) {
    return 0;
  }
  Fuzzing::Require(document.GetDocumentElement() != nullptr, "a document has an element");
  CXmlElement const& root = *document.GetDocumentElement();
  if ((options & kWithoutNamespaces) != 0 || !Fuzzing::All(root, Fuzzing::IsWrittenWhole)) return 0;
  Fuzzing::RequireFastInfosetAgain(root, context);
  if (Fuzzing::All(root, Fuzzing::FitsText)) Fuzzing::RequireTextAgain(root, context);
  return 0;
}
