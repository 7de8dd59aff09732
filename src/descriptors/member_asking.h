#pragma once

#include <cstddef>
#include <string>

#include "binding/failure_report.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// How the drivers ask one member of a class to take elements. The arguments are those of CElementInfo::ElementFromXml().
class MemberAsking {
 public:
  /// Ask \p member once. What it throws passes on.
  static bool Once(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, Quillon9Data::CElementInfo& member,
                   CXmlElement* parent, CXmlElement** cursor, Quillon9Data::XmlElementType type) {
    // Most members do not use the namespace of their holder, and its text is expensive to make.
    if (!member.ReadsHolderNamespace()) return member.ElementFromXml(ctx, holder, parent, cursor, "", type);
    std::string const ns = holder->GetNamespace();
    return member.ElementFromXml(ctx, holder, parent, cursor, ns.c_str(), type);
  }
  /// The same, but a failure after which the read is to go on counts as the answer of the member, which has then taken
  /// the faulty element. If it claimed none, only a sequence goes on to its next member.
  static bool Ask(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, Quillon9Data::CElementInfo& member,
                  CXmlElement* parent, CXmlElement** cursor, Quillon9Data::XmlElementType type) {
    try {
      return Once(ctx, holder, member, parent, cursor, type);
    } catch (CQnException& failure) {
      return Recover(ctx, failure, holder, member, parent, cursor, type);
    }
  }

  /// Whether \p failure, which \p member threw at \p cursor, is about an element that \p member claimed as its own, and
  /// not about the absence of one.
  static bool IsAboutClaimed(CQnException const& failure, Quillon9Data::CElementInfo const& member,
                             CXmlElement const* cursor);
  /// For a handler of \p failure: send it to the sink, and move \p cursor past the element that it is about if \p member
  /// claimed one; return whether it did. If the read is not to go on, throw the failure again.
  static bool PassFaulty(CXmlSerializationContext const& ctx, CQnException& failure,
                         Quillon9Data::CElementInfo const& member, CXmlElement const* parent, CXmlElement** cursor);
  /// The child at which a sequence with a tag asks \p member again, which said no at \p cursor. Of the library's members,
  /// only groups do so.
  static CXmlElement* PassVain(CXmlSerializationContext const& ctx, Quillon9Data::CElementInfo const& member,
                               CXmlElement const* parent, CXmlElement* cursor);

  /// \p member, which must be one of an all group.
  /// \throws CQnException if it is not.
  static Quillon9Data::CElementInfoAll const& OfAllGroup(Quillon9Data::CElementInfo const& member);

  /// The failures of the drivers themselves.
  ///@{
  [[noreturn]] static void ThrowLeftOver(CXmlElement const* parent, CXmlElement const* cursor);
  [[noreturn]] static void ThrowEmptyChoice(CXmlElement const* parent, CXmlElement const* cursor);
  ///@}

 private:
  static CXmlElement* Behind(CXmlSerializationContext const& ctx, CQnException const& failure,
                             Quillon9Data::CElementInfo const& member, CXmlElement* cursor);
  static bool Recover(CXmlSerializationContext const& ctx, CQnException& failure, CXmlGeneratedClass* holder,
                      Quillon9Data::CElementInfo& member, CXmlElement* parent, CXmlElement** cursor,
                      Quillon9Data::XmlElementType type);
};

}  // namespace Quillon9
