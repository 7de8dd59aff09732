#include "fastinfoset/infoset_parser.h"

#include <algorithm>
#include <climits>

#include "base/failure_detail.h"
#include "fastinfoset/algorithms.h"
#include "fastinfoset/reader_tables.h"
#include "fastinfoset/restricted_alphabet.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/fastinfoset/vocabulary.h"
#include "quillon9/text/encoder.h"

namespace Quillon9 {

// A missing last terminator is not a failure once the element is complete, and anything after a terminator is ignored.
bool InfosetParser::ReadChild() {
  if (m_isEnded || (m_hasElement && !m_source.Has(1))) return false;
  std::uint32_t const octet = m_source.Octet();
  if (octet == fi::kTerminator || octet == fi::kDoubleTerminator) {
    if (!m_hasElement) ThrowFastInfosetFailure("Invalid Document type without Element.");
    m_isEnded = true;
    return false;
  }
  if (octet < fi::kCharacterChunk) {
    if (m_hasElement) ThrowFastInfosetFailure("Invalid Document type with more than one Element.");
    m_hasElement = true;
    ElementBit2(octet);
  } else if (octet == fi::kProcessingInstruction) {
    ProcessingInstruction();
  } else if (octet == fi::kComment) {
    Comment();
  } else if ((octet & fi::kTopSixBits) == fi::kDocumentTypeDeclaration) {
    if (m_hasElement) ThrowFastInfosetFailure("Invalid Document type with Document Type Declaration behind Element.");
    DocumentTypeDeclarationBit7(octet);
  }
  return true;
}

void InfosetParser::AppendDecoded(EncodedString const& source, CFIVocabulary const& vocabulary, std::uint64_t most,
                                  std::string& target) {
  switch (source.m_kind) {
    case EncodedString::Kind::kUtf8: return;
    case EncodedString::Kind::kUtf16: {
      std::size_t const length = std::min<std::size_t>(source.m_length, INT_MAX);
      target += CEncoder::Utf16ToLocalCodePage(source.m_octets, static_cast<int>(length));
      return;
    }
    case EncodedString::Kind::kRestrictedAlphabet: {
      auto const& alphabets = vocabulary.GetRestrictedAlphabets();  // the same in each vocabulary
      if (source.m_index > alphabets.size()) ThrowBeyondTable();
      AppendRestrictedAlphabetText(target, source.m_octets, source.m_length, alphabets[source.m_index - 1], most);
      return;
    }
    case EncodedString::Kind::kEncodingAlgorithm:
      target += DecodedText(source.m_index, source.m_octets, source.m_length);
      return;
  }
}

void InfosetParser::ThrowInvalidElement() { ThrowFastInfosetFailure("Invalid Encoding of Element type."); }

void InfosetParser::ThrowPrefixWithoutNamespace() {
  ThrowFastInfosetFailure("Invalid QName type Prefix without Namespace.");
}

void InfosetParser::ThrowNestedTooDeep(std::uint32_t limit) {
  std::string const reason = FormatString("The element nesting exceeds the limit of %u levels", limit);
  ThrowFastInfosetFailure(reason.c_str(), FailureKind_Limit);
}

}  // namespace Quillon9
