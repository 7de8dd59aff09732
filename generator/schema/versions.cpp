#include "schema/versions.h"

#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/values/decimal.h"

namespace Quillon9Generator::Schema {

namespace {

constexpr std::string_view kVersioningNamespace = "http://www.w3.org/2007/XMLSchema-versioning";

bool Excludes(NodeAttribute const& condition, Node const& node, Diagnostics& diagnostics) {
  bool const isMinimum = condition.name == "minVersion";
  if (!isMinimum && condition.name != "maxVersion") {
    diagnostics.Warning(node.place, "the attribute \"vc:" + std::string(condition.name) + "\" is not evaluated");
    return false;
  }
  Quillon9::CDecimal const version(std::string(condition.value).c_str());
  return isMinimum ? version > Quillon9::CDecimal(1) : version <= Quillon9::CDecimal(1);
}

}  // namespace

bool IsForThisVersion(Node const& node, Diagnostics& diagnostics) {
  for (NodeAttribute const& attribute : node.attributes) {
    if (attribute.ns != kVersioningNamespace) continue;
    try {
      if (!Excludes(attribute, node, diagnostics)) continue;
      diagnostics.Warning(node.place, "xs:" + std::string(node.name) +
                                          " is left out, since it is for another version of XML Schema than 1.0");
      return false;
    } catch (Quillon9::CQnException const&) {
      diagnostics.Warning(node.place, "the attribute \"vc:" + std::string(attribute.name) +
                                          "\" is not evaluated, since its value is not a version");
    }
  }
  return true;
}

}  // namespace Quillon9Generator::Schema
