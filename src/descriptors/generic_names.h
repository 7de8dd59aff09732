#pragma once

#include <string_view>

#include "quillon9/descriptors/generic_content.h"

namespace Quillon9 {

/// Makes, finds and changes what the objects of generic content share.
struct GenericNamesOf {
  /// Rules of these texts. The most frequent ones exist only once.
  static CSmartPtr<detail::GenericRules const> Rules(std::string_view restriction, std::string_view target);
  /// The names for the collections of an element that has \p names.
  static detail::GenericNamesPtr Collections(detail::GenericNamesPtr const& names);
  /// Let \p names be those of \p element for an element with \p rules. All elements of a tree that have the same names
  /// share them.
  /// \throws what CXmlDocument::CountContent() throws.
  static void FindForElement(CXmlElement const& element, detail::GenericRules const& rules, bool hadNoNamespace,
                             detail::GenericNamesPtr& names);
  /// The same for \p attribute of \p element.
  static void FindForAttribute(CXmlElement const& element, CXmlAttribute const& attribute,
                               detail::GenericNamesPtr& names);
  /// \p names for one owner, who wants to change them.
  static detail::GenericNames& Own(detail::GenericNamesPtr& names);
};

}  // namespace Quillon9
