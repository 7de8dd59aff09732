#include "quillon9/binding/typed_collections.h"

#include <limits>
#include <optional>
#include <utility>

#include "base/text_arguments.h"
#include "binding/failure_report.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/schema_values.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "text/utf8_text.h"
#include "values/rules_in_use.h"
#include "values/schema_facets.h"
#include "xmlio/node_access.h"
#include "xmlio/object_content.h"

namespace Quillon9 {

namespace {

/// How a variant holds the values of a kind.
template <ItemType number>
struct InVariant;
#define QN_VALUE_KIND(number, stem, Access, Held)                                        \
  template <>                                                                            \
  struct InVariant<ItemType_##stem> {                                                    \
    static QnVariant Of(Held const& value) {                                             \
      QnVariant variant;                                                                 \
      variant.Set##Access(value);                                                        \
      return variant;                                                                    \
    }                                                                                    \
    static Held FromText(std::string_view text, CWhitespaceUtils::WhitespaceRule rule) { \
      return CSchemaValues::FromText(text, ItemType_##stem, rule).Get##Access();         \
    }                                                                                    \
  };
#include "values/item_types.def"

// The value is converted to text while the element is open.
template <class ToText>
void WriteItem(CXmlWriter* writer, std::string const& name, std::string const& ns, ItemType type, ToText toText) {
  writer->WriteStartElement(name, ns);
  writer->WriteString(toText(), type);
  writer->WriteEndElement();
}

/// What a collection that asks for the rules of XML Schema needs while a program adds a value. A read has it already.
class SchemaScope {
 public:
  explicit SchemaScope(CXmlTypeCollection const& collection)
      : m_text(TextOf(collection)), m_rules(ValueRules_XmlSchema) {}

 private:
  static Utf8Text::Use TextOf(CXmlTypeCollection const& collection) {
    bool const isByProgram = !RulesInUse::AreSchema();
    return isByProgram && collection.HoldsUtf8Text() ? Utf8Text::Use::kCountingCharacters : Utf8Text::Current();
  }

  Utf8Text::Scope m_text;
  RulesInUse::Scope m_rules;
};

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
  while (cursor != nullptr && !IsFull() && CXmlObjectHelper::DoesElementNameMatch(ctx, cursor, GetElementName(), ns)) {
    try {
      std::string_view const text = XmlNodeAccess::TextOf(*cursor);
      ObjectContent::Count(*cursor, ObjectContent::kValue + text.size());
      AddFromString(std::string(text));
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {cursor})) throw;
      FailureReport::NoteLoss(ctx, *this);
    }
    cursor = cursor->GetNextSiblingElement();
  }
  return cursor;
}

void CXmlTypeCollection::CheckBySchema(QnVariant const& value, std::string_view text) const {
  m_schemaFacets.Get(m_itemType, m_restrictions).CheckRead(GetElementName().c_str(), value, text);
}

std::string CXmlTypeCollection::CheckedText(QnVariant const& value) const {
  std::string text = m_schemaFacets.Get(m_itemType, m_restrictions).TextOf(value);
  CheckBySchema(value, text);
  return text;
}

void CXmlTypeCollection::CheckInsertIndex(int index) const {
  int const count = GetCount();
  if (index < 0 || index > count) throw CQnInvalidParamException("Index out of range");
  if (count == std::numeric_limits<int>::max()) {
    throw CQnException(FormatString("The collection [%s] is full", GetElementName().c_str()));
  }
}

void CXmlTypeCollection::CheckItemIndex(int index) const {
  int const count = GetCount();
  if (index >= 0 && index < count) return;
  throw CQnInvalidParamException(FormatString("Index %d is out of range, use 0 - %d", index, count));
}

void CXmlTypeCollection::ThrowChangedDuringRemoval() const {
  throw CQnInvalidStateException(
      FormatString("The collection [%s] was changed while values were removed from it", GetElementName().c_str()));
}

