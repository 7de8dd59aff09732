#pragma once

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "descriptors/table_check.h"
#include "quillon9/quillon9.h"

/// A generated class whose tables a test puts together at run time, so that a case is a table, a document and the
/// result. Properties are kept in variants by their index.
namespace Quillon9::Testing {

/// The library checks a class once, but DynamicClass has other tables in each case, and some are wrong on purpose.
inline bool const kTableChecksWereEnabled = EnableTableChecks(false);

/// The tables of one class. Owns the descriptors and frees them as generated code does.
class Shape {
 public:
  struct Options {
    Quillon9Data::XmlElementGroupType group = Quillon9Data::XmlElementGroupType_Sequence;
    Quillon9Data::XmlElementType type = Quillon9Data::XmlElementType_Element;
    int textProperty = -1;
    bool rejectUnknownAttributes = true;
    bool typeAttributeWanted = false;
  };

  Shape(Options options, std::initializer_list<Quillon9Data::CElementInfo*> elements,
        std::initializer_list<Quillon9Data::CAttributeInfo*> attributes = {})
      : m_info(new Quillon9Data::CParentElementInfo(options.group, options.type, "Type", "urn:type",
                                                    options.textProperty, options.rejectUnknownAttributes,
                                                    options.typeAttributeWanted)),
        m_elements(new Quillon9Data::CElementInfo* [elements.size() + 1] {}),
        m_attributes(new Quillon9Data::CAttributeInfo* [attributes.size() + 1] {}) {
    std::copy(elements.begin(), elements.end(), m_elements);
    std::copy(attributes.begin(), attributes.end(), m_attributes);
  }
  ~Shape() { CXmlGeneratedClass::CleanMetaData(m_info, m_elements, m_attributes); }
  Shape(Shape const&) = delete;
  Shape& operator=(Shape const&) = delete;

  Quillon9Data::CParentElementInfo* m_info;
  Quillon9Data::CElementInfo** m_elements;
  Quillon9Data::CAttributeInfo** m_attributes;
};

class DynamicClass : public CXmlGeneratedClass {
 public:
  explicit DynamicClass(Shape const& shape, char const* name = "root") : m_shape(shape) { SetElementName(name); }

  using CXmlGeneratedClass::GetBase;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return m_targetNamespace; }
  std::string GetNamespace() const override { return m_targetNamespace; }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (!read) {
      m_properties[index] = value;
    } else if (auto const property = m_properties.find(index); property != m_properties.end()) {
      value = property->second;
    }
  }
  Quillon9Data::CParentElementInfo* GetClassInfo() const override { return m_shape.m_info; }
  Quillon9Data::CElementInfo** GetClassElementInfo() const override { return m_shape.m_elements; }
  Quillon9Data::CAttributeInfo** GetClassAttributeInfo() const override { return m_shape.m_attributes; }
  void Init() override {
    for (auto& property : m_properties) {
      if (property.second.GetItemType() == ItemType_xmlCollection) property.second.GetXmlCollection()->Clear();
    }
  }

  DynamicClass& With(int index, CXmlObjectBase* object) {
    m_properties[index].SetXmlObject(object);
    return *this;
  }
  DynamicClass& With(int index, CXmlCollectionBase* collection) {
    m_properties[index].SetXmlCollection(collection);
    return *this;
  }
  DynamicClass& With(int index, char const* text) {
    m_properties[index].SetString(text);
    return *this;
  }
  DynamicClass& With(int index, std::int32_t number) {
    m_properties[index].SetI4(number);
    return *this;
  }
  /// The element without a declaration, on one line.
  std::string Text(CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext) const {
    return ToXml(false, false, EOLType_LF, ctx);
  }

  std::map<int, QnVariant> m_properties;
  std::string m_targetNamespace;

 private:
  Shape const& m_shape;
};

class NillableClass : public DynamicClass, public INillable {
 public:
  using DynamicClass::DynamicClass;
  bool IsNil() const override { return m_nil; }
  void SetNil(bool nil) override { m_nil = nil; }

