#include "feed_types.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>

using namespace Quillon9;
using namespace Quillon9Data;

namespace Atom {

char const kNamespace[] = "http://www.w3.org/2005/Atom";

// ---- Common parts of the classes

namespace {

constexpr char kXmlNamespace[] = "http://www.w3.org/XML/1998/namespace";
constexpr char kAnyNamespace[] = "##any";

// ---- The tables

struct AttributeRow {
  char const* name;
  Property property;
  bool optional = true;
  char const* ns = "";
};

CAttributeInfo* Attribute(AttributeRow const& row) {
  return new CAttributeInfoPrimitive(row.name, row.ns, row.property, row.optional, ItemType_string, nullptr,
                                     CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions(), nullptr);
}

void DescribeAttributes(CMetaData& data, std::initializer_list<AttributeRow> rows) {
  data.m_attributes = new CAttributeInfo* [rows.size() + 4] {};
  CAttributeInfo** next = data.m_attributes;
  for (AttributeRow const& row : rows) *next++ = Attribute(row);
  *next++ = Attribute({"base", Property_base, true, kXmlNamespace});
  *next++ = Attribute({"lang", Property_lang, true, kXmlNamespace});
  // Accepts every attribute, so it comes after the others.
  *next = new CAttributeInfoAny("", "", Property_anyAttribute, true, kAnyNamespace, kNamespace, nullptr);
}

/// Describe a class with a tag, whose content is \p text and what \p content accepts.
void Describe(CMetaData& data, char const* typeName, int text, std::unique_ptr<CElementInfo> content,
              std::initializer_list<AttributeRow> rows) {
  data.m_classInfo = new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, typeName, kNamespace,
                                            text, true, false);
  data.m_elements = new CElementInfo* [2] {};
  data.m_elements[0] = content.release();
  DescribeAttributes(data, rows);
}

void DescribeSimple(CMetaData& data, char const* typeName, std::initializer_list<AttributeRow> rows) {
  Describe(data, typeName, Property_text, nullptr, rows);
}

void DescribeOpen(CMetaData& data, char const* typeName, std::initializer_list<AttributeRow> rows) {
  Describe(data, typeName, Property_text, std::make_unique<CElementInfoSeqUntpdCol>("AnyElement", "", Property_any),
           rows);
}

void DescribeContainer(CMetaData& data, char const* typeName) {
  Describe(data, typeName, -1,
           std::make_unique<CElementInfoSeqClsCol>("member", "", Property_member, XmlElementType_Pseudo), {});
}

using Factory = CClassFactory;

struct MemberRow {
  char const* name;
  Property property;
  Factory::ClassId classId;
};

// A class without a tag sees the attributes of the enclosing element, so it rejects none.
template <std::size_t n>
void DescribeChoice(CMetaData& data, MemberRow const (&rows)[n]) {
  data.m_classInfo =
      new CParentElementInfo(XmlElementGroupType_Choice, XmlElementType_Pseudo, "member", kNamespace, -1, false, false);
  data.m_elements = new CElementInfo* [n + 2] {};
  CElementInfo** next = data.m_elements;
  for (MemberRow const& row : rows) {
    *next++ = new CElementInfoChoiceClsOpt(row.name, kNamespace, row.property, XmlElementType_Element,
                                           &Factory::CreateObject, row.classId);
  }
  // Accepts any element, so it comes after the others.
  *next = new CElementInfoChoiceUntpdOpt("AnyElement", "", Property_any, kAnyNamespace, kNamespace);
  data.m_attributes = new CAttributeInfo* [1] {};
}

constexpr MemberRow kPersonMembers[] = {{"name", Property_name, Factory::ClassId_Simple},
                                        {"uri", Property_uri, Factory::ClassId_Simple},
                                        {"email", Property_email, Factory::ClassId_Simple}};

constexpr MemberRow kSourceMembers[] = {{"author", Property_author, Factory::ClassId_Person},
                                        {"category", Property_category, Factory::ClassId_Category},
                                        {"contributor", Property_contributor, Factory::ClassId_Person},
                                        {"generator", Property_generator, Factory::ClassId_Generator},
                                        {"icon", Property_icon, Factory::ClassId_Simple},
                                        {"id", Property_id, Factory::ClassId_Simple},
                                        {"link", Property_link, Factory::ClassId_Link},
                                        {"logo", Property_logo, Factory::ClassId_Simple},
                                        {"rights", Property_rights, Factory::ClassId_Text},
                                        {"subtitle", Property_subtitle, Factory::ClassId_Text},
                                        {"title", Property_title, Factory::ClassId_Text},
                                        {"updated", Property_updated, Factory::ClassId_Date}};

constexpr MemberRow kEntryMembers[] = {{"author", Property_author, Factory::ClassId_Person},
                                       {"category", Property_category, Factory::ClassId_Category},
                                       {"content", Property_content, Factory::ClassId_Text},
                                       {"contributor", Property_contributor, Factory::ClassId_Person},
                                       {"id", Property_id, Factory::ClassId_Simple},
                                       {"link", Property_link, Factory::ClassId_Link},
                                       {"published", Property_published, Factory::ClassId_Date},
                                       {"rights", Property_rights, Factory::ClassId_Text},
                                       {"source", Property_source, Factory::ClassId_Source},
                                       {"summary", Property_summary, Factory::ClassId_Text},
                                       {"title", Property_title, Factory::ClassId_Text},
                                       {"updated", Property_updated, Factory::ClassId_Date}};

constexpr MemberRow kFeedMembers[] = {{"author", Property_author, Factory::ClassId_Person},
                                      {"category", Property_category, Factory::ClassId_Category},
                                      {"contributor", Property_contributor, Factory::ClassId_Person},
                                      {"entry", Property_entry, Factory::ClassId_Entry},
                                      {"generator", Property_generator, Factory::ClassId_Generator},
                                      {"icon", Property_icon, Factory::ClassId_Simple},
                                      {"id", Property_id, Factory::ClassId_Simple},
                                      {"link", Property_link, Factory::ClassId_Link},
                                      {"logo", Property_logo, Factory::ClassId_Simple},
                                      {"rights", Property_rights, Factory::ClassId_Text},
                                      {"subtitle", Property_subtitle, Factory::ClassId_Text},
                                      {"title", Property_title, Factory::ClassId_Text},
                                      {"updated", Property_updated, Factory::ClassId_Date}};

// The collection object stays; reading fills it.
void AccessCollection(CXmlCollectionBase* property, bool read, QnVariant& value) {
  if (read) value.SetXmlCollection(property);
}

}  // namespace