namespace detail {

template <class Kind>
CTypedColImpl<Kind>::CTypedColImpl(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern,
                                   int minLength, int maxLength, char const* minInclusive, char const* maxInclusive,
                                   char const* minExclusive, char const* maxExclusive, int length,
                                   CWhitespaceUtils::WhitespaceRule rule, char const* format)
    : ValueCol<Value>(Kind::kItemType, name, ns, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive,
                      maxInclusive, minExclusive, maxExclusive, length, rule, format) {}

template <class Kind>
CTypedColImpl<Kind>::~CTypedColImpl() = default;

template <class Kind>
void CTypedColImpl<Kind>::Add(Argument value) {
  AddAt(this->GetCount(), std::forward<Argument>(value));
}

template <class Kind>
void CTypedColImpl<Kind>::AddAt(int index, Argument value) {
  this->Insert(index, std::forward<Argument>(value), [this](Value const& held) {
    if (RulesInUse::AreSchemaFor(*this)) {
      SchemaScope const rules(*this);
      static_cast<void>(this->CheckedText(InVariant<Kind::kItemType>::Of(held)));
      return;
    }
    std::optional<Utf8Text::Scope> scope;
    if (Kind::kItemType == ItemType_string && this->HoldsUtf8Text()) scope.emplace(Utf8Text::Use::kCountingCharacters);
    Kind::Check(this->GetElementName().c_str(), held, this->m_restrictions);
  });
}

template <class Kind>
void CTypedColImpl<Kind>::AddFromString(std::string text) {
  if (!RulesInUse::AreSchemaFor(*this)) return Add(Kind::FromText(text, this->m_whitespaceRule));
  SchemaScope const rules(*this);
  this->Insert(this->GetCount(), InVariant<Kind::kItemType>::FromText(text, this->m_whitespaceRule),
               [&](Value const& held) { this->CheckBySchema(InVariant<Kind::kItemType>::Of(held), text); });
}

template <class Kind>
void CTypedColImpl<Kind>::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& ctx,
                                    bool) const {
  this->ValidateCount(ctx);
  std::string const ns = this->GetNamespace();
  bool const isSchema = RulesInUse::AreSchema();
  for (Value const& value : *this) {
    WriteItem(writer, this->GetElementName(), ns, Kind::kItemType, [&] {
      if (!isSchema) return Kind::ToText(value, this->m_format);
      return this->CheckedText(InVariant<Kind::kItemType>::Of(value));
    });
  }
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
    : ValueCol(type, name, ns, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive, maxInclusive,
               minExclusive, maxExclusive, length, rule, format) {}

CdatetimeBaseCol::~CdatetimeBaseCol() = default;

void CdatetimeBaseCol::Add(CDateTime const& value) { AddAt(GetCount(), value); }

CDateTime CdatetimeBaseCol::Item(int index) const { return ItemAt(index); }

void CdatetimeBaseCol::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& ctx,
                                 bool) const {
  ValidateCount(ctx);
  std::string const ns = GetNamespace();
  for (CDateTime const& value : *this) {
    WriteItem(writer, GetElementName(), ns, ItemType_datetime, [&] { return ItemToString(value); });
  }
}

void CdatetimeBaseCol::BaseAddAt(int index, CDateTime const& value) {
  Insert(index, value, [](CDateTime const&) {});
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
  void C##stem##Col::AddFromString(std::string text) {                                                                 \
    if (!RulesInUse::AreSchemaFor(*this)) return Add(CConversions::stem##FromString(text, m_whitespaceRule));          \
    SchemaScope const rules(*this);                                                                                    \
    CDateTime const value = InVariant<ItemType_##stem>::FromText(text, m_whitespaceRule);                              \
    CheckBySchema(InVariant<ItemType_##stem>::Of(value), text);                                                        \
    BaseAddAt(GetCount(), value);                                                                                      \
  }                                                                                                                    \
  void C##stem##Col::AddAt(int index, CDateTime const& value) {                                                        \
    CheckType(value, CDateTime::type, #type);                                                                          \
    if (RulesInUse::AreSchemaFor(*this)) {                                                                             \
      SchemaScope const rules(*this);                                                                                  \
      static_cast<void>(CheckedText(InVariant<ItemType_##stem>::Of(value)));                                           \
    } else {                                                                                                           \
      CXmlObjectHelper::CheckRestrictionFor##stem(GetElementName().c_str(), value, m_restrictions);                    \
    }                                                                                                                  \
    BaseAddAt(index, value);                                                                                           \
  }                                                                                                                    \
  std::string C##stem##Col::ItemToString(CDateTime const& value) const {                                               \
    if (!RulesInUse::AreSchema()) return CConversions::stem##ToString(value);                                          \
    return CheckedText(InVariant<ItemType_##stem>::Of(value));                                                         \
  }

QN_DATE_COLLECTION(date, dt_date)
QN_DATE_COLLECTION(datetime, dt_dateTime)
QN_DATE_COLLECTION(time, dt_time)
QN_DATE_COLLECTION(yearMonth, dt_gYearMonth)
QN_DATE_COLLECTION(monthDay, dt_gMonthDay)

#undef QN_DATE_COLLECTION

}  // namespace Quillon9
