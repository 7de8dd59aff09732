#pragma once

#include "quillon9/descriptors/generic_content.h"
#include "quillon9/export.h"
#include "quillon9/generated/object_col.h"
#include "quillon9/generated/rows.h"

namespace Quillon9 {

/// The elements of a repeated wildcard, or those of one name that may have any content. They do not keep white space that
/// only separates children.
class QUILLON9_API CAnyElementCol : public CObjectCol<CElement> {
 public:
  /// The collection of a row. It takes exactly the elements whose namespace the rule of the row allows, up to its
  /// maximum; without a rule, those that have the name and the namespace of the row.
  static CSmartPtr<CXmlObjectBase> ForRow(CElementRow const& row) { return new CAnyElementCol(row); }
  ~CAnyElementCol() override;
  /// True.
  bool HoldsUtf8Text() const override { return true; }
  /// As for any collection. The failure names elements of a wildcard by its rule.
  void ValidateCount(CXmlSerializationContext const& ctx) const override;

  /// Append a new element in the namespace \p ns, or an existing one.
  /// \throws CQnInvalidNamespaceException "Invalid namespace [%s]. The namespace must be one of [%s] where the target
  ///         namespace is [%s]" for one that the wildcard does not allow; CQnInvalidParamException for a null \p
  ///         element, and for one of another name where all have one name.
  ///@{
  CElement& Add(char const* name, char const* ns);
  CElement& Add(CSmartPtr<CElement> const& element);
  ///@}

 protected:
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;

 private:
  explicit CAnyElementCol(CElementRow const& row);
  bool Takes(CXmlSerializationContext const& ctx, CXmlElement const* element) const;

  CNamespaceRule const* m_rule;  // null where all have the same name
};

}  // namespace Quillon9
