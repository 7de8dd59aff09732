#include "quillon9/binding/serialization_context.h"

#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

constexpr char kExclusive[] =
    "The parser can only ignore additional elements, or ignore the fact that some required ones are missing, you "
    "can not ignore both\nSet %s to false before setting %s to true";

}  // namespace

[[gnu::init_priority(101)]] CXmlSerializationContext CXmlSerializationContext::m_defaultContext;

void CXmlSerializationContext::SetIgnoreUnknownElements(bool ignore) {
  if (ignore && m_ignoreMissingMandatoryElements) {
    throw CQnInvalidStateException(FormatString(kExclusive, "IgnoreMissingMandatoryElements", "IgnoreUnknownElements"));
  }
  m_ignoreUnknownElements = ignore;
}

void CXmlSerializationContext::SetIgnoreMissingMandatoryElements(bool ignore) {
  if (ignore && m_ignoreUnknownElements) {
    throw CQnInvalidStateException(FormatString(kExclusive, "IgnoreUnknownElements", "IgnoreMissingMandatoryElements"));
  }
  m_ignoreMissingMandatoryElements = ignore;
}

}  // namespace Quillon9
