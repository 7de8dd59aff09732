#include "shape_types.h"

#include <cstddef>
#include <memory>
#include <utility>

using namespace Quillon9;
using namespace Quillon9Data;

namespace Drawings {

// ---- Common parts of the classes

namespace {

constexpr char kNamespace[] = "urn:example:drawing";
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// ---- The rows of the tables

using ClassPtr = std::unique_ptr<CParentElementInfo>;
using ElementPtr = std::unique_ptr<CElementInfo>;

ClassPtr WithTag(XmlElementGroupType group, char const* name, int textProperty = -1, bool wantsType = false) {
  return std::make_unique<CParentElementInfo>(group, XmlElementType_Element, name, kNamespace, textProperty, true,
                                              wantsType);
}

// A class without a tag sees the attributes of the enclosing element, so it rejects none.
ClassPtr WithoutTag(XmlElementGroupType group, char const* name) {
  return std::make_unique<CParentElementInfo>(group, XmlElementType_Pseudo, name, kNamespace, -1, false, false);
}

ElementPtr Number(char const* name, int index, char const* minInclusive) {
  return std::make_unique<CElementInfoSeqPrimMnd>(name, kNamespace, index, ItemType_r8, nullptr, kCollapse,
                                                  CPrimitiveRestrictions("", -1, -1, minInclusive, "", "", "", -1));
}

ElementPtr Colour(char const* name, int index) {
  return std::make_unique<CElementInfoSeqPrimMnd>(name, kNamespace, index, ItemType_string, nullptr, kCollapse,
                                                  CPrimitiveRestrictions("#[0-9a-f]{6}", -1, -1, "", "", "", "", -1));
}

ElementPtr ChosenGroup(char const* name, int index, int classId) {
  return std::make_unique<CElementInfoChoiceClsOpt>(name, kNamespace, index, XmlElementType_Pseudo,
                                                    &CClassFactory::CreateObject, classId);
}

ElementPtr Label() {
  return std::make_unique<CElementInfoSeqClsOpt>("label", kNamespace, Property_label, XmlElementType_Element,
                                                 &CClassFactory::CreateObject, CClassFactory::ClassId_Label);
}

ElementPtr Position() {
  return std::make_unique<CElementInfoSeqClsMnd>("position", kNamespace, Property_position, XmlElementType_Pseudo,
                                                 &CClassFactory::CreateObject, CClassFactory::ClassId_Position, true);
}

ElementPtr Fill() {
  return std::make_unique<CElementInfoSeqAbsClsMnd>("fill", kNamespace, Property_fill, XmlElementType_Element,
                                                    &CClassFactory::CreateFill);
}

template <class... Elements>
void Describe(CMetaData& data, ClassPtr classInfo, Elements... elements) {
  data.m_classInfo = classInfo.release();
  data.m_elements = new CElementInfo* [sizeof...(elements) + 1] {};
  std::size_t count = 0;
  ((data.m_elements[count++] = elements.release()), ...);
  data.m_attributes = new CAttributeInfo* [2] {};  // it has no attributes; shapes replace this
}

template <class... Elements>
void DescribeShape(CMetaData& data, ClassPtr classInfo, Elements... elements) {
  Describe(data, std::move(classInfo), std::move(elements)...);
  data.m_attributes[0] = new CAttributeInfoPrimitive("id", "", Property_id, false, ItemType_string, nullptr, kCollapse,
                                                     CPrimitiveRestrictions(), nullptr);
}

// ---- Reading a property copies it into the variant, storing takes it from the variant.

void AccessText(std::string& property, bool read, QnVariant& value) {
  if (read) {
    value.SetString(property);
  } else {
    property = value.GetString();
  }
}

void AccessDouble(double& property, bool read, QnVariant& value) {
  if (read) {
    value.SetR8(property);
  } else {
    property = value.GetR8();
  }
}

// The collection object stays; reading fills it.
void AccessCollection(CXmlCollectionBase* property, bool read, QnVariant& value) {
  if (read) value.SetXmlCollection(property);
}

template <class T>
CSmartPtr<T> ObjectOf(QnVariant const& value) {
  return dynamic_cast<T*>(value.GetXmlObject().Get());
}

template <class T>
void AccessObject(CSmartPtr<T>& property, bool read, QnVariant& value) {
  if (read) {
    value.SetXmlObject(property);
  } else {
    property = ObjectOf<T>(value);
  }
}

}  // namespace

std::string CDrawingObject::GetTargetNamespace() const { return kNamespace; }
std::string CDrawingObject::GetNamespace() const { return kNamespace; }
CParentElementInfo* CDrawingObject::GetClassInfo() const { return m_metaData.Get().m_classInfo; }
CElementInfo** CDrawingObject::GetClassElementInfo() const { return m_metaData.Get().m_elements; }
CAttributeInfo** CDrawingObject::GetClassAttributeInfo() const { return m_metaData.Get().m_attributes; }

// ---- Shapes of any kind

CShapeCol::CShapeCol() : CObjectCol("shape", kNamespace, 1, -1) {}

// [item-for]
// Shapes have many names, so the factory decides, not the collection's own name, which is that of the head.
CSmartPtr<CXmlObjectBase> CShapeCol::ItemFor(CXmlSerializationContext const& ctx, CXmlElement* element) {
  bool const isOurs = ctx.GetIgnoreNamespaces() || element->GetNamespaceURI() == kNamespace;
  return isOurs ? CClassFactory::CreateShape(element) : nullptr;
}
// [item-for]

CSmartPtr<CShapeType> CShapeType::CreateInstance(char const*) {
  throw CQnInvalidStateException("The type [ShapeType] is abstract");
}

// ---- Meta

static CMetaData s_meta([](CMetaData& data) {
  Describe(data, WithTag(XmlElementGroupType_All, "Meta"),
           ElementPtr(new CElementInfoAllPrimMnd("author", kNamespace, Property_author, ItemType_string, nullptr,
                                                 CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions())),
           ElementPtr(new CElementInfoAllPrimOpt("created", kNamespace, Property_created, ItemType_date, nullptr,
                                                 kCollapse, CPrimitiveRestrictions())),
           ElementPtr(new CElementInfoAllEnumMnd("units", kNamespace, Property_units, &CMeta::UnitsToText,
                                                 &CMeta::UnitsFromText)));
});

CMeta::CMeta(char const* elementName) : CDrawingObject(elementName, s_meta) {}

char const* CMeta::UnitsToText(int units) {
  switch (units) {
    case Units_mm: return "mm";
    case Units_cm: return "cm";
    case Units_in: return "in";
  }
  return nullptr;
}

int CMeta::UnitsFromText(char const* text) {
  std::string const token = CWhitespaceUtils::Collapse(text);
  for (int units = 0; UnitsToText(units) != nullptr; ++units) {
    if (token == UnitsToText(units)) return units;
  }
  throw CQnInvalidValueException(FormatString("The value [%s] is no unit", text));
}

void CMeta::Init() {
  m_author.clear();
  m_created.reset();
  m_units = Units_mm;
}

void CMeta::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_author: return AccessText(m_author, read, value);
    case Property_created:
      if (!read) m_created = value.GetDate();
      if (read && m_created) value.SetDate(*m_created);  // an absent one leaves the variant invalid
      return;
    case Property_units: return read ? value.SetI4(m_units) : void(m_units = static_cast<Units>(value.GetI4()));
  }
}

