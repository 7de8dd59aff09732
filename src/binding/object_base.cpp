#include "quillon9/binding/object_base.h"
#include "base/text_arguments.h"
#include "binding/name_match.h"

#include <cstring>

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"
#include "quillon9/values/object_helper.h"

namespace Quillon9 {

CXmlObjectBase::CXmlObjectBase() = default;
CXmlObjectBase::~CXmlObjectBase() = default;

void CXmlObjectBase::OnEvent(CXmlObjectBase*, MsgType, void*) {}

bool CXmlObjectBase::HoldsUtf8Text() const { return false; }

ValueRules CXmlObjectBase::GetDefaultValueRules() const { return ValueRules_Classic; }

CDocumentForm const* CXmlObjectBase::GetDocumentForm() const { return nullptr; }

void CXmlObjectBase::AttributesToXml_Int(CXmlWriter*, CXmlSerializationContext const&) const {}

bool CXmlObjectBase::DoesElementNameMatch(CXmlSerializationContext const& ctx, CXmlElement const* element,
                                          char const* name, char const* ns) const {
  return IsElementNamed(ctx, element, OrEmpty(name), OrEmpty(ns));
}

bool CXmlObjectBase::IsNamespaceValid(char const* ns, char const* list, char const* target) const {
  return CXmlObjectHelper::IsNamespaceValid(OrEmpty(ns), OrEmpty(list), OrEmpty(target));
}

void CXmlObjectBase::TestNamespace(char const* ns, char const* list, char const* target) const {
  CXmlObjectHelper::TestNamespace(OrEmpty(ns), OrEmpty(list), OrEmpty(target));
}

void CXmlObjectBase::AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer,
                                         CXmlSerializationContext const& ctx) {
  object->AttributesToXml_Int(writer, ctx);
}

void CXmlObjectBase::ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool isRoot, char const* ns,
                               CXmlSerializationContext const& ctx, bool inChoice) {
  object->ToXml_Int(writer, isRoot, ns, ctx, inChoice);
}

CXmlElement* CXmlObjectBase::FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                                         CXmlSerializationContext const& ctx) {
  return object->FromXml_Int(parent, cursor, ctx, false);
}

void CXmlObjectBase::FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection) {
  sink->OnEvent(collection->GetBase(), CollectionChange, nullptr);
}

void CXmlObjectBase::FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item) {
  sink->OnEvent(collection->GetBase(), CollectionAdd, item);
}

void CXmlObjectBase::FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item) {
  sink->OnEvent(collection->GetBase(), CollectionAddComplete, item);
}

void CXmlObjectBase::FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index) {
  sink->OnEvent(collection->GetBase(), CollectionRemove, index == -1 ? nullptr : &index);
}

void CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, int index) {
  sink->OnEvent(collection->GetBase(), CollectionRemoveComplete, index == -1 ? nullptr : &index);
}

namespace {

[[noreturn]] void ThrowAlreadySet(std::string const& selected) {
  throw CQnInvalidStateException(FormatString(
      "The Property [%s] is already set. Only one element within this class bay be set at a time", selected.c_str()));
}

}  // namespace

void CXmlObjectBase::Choice_SelectElement(char const* name, CXmlObjectBase* value, std::string& selected) {
  if (selected == name) {
    if (value == nullptr) selected.clear();
  } else if (selected.empty()) {
    selected = name;
  } else if (value != nullptr) {
    ThrowAlreadySet(selected);
  }
}

void CXmlObjectBase::Choice_CollectionChanged(char const* name, long count, std::string& selected) {
  if (selected == name) {
    if (count == 0) selected.clear();
  } else if (selected.empty()) {
    if (count > 0) selected = name;
  } else if (count != 0) {
    ThrowAlreadySet(selected);
  }
}

void CXmlObjectBase::Choice_SetElementValid(bool valid, char const* name, std::string& selected) {
  if (!valid) {
    selected.clear();
  } else if (selected != name) {
    throw CQnInvalidStateException(FormatString(
        "The Property %s is already set. Only one element within this class bay be set at a time", selected.c_str()));
  }
}

void CXmlObjectBase::Choice_Read_Collection(CXmlCollectionBase* col, CXmlElement* parent, CXmlElement*& cursor,
                                            long& count, CXmlSerializationContext const& ctx) {
  if (count > 0) return;
  CXmlElement* const next = FromXml_Int(static_cast<CXmlObjectBase*>(col), parent, cursor, ctx);
  if (next == cursor) return;
  cursor = next;
  col->ValidateCount(ctx);
  ++count;
}

void CXmlObjectBase::Throw_IfElementNameDiffers(CXmlObjectBase* value, char const* name) {
  if (value == nullptr) return;
  std::string const& actual = value->GetBase()->GetElementName();
  if (std::strcmp(actual.c_str(), name) == 0) return;
  throw CQnInvalidParamException(
      FormatString("This property requrires an element with the name %s the element being set has the element name %s",
                   name, actual.c_str()));
}

void CXmlObjectBase::Throw_IfPropertyIsNull(CXmlObjectBase* value, char const* name) {
  if (value == nullptr) {
    throw CQnInvalidParamException(FormatString("The Property [%s] is mandatory, it may node be NULL", name));
  }
}

}  // namespace Quillon9
