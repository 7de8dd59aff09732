#pragma once

#include <expat.h>

namespace Quillon9 {

/// Check that an expat of this version may parse input from outside. The limits that this library documents rely on
/// its bound on the expansion of entities, which came with 2.4.0, and on its checks of encodings and of separators in
/// namespace names, which came with 2.4.5.
/// \throws CQnException "expat %d.%d.%d is too old; 2.4.5 or later is required"
void RequireExpat(XML_Expat_Version version);

}  // namespace Quillon9
