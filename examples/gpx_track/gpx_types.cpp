#include "gpx_types.h"

using namespace Quillon9;
using namespace Quillon9Data;

namespace Gpx {

// ---- Common parts of the classes

namespace {

constexpr char kNamespace[] = "http://www.topografix.com/GPX/1/1";
constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

/// A property number that no class has: the value read into it is dropped, and it is never written.
constexpr int kDropped = -1;

// ---- The rows of the tables

CParentElementInfo* Sequence(char const* typeName, bool rejectUnknownAttributes = true) {
  return new CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, typeName, kNamespace, -1,
                                rejectUnknownAttributes, false);
}

CElementInfo* OptionalText(char const* name, int index) {
  return new CElementInfoSeqPrimOpt(name, kNamespace, index, ItemType_string, nullptr, kPreserve,
                                    CPrimitiveRestrictions());
}

CElementInfo* OptionalTime(char const* name, int index) {
  return new CElementInfoSeqPrimOpt(name, kNamespace, index, ItemType_datetime, nullptr, kCollapse,
                                    CPrimitiveRestrictions());
}

CElementInfo* Repeated(char const* name, int index) {
  return new CElementInfoSeqClsCol(name, kNamespace, index, XmlElementType_Element);
}

// The option for unknown elements skips what remains after the last member of a sequence. Before an optional or a
// repeated member it skips nothing, so every element that may occur there has a row, even if it is unwanted.
CElementInfo* Unread(char const* name) {
  return new CElementInfoSeqClsOpt(name, kNamespace, kDropped, XmlElementType_Element, &CClassFactory::CreateObject,
                                   CClassFactory::ClassId_unreadType);
}

CAttributeInfo* RequiredText(char const* name, int index) {
  return new CAttributeInfoPrimitive(name, "", index, false, ItemType_string, nullptr, kPreserve,
                                     CPrimitiveRestrictions(), nullptr);
}

CAttributeInfo* RequiredDouble(char const* name, int index, CPrimitiveRestrictions const& restrictions) {
  return new CAttributeInfoPrimitive(name, "", index, false, ItemType_r8, nullptr, kCollapse, restrictions, nullptr);
}

// ---- Reading a property copies it into the variant, storing takes it from the variant. An absent property leaves the
// variant invalid.

void AccessText(std::string& property, bool read, QnVariant& value) {
  if (read) {
    value.SetString(property);
  } else {
    property = value.GetString();
  }
}

void AccessText(std::optional<std::string>& property, bool read, QnVariant& value) {
  if (!read) {
    property = value.GetString();
  } else if (property) {
    value.SetString(*property);
  }
}

void AccessDouble(double& property, bool read, QnVariant& value) {
  if (read) {
    value.SetR8(property);
  } else {
    property = value.GetR8();
  }
}

void AccessDouble(std::optional<double>& property, bool read, QnVariant& value) {
  if (!read) {
    property = value.GetR8();
  } else if (property) {
    value.SetR8(*property);
  }
}

void AccessTime(std::optional<CDateTime>& property, bool read, QnVariant& value) {
  if (!read) {
    property = value.GetDateTime();
  } else if (property) {
    value.SetDateTime(*property);
  }
}

// The collection object stays; reading fills it.
void AccessCollection(CXmlCollectionBase* property, bool read, QnVariant& value) {
  if (read) value.SetXmlCollection(property);
}

template <class T>
void AccessObject(CSmartPtr<T>& property, bool read, QnVariant& value) {
  if (read) {
    value.SetXmlObject(property);
  } else {
    property = dynamic_cast<T*>(value.GetXmlObject().Get());
  }
}

}  // namespace

CGpxObject::CGpxObject(char const* elementName, CMetaData& metaData) : m_metaData(metaData) {
  SetElementName(elementName);
}

CGpxObject::~CGpxObject() = default;

std::string CGpxObject::GetTargetNamespace() const { return kNamespace; }
std::string CGpxObject::GetNamespace() const { return kNamespace; }
CParentElementInfo* CGpxObject::GetClassInfo() const { return m_metaData.Get().m_classInfo; }
CElementInfo** CGpxObject::GetClassElementInfo() const { return m_metaData.Get().m_elements; }
CAttributeInfo** CGpxObject::GetClassAttributeInfo() const { return m_metaData.Get().m_attributes; }

// ---- Collections

template <class Item>
CItemCol<Item>::CItemCol(char const* elementName) : CXmlCollection(elementName, kNamespace, 0, -1) {}

template <class Item>
CItemCol<Item>::~CItemCol() = default;

template <class Item>
CSmartPtr<CItemCol<Item>> CItemCol<Item>::CreateInstance(char const* elementName) {
  return new CItemCol(elementName);
}

template <class Item>
void CItemCol<Item>::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                               bool) const {
  ValidateCount(ctx);
  for (Item const& item : *this) CXmlObjectBase::ToXml_Int(&item, writer, false, ns, ctx, false);
}

