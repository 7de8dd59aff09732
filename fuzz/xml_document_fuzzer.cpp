#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "tree.h"

namespace {

using namespace Quillon9;

enum Options : unsigned {
  kWithoutNamespaces = 1,
  kKeepCdata = 2,
  kAsText = 4,
  kAsWideText = 8,
  kFiltered = 16,
  kSmall = 32
};

CXmlSerializationContext ContextOf(unsigned options) {
  CXmlSerializationContext context;
  if ((options & kWithoutNamespaces) != 0) context.SetSchemaType(SchemaType_DTD);
  context.SetStripCDATA((options & kKeepCdata) == 0);
  return context;
}

bool DropShortNames(CXmlElement* element) { return element->GetLocalName().size() != 1; }

/// ASCII is unchanged; the other octets become characters up to U+FF00, including surrogates.
std::wstring Wide(std::string const& octets) {
  std::wstring wide;
  for (char const c : octets) {
    unsigned const octet = static_cast<unsigned char>(c);
    wide += static_cast<wchar_t>(octet < 0x80 ? octet : octet << 8);
  }
  return wide;
}

void Load(CXmlDocument& document, unsigned options, Fuzzing::Input const& input) {
  if ((options & kAsWideText) != 0) {
    document.LoadXml(Wide(input.Rest()).c_str());
  } else if ((options & kAsText) != 0) {
    document.LoadXml(input.Rest().c_str());
  } else {
    document.LoadXmlStream(input.Data(), input.Size());
  }
}

/// Fast Infoset begins with an octet that never begins text, or with its own declaration.
bool IsFastInfoset(CXmlDocument const& document) {
  std::string const start(reinterpret_cast<char const*>(document.GetInputData()),
                          document.GetInputSize() < 100 ? document.GetInputSize() : 100);
  return start.compare(0, 2, std::string("\xE0\0", 2)) == 0 || start.find("finf") != std::string::npos;
}

}  // namespace

/// Octets of any kind, including compressed ones, give a failure or a tree. The tree can be written in either format
/// and is then read again.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::Input input(data, size);
  unsigned const options = input.Options();
  Fuzzing::LimitContent((options & kSmall) != 0 ? 4000 : 1u << 20);
  CLimits::SetMaxDeclaredAttributes((options & kSmall) != 0 ? 2 : 1000);
  CXmlSerializationContext const context = ContextOf(options);
  CXmlDocument document((options & kFiltered) != 0 ? DropShortNames : nullptr, context);
  try {
    Load(document, options, input);
  } catch (CQnException const&) {
    return 0;
  }
  if (document.GetDocumentElement() == nullptr) return 0;  // the filter may also drop the document element
  CXmlElement const& root = *document.GetDocumentElement();
  if (!Fuzzing::All(root, Fuzzing::IsWrittenWhole)) return 0;
  // Fast Infoset has namespaces under any schema, but text then has none.
  bool const isInfoset = IsFastInfoset(document);
  if (isInfoset && ((options & kWithoutNamespaces) != 0 || !Fuzzing::All(root, Fuzzing::FitsText))) return 0;
  Fuzzing::RequireTextAgain(root, context);
  if ((options & kWithoutNamespaces) == 0) Fuzzing::RequireFastInfosetAgain(root, context);
  return 0;
}
