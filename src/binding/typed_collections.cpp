#include "quillon9/binding/typed_collections.h"

#include "quillon9/binding/exceptions.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

namespace {

std::string OrEmpty(char const* text) { return text != nullptr ? text : ""; }

// The data of an event is the address of a value that the listener may look at.
void* AddressOf(void const* value) { return const_cast<void*>(value); }

}  // namespace

CXmlTypeCollection::CXmlTypeCollection(ItemType type, char const* name, char const* ns, int minOccurs, int maxOccurs,
                                       char const* pattern, int minLength, int maxLength, char const* minInclusive,
                                       char const* maxInclusive, char const* minExclusive, char const* maxExclusive,
                                       int length, CWhitespaceUtils::WhitespaceRule rule, char const* format)
    : CXmlCollectionBase(name, ns, minOccurs, maxOccurs),
      m_restrictions(OrEmpty(pattern), minLength, maxLength, OrEmpty(minInclusive), OrEmpty(maxInclusive),
                     OrEmpty(minExclusive), OrEmpty(maxExclusive), length),
      m_itemType(type),
      m_format(format),
      m_whitespaceRule(rule) {}

CXmlTypeCollection::~CXmlTypeCollection() = default;

CXmlElement* CXmlTypeCollection::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                             bool) {
  std::string const ns = GetNamespace();
  while (cursor != nullptr && CXmlObjectHelper::DoesElementNameMatch(ctx, cursor, GetElementName(), ns)) {
    AddFromString(cursor->GetText());
    cursor = cursor->GetNextSiblingElement();
  }
  return cursor;
}

void CXmlTypeCollection::CheckInsertIndex(int index) const {
  if (index < 0 || index > GetCount()) throw CQnInvalidParamException("Index out of range");
}

void CXmlTypeCollection::CheckItemIndex(int index) const {
  int const count = GetCount();
  if (index >= 0 && index < count) return;
  throw CQnInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, count));
}

void CXmlTypeCollection::WriteItem(CXmlWriter* writer, std::string const& text, ItemType type) const {
  writer->WriteStartElement(GetElementName(), GetNamespace());
  writer->WriteString(text, type);
  writer->WriteEndElement();
}

namespace detail {

template <class Kind>
CTypedColImpl<Kind>::CTypedColImpl(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern,
                                   int minLength, int maxLength, char const* minInclusive, char const* maxInclusive,
                                   char const* minExclusive, char const* maxExclusive, int length,
                                   CWhitespaceUtils::WhitespaceRule rule, char const* format)
    : CXmlTypeCollection(Kind::kItemType, name, ns, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive,
                         maxInclusive, minExclusive, maxExclusive, length, rule, format) {}

template <class Kind>
CTypedColImpl<Kind>::~CTypedColImpl() = default;

template <class Kind>
void CTypedColImpl<Kind>::Add(Argument value) {
  AddAt(GetCount(), value);
}

template <class Kind>
void CTypedColImpl<Kind>::AddAt(int index, Argument value) {
  FireOnCollectionAdd(AddressOf(&value));
  CheckInsertIndex(index);
  Kind::Check(GetElementName().c_str(), value, m_restrictions);
  m_items.Insert(index, value);
  FireOnCollectionAddComplete(AddressOf(&value));
  FireOnCollectionChange();
}

template <class Kind>
void CTypedColImpl<Kind>::AddFromString(std::string text) {
  Add(Kind::FromText(text, m_whitespaceRule));
}

template <class Kind>
typename Kind::Value CTypedColImpl<Kind>::Item(int index) const {
  CheckItemIndex(index);
  return m_items.At(index);
}

template <class Kind>
int CTypedColImpl<Kind>::GetCount() const {
  return m_items.Count();
}

template <class Kind>
void CTypedColImpl<Kind>::Clear() {
  while (GetCount() != 0) Remove(0);
}

template <class Kind>
void CTypedColImpl<Kind>::Remove(int index) {
  FireOnCollectionRemove(index);
  CheckItemIndex(index);
  m_items.Erase(index);
  FireOnCollectionRemoveComplete(0);
  FireOnCollectionChange();
}

template <class Kind>
void CTypedColImpl<Kind>::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& ctx,
                                    bool) const {
  ValidateCount(ctx);
  for (Value const& value : m_items) WriteItem(writer, Kind::ToText(value, m_format), Kind::kItemType);
}

template class CTypedColImpl<hexBinaryKind>;
template class CTypedColImpl<base64BinaryKind>;
template class CTypedColImpl<i1Kind>;
template class CTypedColImpl<i2Kind>;
template class CTypedColImpl<i4Kind>;
template class CTypedColImpl<i8Kind>;
template class CTypedColImpl<ui1Kind>;
template class CTypedColImpl<ui2Kind>;
template class CTypedColImpl<ui4Kind>;
template class CTypedColImpl<ui8Kind>;
template class CTypedColImpl<r4Kind>;
template class CTypedColImpl<r8Kind>;
template class CTypedColImpl<durationKind>;
template class CTypedColImpl<yearKind>;
template class CTypedColImpl<monthKind>;
template class CTypedColImpl<dayKind>;
template class CTypedColImpl<stringKind>;
template class CTypedColImpl<booleanKind>;
template class CTypedColImpl<decimalKind>;
template class CTypedColImpl<integerKind>;

}  // namespace detail

