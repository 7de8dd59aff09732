#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "schema/components.h"
#include "schema/validity/context.h"

namespace Quillon9Generator::Schema {

/// Decides whether each element of a document belongs to one particle of a content model that can be named without
/// looking ahead (https://www.w3.org/TR/xmlschema-1/#cos-nonambig).
class UniqueAttribution {
 public:
  explicit UniqueAttribution(ValidityContext& context) : m_context(context) {}

  struct Faults {
    std::string error;    ///< which element may belong to two particles; empty for none
    std::string warning;  ///< which one may belong to an element particle and a wildcard, as XML Schema 1.1 allows it
  };
  Faults Find(Particle const& content);

 private:
  /// Particles that an element may belong to at one point. Each particle has its own number.
  struct Set {
    struct Name {
      std::size_t name;
      std::size_t particle;
    };
    std::vector<Name> names;  // ascending by name
    std::vector<std::pair<Wildcard const*, std::size_t>> wildcards;
  };
  struct Model {
    bool nullable = true;
    Set first;   ///< what it may begin with
    Set follow;  ///< what may follow within it where it may end, too
  };

  Model ModelOf(Particle const& particle);
  Model ModelOfTerm(Particle const& particle);
  Model ModelOfElement(ElementDeclaration const& element);
  Model ModelOfGroup(ModelGroup const& group);
  void Append(Model& model, Model&& next);
  std::size_t NumberOf(QualifiedName const& name);
  void Check(Set const& a, Set const& b);
  void CheckWildcards(Set const& a, Set const& b);
  void Report(std::string const& subject);
  void Add(Set& set, Set const& more);

  ValidityContext& m_context;
  std::unordered_map<std::string, std::size_t> m_numbers;
  std::vector<QualifiedName const*> m_names;
  std::size_t m_particles = 0;
  Faults m_faults;
};

}  // namespace Quillon9Generator::Schema
