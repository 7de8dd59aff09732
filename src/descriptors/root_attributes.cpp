// How a context handles the additional root attributes. This is a file of its own because the attributes are bound
// objects, which depend on the context.

#include "quillon9/binding/serialization_context.h"
#include "quillon9/descriptors/generic_content.h"

namespace Quillon9 {

CXmlSerializationContext::CXmlSerializationContext() = default;
CXmlSerializationContext::CXmlSerializationContext(CXmlSerializationContext const& other) = default;
CXmlSerializationContext& CXmlSerializationContext::operator=(CXmlSerializationContext const& other) = default;
CXmlSerializationContext::~CXmlSerializationContext() = default;

CSmartPtr<CAttributeCol> CXmlSerializationContext::GetAdditionalRootAttributes() const {
  if (!m_additionalRootAttributes) m_additionalRootAttributes = new CAttributeCol("", "##any", "");
  return m_additionalRootAttributes;
}

CAttributeCol const* CXmlSerializationContext::FindAdditionalRootAttributes() const {
  return m_additionalRootAttributes.Get();
}

}  // namespace Quillon9