// Reads the run of siblings that are items, and returns the first sibling that is not an item.
template <class Item>
CXmlElement* CItemCol<Item>::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) {
  while (DoesElementNameMatch(ctx, cursor, GetElementName().c_str(), kNamespace)) {
    CSmartPtr<Item> const item = Item::CreateInstance(GetElementName().c_str());
    CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), ctx);
    AppendItem(item);
    cursor = cursor->GetNextSiblingElement();
  }
  return cursor;
}

template class CItemCol<CUnreadType>;
template class CItemCol<CWptType>;
template class CItemCol<CTrksegType>;
template class CItemCol<CTrkType>;

// ---- unreadType

namespace {

void BuildUnreadType(CMetaData& data) {
  data.m_classInfo = Sequence("unreadType", false);
  data.m_elements = new CElementInfo* [1] {};
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_unreadType(&BuildUnreadType);

}  // namespace

CUnreadType::CUnreadType(char const* elementName) : CGpxObject(elementName, s_unreadType) {}

CUnreadType::~CUnreadType() = default;

CSmartPtr<CUnreadType> CUnreadType::CreateInstance(char const* elementName) { return new CUnreadType(elementName); }

void CUnreadType::Init() {}

void CUnreadType::AccessProperty(int, bool, QnVariant&) {}

// ---- wptType

namespace {

void BuildWptType(CMetaData& data) {
  data.m_classInfo = Sequence("wptType");
  data.m_elements = new CElementInfo* [3] {};
  data.m_elements[0] = new CElementInfoSeqPrimOpt("ele", kNamespace, CWptType::Property_ele, ItemType_r8, nullptr,
                                                  kCollapse, CPrimitiveRestrictions());
  data.m_elements[1] = OptionalTime("time", CWptType::Property_time);
  data.m_attributes = new CAttributeInfo* [3] {};
  data.m_attributes[0] =
      RequiredDouble("lat", CWptType::Property_lat, CPrimitiveRestrictions("", -1, -1, "-90", "90", "", "", -1));
  data.m_attributes[1] =
      RequiredDouble("lon", CWptType::Property_lon, CPrimitiveRestrictions("", -1, -1, "-180", "", "", "180", -1));
}

CMetaData s_wptType(&BuildWptType);

}  // namespace

CWptType::CWptType(char const* elementName) : CGpxObject(elementName, s_wptType) {}

CWptType::~CWptType() = default;

CSmartPtr<CWptType> CWptType::CreateInstance(char const* elementName) { return new CWptType(elementName); }

void CWptType::Init() {
  m_lat = 0;
  m_lon = 0;
  m_ele.reset();
  m_time.reset();
}

void CWptType::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_lat: return AccessDouble(m_lat, read, value);
    case Property_lon: return AccessDouble(m_lon, read, value);
    case Property_ele: return AccessDouble(m_ele, read, value);
    case Property_time: return AccessTime(m_time, read, value);
  }
}

// ---- trksegType

namespace {

void BuildTrksegType(CMetaData& data) {
  data.m_classInfo = Sequence("trksegType");
  data.m_elements = new CElementInfo* [2] {};
  data.m_elements[0] = Repeated("trkpt", CTrksegType::Property_trkpt);
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_trksegType(&BuildTrksegType);

}  // namespace

CTrksegType::CTrksegType(char const* elementName)
    : CGpxObject(elementName, s_trksegType), m_trkpt(CItemCol<CWptType>::CreateInstance("trkpt")) {}

CTrksegType::~CTrksegType() = default;

CSmartPtr<CTrksegType> CTrksegType::CreateInstance(char const* elementName) { return new CTrksegType(elementName); }

void CTrksegType::Init() { m_trkpt->Clear(); }

void CTrksegType::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_trkpt: return AccessCollection(m_trkpt, read, value);
  }
}

// ---- trkType

namespace {

void BuildTrkType(CMetaData& data) {
  data.m_classInfo = Sequence("trkType");
  data.m_elements = new CElementInfo* [12] {};
  data.m_elements[0] = OptionalText("name", CTrkType::Property_name);
  data.m_elements[1] = Unread("cmt");
  data.m_elements[2] = OptionalText("desc", CTrkType::Property_desc);
  data.m_elements[3] = Unread("src");
  data.m_elements[4] = Unread("url");  // GPX 1.0 has this and the next, later versions have link
  data.m_elements[5] = Unread("urlname");
  data.m_elements[6] = Repeated("link", CTrkType::Property_link);
  data.m_elements[7] = Unread("number");
  data.m_elements[8] = Unread("type");
  data.m_elements[9] = Unread("extensions");
  data.m_elements[10] = Repeated("trkseg", CTrkType::Property_trkseg);
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_trkType(&BuildTrkType);

}  // namespace

CTrkType::CTrkType(char const* elementName)
    : CGpxObject(elementName, s_trkType),
      m_link(CItemCol<CUnreadType>::CreateInstance("link")),
      m_trkseg(CItemCol<CTrksegType>::CreateInstance("trkseg")) {}

CTrkType::~CTrkType() = default;

CSmartPtr<CTrkType> CTrkType::CreateInstance(char const* elementName) { return new CTrkType(elementName); }

void CTrkType::Init() {
  m_name.reset();
  m_desc.reset();
  m_link->Clear();
  m_trkseg->Clear();
}

void CTrkType::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_name: return AccessText(m_name, read, value);
    case Property_desc: return AccessText(m_desc, read, value);
    case Property_link: return AccessCollection(m_link, read, value);
    case Property_trkseg: return AccessCollection(m_trkseg, read, value);
  }
}

