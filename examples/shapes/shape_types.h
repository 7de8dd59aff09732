#pragma once

#include <optional>
#include <string>

#include "../support/meta_data.h"
#include "quillon9/generated.h"
#include "quillon9/quillon9.h"

/// The classes of shapes.xsd, one for each of its complex types and for each choice or sequence that is not the whole
/// content of a type. The latter have no tag: their content stands among the children of the enclosing element.
///
/// Texts are in the code page of the process locale. Values that may be absent are optional, objects that may be absent
/// are null. Writing checks the facets; reading does not. What getters return belongs to its object, and a read
/// replaces it. Objects live in CSmartPtr; only one thread at a time may use a graph of them.
namespace Drawings {

static_assert(QUILLON9_VERSION_MAJOR == 1, "these classes were written for another major version of the library");

/// The tables that the objects of one class share.
using Support::CMetaData;

/// The numbers that identify the properties of the classes in the tables.
enum Property {
  Property_anchor,
  Property_author,
  Property_cartesian,
  Property_colour,
  Property_created,
  Property_fill,
  Property_from,
  Property_height,
  Property_id,
  Property_label,
  Property_meta,
  Property_phi,
  Property_point,
  Property_polar,
  Property_position,
  Property_r,
  Property_radius,
  Property_shape,
  Property_text,
  Property_to,
  Property_units,
  Property_width,
  Property_x,
  Property_y
};

/// The common base of the classes.
class CDrawingObject : public Quillon9::CXmlGeneratedClass {
 public:
  using CXmlGeneratedClass::GetBase;
  Quillon9::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override;
  std::string GetNamespace() const override;
  Quillon9Data::CParentElementInfo* GetClassInfo() const override;
  Quillon9Data::CElementInfo** GetClassElementInfo() const override;
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override;

 protected:
  CDrawingObject(char const* elementName, CMetaData& metaData) : m_metaData(metaData) { SetElementName(elementName); }

 private:
  CMetaData& m_metaData;
};

/// What a drawing says about itself: an all group.
class CMeta : public CDrawingObject {
 public:
  enum Units { Units_mm, Units_cm, Units_in };

  explicit CMeta(char const* elementName);

  std::string const& GetAuthor() const { return m_author; }
  std::optional<Quillon9::CDateTime> const& GetCreated() const { return m_created; }
  Units GetUnits() const { return m_units; }
  /// Return the text of a unit in a document; null for a number that is not a unit.
  static char const* UnitsToText(int units);
  /// \throws Quillon9::CQnInvalidValueException if \p text is not a unit.
  static int UnitsFromText(char const* text);

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  std::string m_author;
  std::optional<Quillon9::CDateTime> m_created;
  Units m_units = Units_mm;
};

/// A point given by its coordinates. It has no tag.
class CCartesian : public CDrawingObject {
 public:
  explicit CCartesian(char const* elementName);

  double GetX() const { return m_x; }
  double GetY() const { return m_y; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override { m_x = m_y = 0; }

 private:
  double m_x = 0;
  double m_y = 0;
};

/// A point given by distance and direction. It has no tag.
class CPolar : public CDrawingObject {
 public:
  explicit CPolar(char const* elementName);

  double GetR() const { return m_r; }
  /// Return the direction in degrees, counter-clockwise.
  double GetPhi() const { return m_phi; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override { m_r = m_phi = 0; }

 private:
  double m_r = 0;
  double m_phi = 0;
};

/// A choice: one of its members is set, the other is null. It has no tag.
class CPoint : public CDrawingObject {
 public:
  explicit CPoint(char const* elementName);
  /// What CObjectCol makes its items by.
  static CSmartPtr<CPoint> CreateInstance(char const* elementName) { return new CPoint(elementName); }

  CCartesian* GetCartesian() const { return m_cartesian; }
  CPolar* GetPolar() const { return m_polar; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  CSmartPtr<CCartesian> m_cartesian;
  CSmartPtr<CPolar> m_polar;
};

/// A choice, one of whose members is itself a choice. It has no tag.
class CPosition : public CDrawingObject {
 public:
  explicit CPosition(char const* elementName);

  /// Return the id of another shape.
  std::optional<std::string> const& GetAnchor() const { return m_anchor; }
  CPoint* GetPoint() const { return m_point; }
  /// The setters unset the member if \p value is absent or null. SetPoint() shares \p value with the caller.
  /// \throws Quillon9::CQnInvalidStateException if the other member is set.
  void SetAnchor(std::optional<std::string> value);
  void SetPoint(CPoint* value);

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  std::string m_selected;  // the member that is set; empty for none
  std::optional<std::string> m_anchor;
  CSmartPtr<CPoint> m_point;
};

/// A nillable text.
class CLabel : public CDrawingObject, public Quillon9::INillable {
 public:
  explicit CLabel(char const* elementName);

