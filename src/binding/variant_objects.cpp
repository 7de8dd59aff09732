// The operations of QnVariant that need the class of bound objects.

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"
#include "quillon9/values/variant.h"

namespace Quillon9 {

void QnVariant::SetReference(ItemType type, CXmlObjectBase* object) {
  if (object != nullptr) object->AddRef();  // first: this variant may hold the only reference
  Clear();
  Store(type, object);
  m_owns = true;
}

void QnVariant::ReleaseReference() {
  if (auto* const object = Load<CXmlObjectBase*>()) object->Release();
  Store<CXmlObjectBase*>(m_type, nullptr);
}

void QnVariant::SetXmlObject(CXmlObjectBase* object) { SetReference(ItemType_xmlObject, object); }

void QnVariant::SetXmlCollection(CXmlCollectionBase* collection) { SetReference(ItemType_xmlCollection, collection); }

CXmlObjectBase* QnVariant::LookAtXmlObject() const {
  if (!IsValid()) return nullptr;
  if (m_type != ItemType_xmlObject && m_type != ItemType_xmlCollection) ThrowWrongKind("xmlObject");
  return Load<CXmlObjectBase*>();
}

CSmartPtr<CXmlObjectBase> QnVariant::GetXmlObject() const { return LookAtXmlObject(); }

CSmartPtr<CXmlCollectionBase> QnVariant::GetXmlCollection() const { return LookAtXmlCollection(); }

CXmlCollectionBase* QnVariant::LookAtXmlCollection() const {
  if (!IsValid()) return nullptr;
  if (m_type != ItemType_xmlObject && m_type != ItemType_xmlCollection) ThrowWrongKind("xmlCollection");
  auto* const object = Load<CXmlObjectBase*>();
  if (m_type == ItemType_xmlCollection) return static_cast<CXmlCollectionBase*>(object);
  auto* const collection = dynamic_cast<CXmlCollectionBase*>(object);
  if (collection == nullptr && object != nullptr) ThrowWrongKind("xmlCollection");
  return collection;
}

}  // namespace Quillon9
