#include "xmlio/expat_version.h"

#include <tuple>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {

void RequireExpat(XML_Expat_Version version) {
  if (std::tie(version.major, version.minor, version.micro) >= std::make_tuple(2, 4, 5)) return;
  throw CQnException(FormatString("expat %d.%d.%d is too old; 2.4.5 or later is required", version.major, version.minor,
                                  version.micro));
}

}  // namespace Quillon9
