#pragma once

#include <expat.h>

namespace Quillon9 {

/// Check that an expat of this version may parse external input. The limits that this library documents rely on expat's
/// bound on the expansion of entities, introduced in 2.4.0, and on its checks of encodings and of separators in
/// namespace names, introduced in 2.4.5.
/// \throws CQnException "expat %d.%d.%d is too old; 2.4.5 or later is required"
void RequireExpat(XML_Expat_Version version);

}  // namespace Quillon9
