#pragma once

#include "binding/failure_report.h"
#include "generated/value_rule.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/generated/rows.h"

// The descriptors of generated classes for what the library's own ones do not do. All belong to a sequence.
namespace Quillon9 {

/// \throws CQnValidationException "The required element [%s] is not set".
[[noreturn]] void ThrowElementNotSet(char const* name);

/// What they have in common: an element of one name that is required or not.
class BoundMember : public Quillon9Data::CElementInfoSeq {
 public:
  BoundMember(CElementRow const& row, bool isRequired);
  bool ReadsHolderNamespace() const override { return false; }
  bool MayBegin(CXmlSerializationContext const& ctx, CXmlElement const* element) const override;

 protected:
  BoundMember(CElementRow const& row, bool isRequired, CPrimitiveRestrictions const& restrictions);

  /// Whether an element for this member is under the cursor, which moves to it where unknown elements are ignored. If
  /// not, \p answer is what ElementFromXml() returns.
  /// \throws CQnValidationException "Failed to find a required element [%s]".
  bool Seek(CXmlSerializationContext const& ctx, CXmlElement** cursor, Quillon9Data::XmlElementType holderType,
            bool& answer) const;
  /// \throws CQnValidationException "The required element [%s] is not set" if it is required.
  bool AbsentOnWriting(CXmlSerializationContext const& ctx) const;

  CElementRow const& m_row;
  bool m_isRequired;
};

#define QN_BOUND_OVERRIDES                                                                                        \
  bool ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder, CXmlWriter* writer)    \
      const override;                                                                                             \
  bool ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,       \
                      CXmlElement** cursor, char const* holderNamespace, Quillon9Data::XmlElementType holderType) \
      override;

/// A value that is an enumerator, or has a default, a fixed value or rules that the library's own descriptors do not
/// know.
class ValueMember : public BoundMember {
 public:
  ValueMember(CElementRow const& row, bool isRequired);
  QN_BOUND_OVERRIDES

 private:
  bool OmitOnWriting(CXmlSerializationContext const& ctx, CXmlWriter const& writer) const;
  bool WriteNames(QnVariant const& value, CXmlWriter& writer) const;

  ValueRule m_rule;
};

/// An object.
class ObjectMember : public BoundMember {
 public:
  using BoundMember::BoundMember;
  QN_BOUND_OVERRIDES
};

/// An element that is held as CElement: one of a wildcard, or one of a name.
class ElementMember : public BoundMember {
 public:
  using BoundMember::BoundMember;
  QN_BOUND_OVERRIDES
};

/// A collection, which is made for the first element.
class CollectionMember : public BoundMember {
 public:
  using BoundMember::BoundMember;
  /// Read from \p cursor, which is an item, on. Returns the first child that is not taken.
  CXmlElement* ReadItems(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                         CXmlElement* cursor) const;
  /// \throws CQnValidationException for a count outside the limits, unless \p ctx ignores that.
  void ValidateCount(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder) const;
  /// The first item above the maximum among the children from \p first up to \p next, or \p next if there is none.
  FailurePoint WhereCountIsWrong(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                 CXmlElement const* parent, CXmlElement const* first, CXmlElement const* next) const;
  bool IsRepeated() const override { return true; }
  QN_BOUND_OVERRIDES

 private:
  int CountForRound(CXmlSerializationContext const& ctx, CXmlElement const* cursor) const;
};

#undef QN_BOUND_OVERRIDES

}  // namespace Quillon9
