#pragma once

#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"
#include "xmlio/checking_writer.h"

namespace Quillon9Data {

/// What a check of a graph of objects does with single members.
class MemberCheck {
 public:
  /// For catch blocks of code that writes a member: tell a check that \p failure is at that member. False, without an
  /// effect, for a writer that writes; then the failure must be thrown again.
  ///@{
  static bool GoesOn(CXmlWriter const& writer, Quillon9::CQnException& failure, CElementInfo const& member);
  static bool GoesOn(CXmlWriter const& writer, Quillon9::CQnException& failure, CAttributeInfo const& member);
  ///@}

  /// What writing a member came to.
  struct Result {
    bool isDone;     ///< the answer of ElementToXml(); true also after a failure
    bool isWritten;  ///< an element was started, or there was a failure
  };
  /// Write \p member of \p holder to \p writer, and go on after a failure.
  static Result Write(Quillon9::CheckingWriter& writer, CXmlSerializationContext const& ctx,
                      CXmlGeneratedClass const* holder, CElementInfo const& member);

  /// Whether a reader refuses the absence of \p member in \p holder, if \p holder is not absent as a whole. Known for
  /// the members of the library and those of all groups.
  static bool IsRequired(CElementInfo const& member, CXmlSerializationContext const& ctx,
                         CXmlGeneratedClass const* holder);
  /// Whether \p member of a choice has something to write. False for members of a class that a program derived.
  static bool IsChosen(CElementInfo const& member, CXmlGeneratedClass const* holder);
  /// For a repeated member of a choice, whose count is not checked on writing: check that unless it is empty.
  static void CheckCountOfChosen(CElementInfo const& member, CXmlSerializationContext const& ctx,
                                 CXmlGeneratedClass const* holder);

  /// \throws CQnValidationException "The required element [%s] is not set".
  [[noreturn]] static void ThrowNotSet(char const* name);
  /// \throws CQnValidationException "More than one of the elements [%s] is set, but they exclude each other".
  [[noreturn]] static void ThrowMoreThanOne(char const* names);
};

}  // namespace Quillon9Data