  /// Return the text; empty if it is nil.
  std::string const& GetText() const { return m_text; }
  bool IsNil() const override { return m_nil; }
  void SetNil(bool nil) override { m_nil = nil; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  std::string m_text;
  bool m_nil = false;
};

/// Abstract: a CSolidFill or a CGradientFill, depending on xsi:type.
class CFillType : public CDrawingObject {
 protected:
  using CDrawingObject::CDrawingObject;
};

class CSolidFill : public CFillType {
 public:
  explicit CSolidFill(char const* elementName);

  /// Return a number sign and six hexadecimal digits in lower case: red, green, blue.
  std::string const& GetColour() const { return m_colour; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override { m_colour.clear(); }

 private:
  std::string m_colour;
};

class CGradientFill : public CFillType {
 public:
  explicit CGradientFill(char const* elementName);

  std::string const& GetFrom() const { return m_from; }
  std::string const& GetTo() const { return m_to; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  std::string m_from;
  std::string m_to;
};

/// Abstract: the head of the substitution group.
class CShapeType : public CDrawingObject {
 public:
  /// \throws Quillon9::CQnInvalidStateException "The type [%s] is abstract", always.
  static CSmartPtr<CShapeType> CreateInstance(char const* elementName);

  std::string const& GetId() const { return m_id; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override { m_id.clear(); }

 protected:
  using CDrawingObject::CDrawingObject;

 private:
  std::string m_id;
};

/// The shapes of a drawing, one or more. Each has a name of the substitution group whose head is shape.
class CShapeCol : public Quillon9::CObjectCol<CShapeType> {
 public:
  CShapeCol();

 protected:
  CSmartPtr<Quillon9::CXmlObjectBase> ItemFor(Quillon9::CXmlSerializationContext const& ctx,
                                              Quillon9::CXmlElement* element) override;
};

/// Abstract: a shape that is filled.
class CAreaType : public CShapeType {
 public:
  CLabel* GetLabel() const { return m_label; }
  /// Return the position, which is never null.
  CPosition* GetPosition() const { return m_position; }
  /// Return the fill, which is null only in a new object.
  CFillType* GetFill() const { return m_fill; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 protected:
  CAreaType(char const* elementName, CMetaData& metaData);

 private:
  CSmartPtr<CLabel> m_label;
  CSmartPtr<CPosition> m_position;
  CSmartPtr<CFillType> m_fill;
};

class CCircle : public CAreaType {
 public:
  explicit CCircle(char const* elementName);

  double GetRadius() const { return m_radius; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  double m_radius = 0;
};

class CRectangle : public CAreaType {
 public:
  explicit CRectangle(char const* elementName);

  double GetWidth() const { return m_width; }
  double GetHeight() const { return m_height; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  double m_width = 0;
  double m_height = 0;
};

/// A choice of two collections, one of which is empty. (If neither is, the points are written.)
class CPolyline : public CShapeType {
 public:
  explicit CPolyline(char const* elementName);

  Quillon9::CObjectCol<CPoint>* GetPoint() const { return m_point; }
  /// Return the ids of other shapes.
  Quillon9::CstringCol* GetAnchor() const { return m_anchor; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  CSmartPtr<Quillon9::CObjectCol<CPoint>> const m_point;
  CSmartPtr<Quillon9::CstringCol> const m_anchor;
};

/// A whole drawing, the type of the document element.
class CDrawing : public CDrawingObject {
 public:
  explicit CDrawing(char const* elementName = "drawing");

  /// Return the meta data, which are never null.
  CMeta* GetMeta() const { return m_meta; }
  CShapeCol* GetShape() const { return m_shape; }

  void AccessProperty(int index, bool read, Quillon9::QnVariant& value) override;
  void Init() override;

 private:
  CSmartPtr<CMeta> m_meta;
  CSmartPtr<CShapeCol> const m_shape;
};

/// Creates objects of the class that a table identifies by number or that an element requires.
class CClassFactory : public Quillon9::CClassfactoryBase {
 public:
  enum ClassId { ClassId_Meta, ClassId_Cartesian, ClassId_Polar, ClassId_Point, ClassId_Position, ClassId_Label };

  /// \throws Quillon9::CQnInvalidParamException for an unknown number.
  static CSmartPtr<Quillon9::CXmlObjectBase> CreateObject(int classId, char const* elementName);
  /// Create a shape by the name of \p element, which must not be null; null if no shape has that name.
  static CSmartPtr<Quillon9::CXmlObjectBase> CreateShape(Quillon9::CXmlElement* element);
  /// Create a fill by the xsi:type of \p element, which must not be null; null if no fill has that type.
  static CSmartPtr<Quillon9::CXmlObjectBase> CreateFill(Quillon9::CXmlElement* element);
};

}  // namespace Drawings