CParentElementInfo* CAtomObject::GetClassInfo() const { return m_metaData.Get().m_classInfo; }
CElementInfo** CAtomObject::GetClassElementInfo() const { return m_metaData.Get().m_elements; }
CAttributeInfo** CAtomObject::GetClassAttributeInfo() const { return m_metaData.Get().m_attributes; }

// ---- Members

void CMember::Set(Property property, CXmlObjectBase* object) {
  m_property = property;
  m_object = object;
}

void CMember::AccessProperty(int index, bool read, QnVariant& value) {
  if (!read) {
    Set(static_cast<Property>(index), value.GetXmlObject());
  } else if (index == m_property) {
    value.SetXmlObject(m_object);
  }
}

void CMemberCol::Add(Property property, CXmlObjectBase* object) {
  CSmartPtr<CMember> const member = new CMember(m_choice);
  member->Set(property, object);
  AppendItem(member);
}

void CMemberCol::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx, bool) const {
  ValidateCount(ctx);
  for (CMember const& member : *this) CXmlObjectBase::ToXml_Int(&member, writer, false, ns, ctx, false);
}

// Reads one member for each sibling. The member has no tag, so it reads from the siblings itself.
CXmlElement* CMemberCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                     bool) {
  while (cursor != nullptr) {
    CSmartPtr<CMember> const member = new CMember(m_choice);
    CXmlElement* const next = CXmlObjectBase::FromXml_Int(member, parent, cursor, ctx);
    if (next == cursor) break;
    AppendItem(member);
    cursor = next;
  }
  return cursor;
}

// ---- Classes with a tag

CCommonType::CCommonType(char const* elementName, CMetaData& metaData)
    : CAtomObject(elementName, metaData), m_anyAttribute(new CAttributeCol("", kAnyNamespace, kNamespace)) {}

std::optional<std::string> CCommonType::Get(Property property) const {
  auto const found = m_texts.find(property);
  return found != m_texts.end() ? std::optional(found->second) : std::nullopt;
}

void CCommonType::Set(Property property, std::optional<std::string> value) {
  m_texts.erase(property);
  if (value) m_texts.emplace(property, *std::move(value));
}

void CCommonType::Init() {
  m_texts.clear();
  m_anyAttribute->Clear();
}

void CCommonType::AccessProperty(int index, bool read, QnVariant& value) {
  if (index == Property_anyAttribute) return AccessCollection(m_anyAttribute, read, value);
  auto const property = static_cast<Property>(index);
  if (!read) return Set(property, value.GetString());
  if (std::optional<std::string> text = Get(property)) value.SetString(*std::move(text));  // otherwise it stays invalid
}

static CMetaData s_simple([](CMetaData& data) { DescribeSimple(data, "simpleType", {}); });

CSimpleType::CSimpleType(char const* elementName) : CCommonType(elementName, s_simple) {}

static CMetaData s_generator([](CMetaData& data) {
  DescribeSimple(data, "generatorType", {{"uri", Property_uri}, {"version", Property_version}});
});

CGeneratorType::CGeneratorType(char const* elementName) : CSimpleType(elementName, s_generator) {}

static CMetaData s_date([](CMetaData& data) { DescribeSimple(data, "dateType", {}); });