ChexBinaryCol::~ChexBinaryCol() = default;
Cbase64BinaryCol::~Cbase64BinaryCol() = default;
Ci1Col::~Ci1Col() = default;
Ci2Col::~Ci2Col() = default;
Ci4Col::~Ci4Col() = default;
Ci8Col::~Ci8Col() = default;
Cui1Col::~Cui1Col() = default;
Cui2Col::~Cui2Col() = default;
Cui4Col::~Cui4Col() = default;
Cui8Col::~Cui8Col() = default;
Cr4Col::~Cr4Col() = default;
Cr8Col::~Cr8Col() = default;
CdurationCol::~CdurationCol() = default;
CyearCol::~CyearCol() = default;
CmonthCol::~CmonthCol() = default;
CdayCol::~CdayCol() = default;
CstringCol::~CstringCol() = default;
CbooleanCol::~CbooleanCol() = default;
CdecimalCol::~CdecimalCol() = default;
CintegerCol::~CintegerCol() = default;

// ---- Dates and times

CdatetimeBaseCol::CdatetimeBaseCol(ItemType type, char const* name, char const* ns, int minOccurs, int maxOccurs,
                                   char const* pattern, int minLength, int maxLength, char const* minInclusive,
                                   char const* maxInclusive, char const* minExclusive, char const* maxExclusive,
                                   int length, CWhitespaceUtils::WhitespaceRule rule, char const* format)
    : CXmlTypeCollection(type, name, ns, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive,
                         maxInclusive, minExclusive, maxExclusive, length, rule, format) {}

CdatetimeBaseCol::~CdatetimeBaseCol() = default;

void CdatetimeBaseCol::Add(CDateTime const& value) { AddAt(GetCount(), value); }

CDateTime CdatetimeBaseCol::Item(int index) const {
  CheckItemIndex(index);
  return m_items.At(index);
}

int CdatetimeBaseCol::GetCount() const { return m_items.Count(); }

void CdatetimeBaseCol::Clear() {
  while (GetCount() != 0) Remove(0);
}

void CdatetimeBaseCol::Remove(int index) {
  FireOnCollectionRemove(index);
  CheckItemIndex(index);
  m_items.Erase(index);
  FireOnCollectionRemoveComplete(0);
  FireOnCollectionChange();
}

void CdatetimeBaseCol::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& ctx,
                                 bool) const {
  ValidateCount(ctx);
  for (CDateTime const& value : m_items) WriteItem(writer, ItemToString(value), ItemType_datetime);
}

void CdatetimeBaseCol::BaseAddAt(int index, CDateTime const& value) {
  FireOnCollectionAdd(AddressOf(&value));
  CheckInsertIndex(index);
  m_items.Insert(index, value);
  FireOnCollectionAddComplete(AddressOf(&value));
  FireOnCollectionChange();
}

void CdatetimeBaseCol::CheckType(CDateTime const& value, CDateTime::DTType type, char const* typeName) {
  if (value.GetType() == type) return;
  throw CQnInvalidParamException(FormatString("Dates added to this collection must be of type %s", typeName));
}

#define QN_DATE_COLLECTION(stem, type)                                                                                 \
  C##stem##Col::C##stem##Col(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern,      \
                             int minLength, int maxLength, char const* minInclusive, char const* maxInclusive,         \
                             char const* minExclusive, char const* maxExclusive, int length,                           \
                             CWhitespaceUtils::WhitespaceRule rule, char const* format)                                \
      : CdatetimeBaseCol(ItemType_##stem, name, ns, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive, \
                         maxInclusive, minExclusive, maxExclusive, length, rule, format) {}                            \
  C##stem##Col::~C##stem##Col() = default;                                                                             \
  void C##stem##Col::AddFromString(std::string text) { Add(CConversions::stem##FromString(text, m_whitespaceRule)); }  \
  void C##stem##Col::AddAt(int index, CDateTime const& value) {                                                        \
    CheckType(value, CDateTime::type, #type);                                                                          \
    CXmlObjectHelper::CheckRestrictionFor##stem(GetElementName().c_str(), value, m_restrictions);                      \
    BaseAddAt(index, value);                                                                                           \
  }                                                                                                                    \
  std::string C##stem##Col::ItemToString(CDateTime const& value) const { return CConversions::stem##ToString(value); }

QN_DATE_COLLECTION(date, dt_date)
QN_DATE_COLLECTION(datetime, dt_dateTime)
QN_DATE_COLLECTION(time, dt_time)
QN_DATE_COLLECTION(yearMonth, dt_gYearMonth)
QN_DATE_COLLECTION(monthDay, dt_gMonthDay)

#undef QN_DATE_COLLECTION

}  // namespace Quillon9
