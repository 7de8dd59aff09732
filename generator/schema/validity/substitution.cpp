#include "schema/validity/substitution.h"

#include "schema/validity/derivation.h"

namespace Quillon9Generator::Schema {

std::vector<ElementDeclaration const*> const& Substitutions::Of(ElementDeclaration const& head) {
  auto const [entry, isNew] = m_known.try_emplace(&head);
  std::vector<ElementDeclaration const*>& all = entry->second;
  if (!isNew || (head.block & kSubstitution) != 0) return all;
  std::vector<ElementDeclaration const*> open = {&head};
  unsigned const excluded = head.block | (head.complexType != nullptr ? head.complexType->block : 0U);
  while (!open.empty()) {
    ElementDeclaration const* const element = open.back();
    open.pop_back();
    for (ElementDeclaration const* member : element->substitutes) {
      open.push_back(member);
      if (IsDerived(TypeOf(*member), TypeOf(head), excluded)) all.push_back(member);
    }
  }
  return all;
}

}  // namespace Quillon9Generator::Schema
