#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "quillon9/xmlio/element.h"
#include "schema/components.h"

namespace SchemaTests {

using namespace Quillon9Generator;

Schema::QualifiedName NameOf(Quillon9::CXmlElement const& element);

/// Whether the namespace \p ns is one of those that \p wildcard allows.
bool Allows(Schema::Wildcard const& wildcard, std::string const& ns);

/// What stands for an element in the content of a type: one of the two, or neither if there is nothing.
struct Taker {
  Schema::ElementDeclaration const* element = nullptr;
  Schema::Wildcard const* wildcard = nullptr;
};

/// Return what in \p particle takes an element of this name.
Taker TakerOf(Schema::Particle const& particle, Schema::QualifiedName const& name);

/// Decides whether the children of an element stand as a particle demands. Simple, and slow where much repeats.
class ContentMatch {
 public:
  explicit ContentMatch(Quillon9::CXmlElement const& parent);
  bool Fits(Schema::Particle const& particle) const;

 private:
  using Positions = std::set<std::size_t>;

  /// Return where a match can end that begins at one of \p starts.
  Positions After(Schema::Particle const& particle, Positions const& starts) const;
  Positions AfterTerm(Schema::Particle const& particle, Positions const& starts) const;
  Positions AfterGroup(Schema::ModelGroup const& group, Positions const& starts) const;
  Positions AfterAll(Schema::ModelGroup const& group, Positions const& starts) const;

  std::vector<Schema::QualifiedName> m_names;
};

}  // namespace SchemaTests