// ---- Position and its parts

static CMetaData s_cartesian([](CMetaData& data) {
  Describe(data, WithoutTag(XmlElementGroupType_Sequence, "Cartesian"), Number("x", Property_x, ""),
           Number("y", Property_y, ""));
});

CCartesian::CCartesian(char const* elementName) : CDrawingObject(elementName, s_cartesian) {}

void CCartesian::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_x: return AccessDouble(m_x, read, value);
    case Property_y: return AccessDouble(m_y, read, value);
  }
}

static CMetaData s_polar([](CMetaData& data) {
  Describe(data, WithoutTag(XmlElementGroupType_Sequence, "Polar"), Number("r", Property_r, "0"),
           Number("phi", Property_phi, ""));
});

CPolar::CPolar(char const* elementName) : CDrawingObject(elementName, s_polar) {}

void CPolar::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_r: return AccessDouble(m_r, read, value);
    case Property_phi: return AccessDouble(m_phi, read, value);
  }
}

static CMetaData s_point([](CMetaData& data) {
  Describe(data, WithoutTag(XmlElementGroupType_Choice, "Point"),
           ChosenGroup("cartesian", Property_cartesian, CClassFactory::ClassId_Cartesian),
           ChosenGroup("polar", Property_polar, CClassFactory::ClassId_Polar));
});

