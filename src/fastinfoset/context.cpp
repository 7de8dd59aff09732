#include "quillon9/fastinfoset/context.h"

#include "fastinfoset/constants.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/item_type.h"

namespace Quillon9 {

namespace {

constexpr unsigned long kRestrictedAlphabet = 1;
constexpr unsigned long kEncodingAlgorithm = 2;
constexpr unsigned long kNumeric = 1;
constexpr unsigned long kDateTime = 2;

struct Suggestion {
  unsigned long m_type;  // an ItemType
  CFastInfosetContext::EncodedCharacterString m_encoding;
};

constexpr Suggestion kSuggestions[] = {
    {ItemType_hexBinary, {kEncodingAlgorithm, fi::kHexadecimal}},
    {ItemType_base64Binary, {kEncodingAlgorithm, fi::kBase64}},
    {ItemType_i1, {kEncodingAlgorithm, fi::kShort}},
    {ItemType_i2, {kEncodingAlgorithm, fi::kShort}},
    {ItemType_ui1, {kEncodingAlgorithm, fi::kShort}},
    {ItemType_i4, {kEncodingAlgorithm, fi::kInt}},
    {ItemType_ui2, {kEncodingAlgorithm, fi::kInt}},
    {ItemType_i8, {kEncodingAlgorithm, fi::kLong}},
    {ItemType_ui4, {kEncodingAlgorithm, fi::kLong}},
    {ItemType_ui8, {kEncodingAlgorithm, fi::kLong}},
    {ItemType_r4, {kEncodingAlgorithm, fi::kFloat}},
    {ItemType_r8, {kEncodingAlgorithm, fi::kDouble}},
    {ItemType_boolean, {kEncodingAlgorithm, fi::kBoolean}},
    {ItemType_duration, {kRestrictedAlphabet, kDateTime}},
    {ItemType_yearMonth, {kRestrictedAlphabet, kDateTime}},
    {ItemType_monthDay, {kRestrictedAlphabet, kDateTime}},
    {ItemType_year, {kRestrictedAlphabet, kDateTime}},
    {ItemType_month, {kRestrictedAlphabet, kDateTime}},
    {ItemType_day, {kRestrictedAlphabet, kDateTime}},
    {ItemType_date, {kRestrictedAlphabet, kDateTime}},
    {ItemType_datetime, {kRestrictedAlphabet, kDateTime}},
    {ItemType_time, {kRestrictedAlphabet, kDateTime}},
    {ItemType_decimal, {kRestrictedAlphabet, kNumeric}},
    {ItemType_integer, {kRestrictedAlphabet, kNumeric}},
};

}  // namespace

CFastInfosetContext::CFastInfosetContext() = default;
CFastInfosetContext::CFastInfosetContext(CFastInfosetContext const& other) = default;
CFastInfosetContext& CFastInfosetContext::operator=(CFastInfosetContext const& other) = default;
CFastInfosetContext::~CFastInfosetContext() = default;

void CFastInfosetContext::ThrowOutOfRange(unsigned long type) {
  throw CQnException(FormatString("The item type [%lu] is out of range", type));
}

void CFastInfosetContext::SetEncoding(unsigned long type, EncodedCharacterString encoding) {
  if (type >= kItemTypes) ThrowOutOfRange(type);
  m_encodings[type] = encoding;
}

void CFastInfosetContext::SetSuggestedValues() {
  for (Suggestion const& suggestion : kSuggestions) SetEncoding(suggestion.m_type, suggestion.m_encoding);
}

}  // namespace Quillon9
