#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/element.h"
#include "schema/built_ins.h"
#include "schema/components.h"
#include "schema/storage.h"
#include "schemas/content_match.h"
#include "schemas/value_rows.h"

namespace SchemaTests {

/// Why a document is not valid.
class Invalid : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Walks through documents beside the declarations of their schema, and judges each value of a simple type as generated
/// classes judge it when they read under the rules of XML Schema. What concerns more than one value (identifiers, keys)
/// and what blocks the derivation of types are not checked.
class InstanceCheck {
 public:
  /// Keeps references to both.
  InstanceCheck(Schema::SchemaSet const& set, Quillon9::CXmlSerializationContext const& context);

  /// \throws Invalid for what is not as the schema demands; CQnException for values that are not.
  void Check(Quillon9::CXmlElement const& root);

 private:
  using Element = Quillon9::CXmlElement;

  struct Type {
    Schema::SimpleType const* simple = nullptr;
    Schema::ComplexType const* complex = nullptr;  ///< if this is null, the type is simple
  };
  struct Texts {
    std::optional<std::string> const& defaultValue;
    std::optional<std::string> const& fixedValue;
  };

  static bool IsDerived(Type const& type, Type const& from);
  void CheckElement(Element const& element, Schema::ElementDeclaration const& declaration);
  void CheckUndeclared(Element const& element, Quillon9::CXmlAttribute const& typeName);
  void CheckTyped(Element const& element, Schema::ElementDeclaration const& declaration, Type const& type);
  void CheckLaxly(Element const& element);
  Type TypeNamed(Element const& element, std::string const& name) const;
  void CheckChildren(Element const& element, Schema::ComplexType const& type);
  void CheckAttributes(Element const& element, Schema::ComplexType const& type);
  void CheckOtherAttribute(Element const& element, Quillon9::CXmlAttribute const& attribute,
                           Schema::ComplexType const& type);
  void CheckContent(Element const& element, Schema::ElementDeclaration const& declaration, Type const& type);
  void CheckValue(Element const& element, std::string_view text, bool isElement, Schema::SimpleType const* type,
                  Texts const& texts);

  Schema::SchemaSet const& m_set;
  Quillon9::CXmlSerializationContext const& m_context;
  Schema::Storage m_storage;
  Schema::BuiltInTypes m_builtIns;
  ValueRows m_rows;
};

}  // namespace SchemaTests