CPoint::CPoint(char const* elementName) : CDrawingObject(elementName, s_point) {}

void CPoint::Init() {
  m_cartesian = nullptr;
  m_polar = nullptr;
}

void CPoint::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_cartesian: return AccessObject(m_cartesian, read, value);
    case Property_polar: return AccessObject(m_polar, read, value);
  }
}

static CMetaData s_position([](CMetaData& data) {
  Describe(data, WithoutTag(XmlElementGroupType_Choice, "Position"),
           ElementPtr(new CElementInfoChoicePrimOpt("anchor", kNamespace, Property_anchor, ItemType_string, nullptr,
                                                    kCollapse, CPrimitiveRestrictions())),
           ChosenGroup("point", Property_point, CClassFactory::ClassId_Point));
});

CPosition::CPosition(char const* elementName) : CDrawingObject(elementName, s_position) {}

// Unsetting a member that is not set would select it, here and in SetPoint().
void CPosition::SetAnchor(std::optional<std::string> value) {
  if (value || m_anchor) Choice_SelectElement("anchor", value ? this : nullptr, m_selected);
  m_anchor = std::move(value);
}

void CPosition::SetPoint(CPoint* value) {
  if (value != nullptr || m_point) Choice_SelectElement("point", value, m_selected);
  m_point = value;
}

void CPosition::Init() {
  m_selected.clear();
  m_anchor.reset();
  m_point = nullptr;
}

void CPosition::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_anchor:
      if (!read) SetAnchor(value.GetString());
      if (read && m_anchor) value.SetString(*m_anchor);
      return;
    case Property_point: return read ? value.SetXmlObject(m_point) : SetPoint(ObjectOf<CPoint>(value));
  }
}

// ---- The type of label, which has no name in the schema

static CMetaData s_label([](CMetaData& data) {
  Describe(data, WithTag(XmlElementGroupType_Sequence, "label", Property_text));
});

CLabel::CLabel(char const* elementName) : CDrawingObject(elementName, s_label) {}

void CLabel::Init() {
  m_text.clear();
  m_nil = false;
}

void CLabel::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_text: return AccessText(m_text, read, value);
  }
}

// ---- Fills, which are written with xsi:type because it identifies them on reading

static CMetaData s_solidFill([](CMetaData& data) {
  Describe(data, WithTag(XmlElementGroupType_Sequence, "SolidFill", -1, true), Colour("colour", Property_colour));
});

CSolidFill::CSolidFill(char const* elementName) : CFillType(elementName, s_solidFill) {}

void CSolidFill::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_colour: return AccessText(m_colour, read, value);
  }
}

static CMetaData s_gradientFill([](CMetaData& data) {
  Describe(data, WithTag(XmlElementGroupType_Sequence, "GradientFill", -1, true), Colour("from", Property_from),
           Colour("to", Property_to));
});

CGradientFill::CGradientFill(char const* elementName) : CFillType(elementName, s_gradientFill) {}

void CGradientFill::Init() {
  m_from.clear();
  m_to.clear();
}

void CGradientFill::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_from: return AccessText(m_from, read, value);
    case Property_to: return AccessText(m_to, read, value);
  }
}

// ---- Shapes: a table begins with the members of the base types

void CShapeType::AccessProperty(int index, bool read, QnVariant& value) {
  if (index == Property_id) AccessText(m_id, read, value);
}

CAreaType::CAreaType(char const* elementName, CMetaData& metaData)
    : CShapeType(elementName, metaData), m_position(new CPosition("position")) {}

void CAreaType::Init() {
  CShapeType::Init();
  m_label = nullptr;
  m_position = new CPosition("position");
  m_fill = nullptr;
}

void CAreaType::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_label: return AccessObject(m_label, read, value);
    case Property_position: return AccessObject(m_position, read, value);
    case Property_fill: return AccessObject(m_fill, read, value);
  }
  CShapeType::AccessProperty(index, read, value);
}

static CMetaData s_circle([](CMetaData& data) {
  DescribeShape(data, WithTag(XmlElementGroupType_Sequence, "Circle"), Label(), Position(), Fill(),
                Number("radius", Property_radius, "0"));
});

CCircle::CCircle(char const* elementName) : CAreaType(elementName, s_circle) {}

void CCircle::Init() {
  CAreaType::Init();
  m_radius = 0;
}