CDateType::CDateType(char const* elementName) : CCommonType(elementName, s_date) {}

void CDateType::Init() {
  CCommonType::Init();
  m_dateTime.Clear();
}

// The text of an element is passed as a string, whatever its type is.
void CDateType::AccessProperty(int index, bool read, QnVariant& value) {
  if (index != Property_text) return CCommonType::AccessProperty(index, read, value);
  if (read) return value.SetString(m_dateTime.ToString());
  QnVariant parsed;
  parsed.FromString(value.GetString(), ItemType_datetime, CWhitespaceUtils::WhitespaceRule_Collapse);
  m_dateTime = parsed.GetDateTime();
}

// ---- Texts with elements

COpenType::COpenType(char const* elementName, CMetaData& metaData)
    : CSimpleType(elementName, metaData), m_any(new CElementCol("", kAnyNamespace, kNamespace, 0, -1)) {}

void COpenType::Init() {
  CSimpleType::Init();
  m_any->Clear();
}

void COpenType::AccessProperty(int index, bool read, QnVariant& value) {
  if (index == Property_any) return AccessCollection(m_any, read, value);
  CSimpleType::AccessProperty(index, read, value);
}

static CMetaData s_text([](CMetaData& data) {
  DescribeOpen(data, "textType", {{"type", Property_type}, {"src", Property_src}});
});

CTextType::CTextType(char const* elementName) : COpenType(elementName, s_text) {}

void CTextType::SetPlainText(std::string value) {
  Set(Property_type, std::nullopt);
  Set(Property_src, std::nullopt);
  Set(Property_text, std::move(value));
  GetAny()->Clear();
}

static CMetaData s_category([](CMetaData& data) {
  DescribeOpen(data, "categoryType",
               {{"term", Property_term, false}, {"scheme", Property_scheme}, {"label", Property_label}});
});

CCategoryType::CCategoryType(char const* elementName) : COpenType(elementName, s_category) {}

static CMetaData s_link([](CMetaData& data) {
  DescribeOpen(data, "linkType",
               {{"href", Property_href, false},
                {"rel", Property_rel},
                {"type", Property_type},
                {"hreflang", Property_hreflang},
                {"title", Property_title},
                {"length", Property_length}});
});

CLinkType::CLinkType(char const* elementName) : COpenType(elementName, s_link) {}

// ---- Containers

CContainerType::CContainerType(char const* elementName, CMetaData& metaData, CMetaData& choice)
    : CCommonType(elementName, metaData), m_member(new CMemberCol(choice)) {}

void CContainerType::Init() {
  CCommonType::Init();
  m_member->Clear();
}

void CContainerType::AccessProperty(int index, bool read, QnVariant& value) {
  if (index == Property_member) return AccessCollection(m_member, read, value);
  CCommonType::AccessProperty(index, read, value);
}

static CMetaData s_person([](CMetaData& data) { DescribeContainer(data, "personType"); });
static CMetaData s_personMember([](CMetaData& data) { DescribeChoice(data, kPersonMembers); });

CPersonType::CPersonType(char const* elementName) : CContainerType(elementName, s_person, s_personMember) {}

static CMetaData s_source([](CMetaData& data) { DescribeContainer(data, "sourceType"); });
static CMetaData s_sourceMember([](CMetaData& data) { DescribeChoice(data, kSourceMembers); });

CSourceType::CSourceType(char const* elementName) : CContainerType(elementName, s_source, s_sourceMember) {}

static CMetaData s_entry([](CMetaData& data) { DescribeContainer(data, "entryType"); });
static CMetaData s_entryMember([](CMetaData& data) { DescribeChoice(data, kEntryMembers); });

CEntryType::CEntryType(char const* elementName) : CContainerType(elementName, s_entry, s_entryMember) {}

static CMetaData s_feed([](CMetaData& data) { DescribeContainer(data, "feedType"); });
static CMetaData s_feedMember([](CMetaData& data) { DescribeChoice(data, kFeedMembers); });

CFeedType::CFeedType(char const* elementName) : CContainerType(elementName, s_feed, s_feedMember) {}

// ---- The factory

CSmartPtr<CXmlObjectBase> CClassFactory::CreateObject(int classId, char const* elementName) {
  switch (classId) {
    case ClassId_Simple: return new CSimpleType(elementName);
    case ClassId_Generator: return new CGeneratorType(elementName);
    case ClassId_Date: return new CDateType(elementName);
    case ClassId_Text: return new CTextType(elementName);
    case ClassId_Category: return new CCategoryType(elementName);
    case ClassId_Link: return new CLinkType(elementName);
    case ClassId_Person: return new CPersonType(elementName);
    case ClassId_Source: return new CSourceType(elementName);
    case ClassId_Entry: return new CEntryType(elementName);
  }
  throw CQnInvalidParamException(FormatString("Unknown class [%d]", classId));
}

}  // namespace Atom
