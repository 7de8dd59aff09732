#pragma once

#include <deque>
#include <string>
#include <vector>

#include "schema/components.h"
#include "schema/validity/context.h"

namespace Quillon9Generator::Schema {

/// Decides whether one content model restricts another
/// (https://www.w3.org/TR/xmlschema-1/#cos-particle-restrict).
class ParticleRestriction {
 public:
  explicit ParticleRestriction(ValidityContext& context) : m_context(context) {}

  /// Return why \p narrow does not restrict \p wide; an empty text if it does.
  std::string Fault(Particle const& narrow, Particle const& wide);

 private:
  /// A particle without the groups that have no effect, and with a choice in place of the head of a substitution group.
  struct Range {
    long min = 0;
    long max = 0;
  };
  struct Part {
    enum class Kind { Element, Wildcard, Sequence, Choice, All };
    Kind kind = Kind::Sequence;
    int min = 1;
    int max = 1;
    ElementDeclaration const* element = nullptr;
    Wildcard const* wildcard = nullptr;
    std::vector<Part const*> parts;
    Place place;
    Range total;  ///< how many elements it may have
  };

  Part const* Simplified(Particle const& particle, Part::Kind const* parent);
  Part const* SimplifiedElement(Part part, ElementDeclaration const& element);
  Part const* Keep(Part part);
  void AddParts(Part& part, ModelGroup const& group);

  bool Restricts(Part const& narrow, Part const& wide, bool checksCounts = true);
  bool ElementRestricts(Part const& narrow, Part const& wide);
  bool GroupRestricts(Part const& narrow, Part const& wide);
  bool RepeatsElement(Part const& narrow, Part const& wide);
  bool IsNarrowerElement(Part const& narrow, Part const& wide);
  bool Recurse(Part const& narrow, Part const& wide, bool isLax);
  bool RecurseUnordered(Part const& narrow, Part const& wide);
  bool MapAndSum(Part const& narrow, Part const& wide);
  bool FitsWildcard(Part const& narrow, Part const& wide);

  static Range TotalOf(Part const& part);
  static bool IsWithin(long min, long max, Part const& wide);
  static std::string Described(Part const& part);
  bool Fail(std::string fault);

  ValidityContext& m_context;
  std::deque<Part> m_parts;
  std::string m_fault;  // the first one
};

}  // namespace Quillon9Generator::Schema