 private:
  bool m_nil = false;
};

/// A collection of DynamicClass items, as a generator writes one.
class DynamicCollection : public CXmlCollection {
 public:
  DynamicCollection(Shape const& itemShape, char const* name, int minOccurs, int maxOccurs)
      : CXmlCollection(name, "", minOccurs, maxOccurs), m_itemShape(itemShape) {}
  DynamicCollection& Add(CXmlObjectBase* item) {
    AppendItem(item);
    return *this;
  }
  CXmlObjectBase* Item(int index) const { return GetNodeAtIndex(index)->m_item; }
  using CXmlCollection::AddAfterItem;
  using CXmlCollection::AddBeforeItem;
  using CXmlCollection::AddItemAt;
  using CXmlCollection::AppendItem;
  using CXmlCollection::GetNodeForItem;
  using CXmlCollection::PrependItem;

 protected:
  void ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override {
    ValidateCount(ctx);
    for (CNode* node = GetFirstNode(); node != nullptr; node = node->m_next) {
      CXmlObjectBase::ToXml_Int(node->m_item, writer, false, ns, ctx, inChoice);
    }
  }
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) override {
    while (cursor != nullptr && DoesElementNameMatch(ctx, cursor, GetElementName().c_str(), GetNamespace().c_str())) {
      CSmartPtr<CXmlObjectBase> const item(new DynamicClass(m_itemShape));
      CXmlObjectBase::FromXml_Int(item.Get(), cursor, cursor->GetFirstElement(), ctx);
      AppendItem(item.Get());
      cursor = cursor->GetNextSiblingElement();
    }
    return cursor;
  }

 private:
  Shape const& m_itemShape;
};

/// Descriptors without the arguments that a test does not care about.
inline CPrimitiveRestrictions NoFacets() { return CPrimitiveRestrictions("", -1, -1, "", "", "", "", -1); }

template <class Descriptor>
Quillon9Data::CElementInfo* Prim(char const* name, int index, ItemType type = ItemType_string,
                                 CPrimitiveRestrictions const& facets = NoFacets(), char const* ns = "") {
  return new Descriptor(name, ns, index, type, nullptr, CWhitespaceUtils::WhitespaceRule_Collapse, facets);
}

inline Quillon9Data::CAttributeInfo* Attribute(char const* name, int index, bool optional,
                                               ItemType type = ItemType_string,
                                               CPrimitiveRestrictions const& facets = NoFacets(),
                                               char const* defaultValue = nullptr, char const* ns = "") {
  return new Quillon9Data::CAttributeInfoPrimitive(name, ns, index, optional, type, nullptr,
                                                   CWhitespaceUtils::WhitespaceRule_Collapse, facets, defaultValue);
}

/// Options, one letter each: U unknown elements, M missing mandatory ones, C missing choice, I collection counts, A
/// unknown attributes, N namespaces.
inline CXmlSerializationContext Ignoring(std::string const& letters) {
  CXmlSerializationContext ctx;
  auto const has = [&](char letter) { return letters.find(letter) != std::string::npos; };
  if (has('U')) ctx.SetIgnoreUnknownElements(true);
  if (has('M')) ctx.SetIgnoreMissingMandatoryElements(true);
  if (has('C')) ctx.SetIgnoreMissingChoice(true);
  if (has('I')) ctx.SetIgnoreInvalidCollectionCounts(true);
  if (has('A')) ctx.SetIgnoreUnknownAttributes(true);
  if (has('N')) ctx.SetIgnoreNamespaces(true);
  return ctx;
}

/// Reads \p document into \p object and returns what the object then writes, or the whole message of the failure.
inline std::string ReadBack(DynamicClass& object, char const* document, std::string const& options = "") {
  CXmlSerializationContext const ctx = Ignoring(options);
  try {
    object.FromXml(document, ctx);
    return object.Text(ctx);
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
}

}  // namespace Quillon9::Testing
