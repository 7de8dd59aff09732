#include "descriptors/generic_names.h"

#include <memory>
#include <string_view>

#include "base/fast_paths.h"
#include "descriptors/generic_size.h"
#include "xmlio/node_access.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

using detail::GenericNames;
using detail::GenericNamesPtr;
using detail::GenericRules;

namespace {

constexpr std::string_view kAnything = "##any";

/// What the generic content made from a tree shares for one of its names.
struct NamesInTree final : TreeName::User {
  GenericNamesPtr forAttributes;
  GenericNamesPtr forElements[2];  // that had no namespace at first, and that had one
};

bool AreSame(GenericRules const* left, GenericRules const* right) {
  if (left == right) return true;
  if (left == nullptr || right == nullptr) return false;
  return left->restriction == right->restriction && left->target == right->target;
}

GenericNamesPtr NewNames(std::string name, std::string ns, CSmartPtr<GenericRules const> const& rules,
                         bool hadNoNamespace) {
  CSmartPtr<GenericNames> const names(new GenericNames(std::move(name), std::move(ns), rules));
  names->hadNoNamespace = hadNoNamespace;
  return names;
}

/// Find or make the names in the place that \p choose returns. Null for a name that cannot be shared: one that may
/// change, or one that an attribute would cut off.
template <class Choose>
GenericNames const* Shared(CXmlElement const& element, TreeName const& name, GenericRules const* rules,
                           bool hadNoNamespace, Choose choose) {
  if (!kGenericNames.IsOn() || name.memory == nullptr) return nullptr;
  if (name.user == nullptr) {
    constexpr auto npos = std::string::npos;
    if (name.localName.find('\0') != npos || name.namespaceUri.find('\0') != npos) return nullptr;
    name.user = std::make_unique<NamesInTree>();
  }
  GenericNamesPtr& names = choose(static_cast<NamesInTree&>(*name.user));
  if (names == nullptr || !AreSame(names->rules, rules)) {
    GenericSize::CountNames(element, name);
    names = NewNames(name.localName, name.namespaceUri, rules, hadNoNamespace);
  }
  kGenericNames.Verify([&] {
    return names->name == name.localName && names->ns == name.namespaceUri && names->defaultNamespace.empty() &&
           names->hadNoNamespace == hadNoNamespace;
  });
  return names;
}

}  // namespace

CSmartPtr<GenericRules const> GenericNamesOf::Rules(std::string_view restriction, std::string_view target) {
  static auto const& anything = *new CSmartPtr<GenericRules const>(new GenericRules(std::string(kAnything), ""));
  if (restriction == kAnything && target.empty()) return anything;
  return new GenericRules(std::string(restriction), std::string(target));
}

GenericNamesPtr GenericNamesOf::Collections(GenericNamesPtr const& names) {
  if (names->rules->restriction == kAnything) return names;
  return NewNames("", names->ns, Rules(kAnything, names->rules->target), names->hadNoNamespace);
}

void GenericNamesOf::FindForElement(CXmlElement const& element, GenericRules const& rules, bool hadNoNamespace,
                                    GenericNamesPtr& names) {
  TreeName const& name = XmlNodeAccess::NameOf(element);
  auto const choose = [=](NamesInTree& held) -> GenericNamesPtr& { return held.forElements[hadNoNamespace ? 0 : 1]; };
  if (GenericNames const* const shared = Shared(element, name, &rules, hadNoNamespace, choose)) {
    if (shared != names) names = shared;
    return;
  }
  GenericSize::CountNames(element, name);
  names = NewNames(name.localName, name.namespaceUri, &rules, hadNoNamespace);
}

void GenericNamesOf::FindForAttribute(CXmlElement const& element, CXmlAttribute const& attribute,
                                      GenericNamesPtr& names) {
  TreeName const& name = XmlNodeAccess::NameOf(attribute);
  auto const choose = [](NamesInTree& held) -> GenericNamesPtr& { return held.forAttributes; };
  bool const hasNoNamespace = name.namespaceUri.empty();
  names = Shared(element, name, nullptr, hasNoNamespace, choose);
  if (names != nullptr) return;
  GenericSize::CountNames(element, name);
  names = NewNames(name.localName.c_str(), name.namespaceUri.c_str(), nullptr, hasNoNamespace);
}

GenericNames& GenericNamesOf::Own(GenericNamesPtr& names) {
  if (!names->HasOneOwner()) names = new GenericNames(*names);
  return const_cast<GenericNames&>(*names);
}

}  // namespace Quillon9
