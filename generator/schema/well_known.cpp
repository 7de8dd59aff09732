#include "schema/well_known.h"

#include <algorithm>
#include <iterator>

#include "schema/node.h"
#include "schema/well_known_texts.h"

namespace Quillon9Generator::Schema {

namespace {

constexpr WellKnown kAll[] = {
    {kXmlNamespace, kText_xml, {"http://www.w3.org/2001/xml.xsd", "http://www.w3.org/2009/01/xml.xsd"}},
    {"http://www.w3.org/1999/xlink",
     kText_xlink,
     {"http://www.w3.org/1999/xlink.xsd", "http://www.w3.org/XML/2008/06/xlink.xsd"}},
    {"http://www.w3.org/2000/09/xmldsig#",
     kText_xmldsig,
     {"http://www.w3.org/TR/xmldsig-core/xmldsig-core-schema.xsd",
      "http://www.w3.org/TR/2002/REC-xmldsig-core-20020212/xmldsig-core-schema.xsd"}},
    {kSchemaNamespace, kText_XMLSchema, {"http://www.w3.org/2001/XMLSchema.xsd", "http://www.w3.org/2001/XMLSchema"}},
};

template <class Condition>
WellKnown const* Find(Condition condition) {
  auto const found = std::find_if(std::begin(kAll), std::end(kAll), condition);
  return found != std::end(kAll) ? found : nullptr;
}

}  // namespace

WellKnown const* FindWellKnown(std::string_view ns) {
  return Find([ns](WellKnown const& each) { return each.ns == ns; });
}

WellKnown const* FindWellKnownAt(std::string_view address) {
  return Find([address](WellKnown const& each) {
    return std::find(std::begin(each.addresses), std::end(each.addresses), address) != std::end(each.addresses);
  });
}

}  // namespace Quillon9Generator::Schema
