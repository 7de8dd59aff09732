// What a context does with the additional root attributes. It stands apart from the class because the attributes are
// bound objects, which lean on the context themselves.

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