void CCircle::AccessProperty(int index, bool read, QnVariant& value) {
  if (index == Property_radius) return AccessDouble(m_radius, read, value);
  CAreaType::AccessProperty(index, read, value);
}

static CMetaData s_rectangle([](CMetaData& data) {
  DescribeShape(data, WithTag(XmlElementGroupType_Sequence, "Rectangle"), Label(), Position(), Fill(),
                Number("width", Property_width, "0"), Number("height", Property_height, "0"));
});

CRectangle::CRectangle(char const* elementName) : CAreaType(elementName, s_rectangle) {}

void CRectangle::Init() {
  CAreaType::Init();
  m_width = m_height = 0;
}

void CRectangle::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_width: return AccessDouble(m_width, read, value);
    case Property_height: return AccessDouble(m_height, read, value);
  }
  CAreaType::AccessProperty(index, read, value);
}

static CMetaData s_polyline([](CMetaData& data) {
  DescribeShape(data, WithTag(XmlElementGroupType_Choice, "Polyline"),
                ElementPtr(new CElementInfoChoiceClsCol("point", kNamespace, Property_point, XmlElementType_Pseudo)),
                ElementPtr(new CElementInfoChoicePrimCol("anchor", kNamespace, Property_anchor)));
});

CPolyline::CPolyline(char const* elementName)
    : CShapeType(elementName, s_polyline),
      m_point(new CObjectCol<CPoint>("point", kNamespace, 2, -1, XmlElementType_Pseudo)),
      m_anchor(new CstringCol("anchor", kNamespace, 2, -1, "", -1, -1, "", "", "", "", -1, kCollapse, nullptr)) {}

void CPolyline::Init() {
  CShapeType::Init();
  m_point->Clear();
  m_anchor->Clear();
}

void CPolyline::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_point: return AccessCollection(m_point, read, value);
    case Property_anchor: return AccessCollection(m_anchor, read, value);
  }
  CShapeType::AccessProperty(index, read, value);
}

// ---- Drawing

static CMetaData s_drawing([](CMetaData& data) {
  Describe(data, WithTag(XmlElementGroupType_Sequence, "Drawing"),
           ElementPtr(new CElementInfoSeqClsMnd("meta", kNamespace, Property_meta, XmlElementType_Element,
                                                &CClassFactory::CreateObject, CClassFactory::ClassId_Meta, true)),
           ElementPtr(new CElementInfoSeqAbsClsCol("shape", kNamespace, Property_shape, XmlElementType_Element)));
});

CDrawing::CDrawing(char const* elementName)
    : CDrawingObject(elementName, s_drawing), m_meta(new CMeta("meta")), m_shape(new CShapeCol) {}

void CDrawing::Init() {
  m_meta = new CMeta("meta");
  m_shape->Clear();
}

void CDrawing::AccessProperty(int index, bool read, QnVariant& value) {
  switch (index) {
    case Property_meta: return AccessObject(m_meta, read, value);
    case Property_shape: return AccessCollection(m_shape, read, value);
  }
}

// ---- The factory

CSmartPtr<CXmlObjectBase> CClassFactory::CreateObject(int classId, char const* elementName) {
  switch (classId) {
    case ClassId_Meta: return new CMeta(elementName);
    case ClassId_Cartesian: return new CCartesian(elementName);
    case ClassId_Polar: return new CPolar(elementName);
    case ClassId_Point: return new CPoint(elementName);
    case ClassId_Position: return new CPosition(elementName);
    case ClassId_Label: return new CLabel(elementName);
  }
  throw CQnInvalidParamException(FormatString("Unknown class [%d]", classId));
}

CSmartPtr<CXmlObjectBase> CClassFactory::CreateShape(CXmlElement* element) {
  std::string const& name = element->GetLocalName();
  if (name == "circle") return new CCircle(name.c_str());
  if (name == "rectangle") return new CRectangle(name.c_str());
  if (name == "polyline") return new CPolyline(name.c_str());
  return nullptr;
}

CSmartPtr<CXmlObjectBase> CClassFactory::CreateFill(CXmlElement* element) {
  if (GetElementTypeNamespaceUri(element) != kNamespace) return nullptr;
  std::string const type = GetElementType(element);
  if (type == "SolidFill") return new CSolidFill(element->GetLocalName().c_str());
  if (type == "GradientFill") return new CGradientFill(element->GetLocalName().c_str());
  return nullptr;
}

}  // namespace Drawings