// ---- metadataType

namespace {

void BuildMetadataType(CMetaData& data) {
  data.m_classInfo = Sequence("metadataType");
  data.m_elements = new CElementInfo* [7] {};
  data.m_elements[0] = OptionalText("name", CMetadataType::Property_name);
  data.m_elements[1] = OptionalText("desc", CMetadataType::Property_desc);
  data.m_elements[2] = Unread("author");
  data.m_elements[3] = Unread("copyright");
  data.m_elements[4] = Repeated("link", CMetadataType::Property_link);
  data.m_elements[5] = OptionalTime("time", CMetadataType::Property_time);
  data.m_attributes = new CAttributeInfo* [1] {};
}

CMetaData s_metadataType(&BuildMetadataType);

}  // namespace

CMetadataType::CMetadataType(char const* elementName)
    : CGpxObject(elementName, s_metadataType), m_link(CItemCol<CUnreadType>::CreateInstance("link")) {}

CMetadataType::~CMetadataType() = default;

CSmartPtr<CMetadataType> CMetadataType::CreateInstance(char const* elementName) {
  return new CMetadataType(elementName);
}

void CMetadataType::Init() {
  m_name.reset();
  m_desc.reset();
  m_link->Clear();
  m_time.reset();
}

void CMetadataType::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_name: return AccessText(m_name, read, value);
    case Property_desc: return AccessText(m_desc, read, value);
    case Property_link: return AccessCollection(m_link, read, value);
    case Property_time: return AccessTime(m_time, read, value);
  }
}

// ---- gpxType

namespace {

void BuildGpxType(CMetaData& data) {
  data.m_classInfo = Sequence("gpxType");
  data.m_elements = new CElementInfo* [14] {};
  data.m_elements[0] = OptionalText("name", CGpxType::Property_name);  // GPX 1.0 up to bounds
  data.m_elements[1] = OptionalText("desc", CGpxType::Property_desc);
  data.m_elements[2] = Unread("author");
  data.m_elements[3] = Unread("email");
  data.m_elements[4] = Unread("url");
  data.m_elements[5] = Unread("urlname");
  data.m_elements[6] = OptionalTime("time", CGpxType::Property_time);
  data.m_elements[7] = Unread("keywords");
  data.m_elements[8] = Unread("bounds");
  data.m_elements[9] =
      new CElementInfoSeqClsOpt("metadata", kNamespace, CGpxType::Property_metadata, XmlElementType_Element,
                                &CClassFactory::CreateObject, CClassFactory::ClassId_metadataType);
  data.m_elements[10] = Repeated("wpt", CGpxType::Property_wpt);
  data.m_elements[11] = Repeated("rte", CGpxType::Property_rte);
  data.m_elements[12] = Repeated("trk", CGpxType::Property_trk);
  data.m_attributes = new CAttributeInfo* [3] {};
  data.m_attributes[0] = RequiredText("version", CGpxType::Property_version);
  data.m_attributes[1] = RequiredText("creator", CGpxType::Property_creator);
}

CMetaData s_gpxType(&BuildGpxType);

}  // namespace

CGpxType::CGpxType(char const* elementName)
    : CGpxObject(elementName, s_gpxType),
      m_wpt(CItemCol<CWptType>::CreateInstance("wpt")),
      m_rte(CItemCol<CUnreadType>::CreateInstance("rte")),
      m_trk(CItemCol<CTrkType>::CreateInstance("trk")) {}

CGpxType::~CGpxType() = default;

CSmartPtr<CGpxType> CGpxType::CreateInstance(char const* elementName) { return new CGpxType(elementName); }

void CGpxType::Init() {
  m_version.clear();
  m_creator.clear();
  m_name.reset();
  m_desc.reset();
  m_time.reset();
  m_metadata = nullptr;
  m_wpt->Clear();
  m_rte->Clear();
  m_trk->Clear();
}

void CGpxType::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_version: return AccessText(m_version, read, value);
    case Property_creator: return AccessText(m_creator, read, value);
    case Property_name: return AccessText(m_name, read, value);
    case Property_desc: return AccessText(m_desc, read, value);
    case Property_time: return AccessTime(m_time, read, value);
    case Property_metadata: return AccessObject(m_metadata, read, value);
    case Property_wpt: return AccessCollection(m_wpt, read, value);
    case Property_rte: return AccessCollection(m_rte, read, value);
    case Property_trk: return AccessCollection(m_trk, read, value);
  }
}

// ---- The factory

CSmartPtr<CXmlObjectBase> CClassFactory::CreateObject(int classId, char const* elementName) {
  switch (classId) {
    case ClassId_unreadType: return CUnreadType::CreateInstance(elementName);
    case ClassId_metadataType: return CMetadataType::CreateInstance(elementName);
  }
  throw CQnInvalidParamException(FormatString("Unknown class [%d]", classId));
}

}  // namespace Gpx
