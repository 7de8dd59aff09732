#pragma once

#include <cstdint>
#include <string>

#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/values/item_type.h"

namespace Quillon9 {

/// Applies those rules of schemas that need no object: whether an element is the one sought, whether a wildcard accepts
/// a namespace, whether a value satisfies its facets. Static functions without state: any thread may call them.
class QUILLON9_API CXmlObjectHelper {
 public:
  CXmlObjectHelper() = delete;

  /// Return whether \p element has the name \p name in the namespace \p ns, byte for byte. Only the name counts when
  /// \p ctx ignores namespaces, as it does for a schema without them. False for a null element.
  static bool DoesElementNameMatch(CXmlSerializationContext const& ctx, CXmlElement const* element,
                                   std::string const& name, std::string const& ns);
  /// Return whether a wildcard (W3C XML Schema Part 1, 3.10) accepts the namespace \p ns. \p list is the value of its
  /// namespace attribute, tokens separated by a blank; \p target is the target namespace of its schema. In deviation
  /// from the recommendation, a URI in the list and "##other" accept the empty namespace too, and of several tokens
  /// only the first is judged by its meaning: the others accept the empty namespace and the text of the whole list.
  static bool IsNamespaceValid(std::string const& ns, std::string const& list, std::string const& target);
  /// Check the namespace with IsNamespaceValid().
  /// \throws CQnInvalidNamespaceException "Invalid namespace [%s]. The namespace must be one of [%s] where the target
  ///         namespace is [%s]" when IsNamespaceValid() returns false.
  static void TestNamespace(std::string const& ns, std::string const& list, std::string const& target);

  /// Check \p value, read as a value of the kind \p type, with the function below for this kind. \p name is the name of
  /// the element or attribute, for the failure text; it is borrowed for the call.
  /// \throws CQnException when a facet is violated, see below, and when \p value has no text form or holds a value of
  ///         another class than \p type; CQnInvalidValueException "unknown type [%s]", with the name of the kind that
  ///         is held, for a \p type that has no facets, such as char.
  static void CheckRestriction(char const* name, QnVariant const& value, ItemType type,
                               CPrimitiveRestrictions const& restrictions);

  /// Numbers: check minInclusive, maxInclusive, minExclusive and maxExclusive, in this order. Each bound that is set is
  /// parsed with the `...FromString` of this kind, with white space collapsed. A NaN violates every bound, both as
  /// value and as bound.
  /// \throws CQnException "Invalid Value for %s [%d]", for i8 and ui8 "Invalid Value for %s [%s]", for r4 and r8
  ///         "Invalid Value for %s [%f]". A ui4 above 2,147,483,647 is shown as the negative number of the same bits.
  ///         CQnInvalidValueException from the parser for a bound that is not such a number.
  ///@{
  static void CheckRestrictionForui4(char const* name, std::uint32_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForui2(char const* name, std::uint16_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForui1(char const* name, std::uint8_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFori8(char const* name, std::int64_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFori4(char const* name, std::int32_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFori2(char const* name, std::int16_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFori1(char const* name, std::int8_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForui8(char const* name, std::uint64_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForr8(char const* name, double value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForr4(char const* name, float value, CPrimitiveRestrictions const& restrictions);
  ///@}

  /// Check years, months and days as numbers.
  ///@{
  static void CheckRestrictionForday(char const* name, std::uint8_t value, CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFormonth(char const* name, std::uint8_t value,
                                       CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForyear(char const* name, std::uint16_t value,
                                      CPrimitiveRestrictions const& restrictions);
  ///@}

  /// Numbers of any length: check the same four bounds, in the order of CBigInteger and CDecimal, in which "-0" lies
  /// below "0".
  /// \throws CQnException "Invalid Value for %s [%s]"; whatever the parser throws for a bound that is not a number.
  ///@{
  static void CheckRestrictionForinteger(char const* name, CBigInteger const& value,
                                         CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFordecimal(char const* name, CDecimal const& value,
                                         CPrimitiveRestrictions const& restrictions);
  ///@}

  /// Dates, times and durations: check the same four bounds with CompareTo(). An indeterminate comparison violates no
  /// bound, so a date without a zone passes a bound with a zone that lies within 14 hours.
  /// \throws CQnException "Invalid Value for %s [%s]"; whatever the parser throws for an invalid bound;
  ///         CQnInvalidStateException for a value without a month and a bound with one; CQnInvalidValueException "Date
  ///         Not Set" in place of the first for a value that cannot be printed.
  ///@{
  static void CheckRestrictionFortime(char const* name, CDateTime const& value,
                                      CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFordatetime(char const* name, CDateTime const& value,
                                          CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFordate(char const* name, CDateTime const& value,
                                      CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionFormonthYear(char const* name, CDateTime const& value,
                                           CPrimitiveRestrictions const& restrictions);  ///< the same as yearMonth
  static void CheckRestrictionFormonthDay(char const* name, CDateTime const& value,
                                          CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForyearMonth(char const* name, CDateTime const& value,
                                           CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForduration(char const* name, CDateTimeSpan const& value,
                                          CPrimitiveRestrictions const& restrictions);
  ///@}

  /// Does nothing: no facet applies to a truth value.
  static void CheckRestrictionForboolean(char const* name, bool value, CPrimitiveRestrictions const& restrictions);

  /// Check minLength, maxLength and length against the bytes of the text, then pattern with TestRegEx().
  /// \throws CQnException "Invalid Value for %s [%s]"; whatever TestRegEx() throws for an invalid pattern.
  static void CheckRestrictionForstring(char const* name, std::string value,
                                        CPrimitiveRestrictions const& restrictions);

  /// Check minLength, maxLength and length against the number of bytes.
  /// \throws CQnException "Invalid Value for %s [%s]" with the bytes in hexadecimal, for base64Binary too.
  ///@{
  static void CheckRestrictionForbase64Binary(char const* name, CBinaryData const& value,
                                              CPrimitiveRestrictions const& restrictions);
  static void CheckRestrictionForhexBinary(char const* name, CBinaryData const& value,
                                           CPrimitiveRestrictions const& restrictions);
  ///@}
};

}  // namespace Quillon9
