#pragma once

#include <vector>

#include "generated/content.h"

namespace Quillon9 {

/// Read the children of \p parent from \p cursor on into \p holder, whose content is the sequence \p content, and go on
/// after failures as far as the sink of \p ctx says so. Returns the first child that was not taken, which is null unless
/// \p holder has no tag.
///
/// Every child that nothing may take where it stands is one failure, and is skipped or read by the member that still
/// lacks it. A missing particle is one failure. The first failure of an element is the one that a read without a sink
/// throws.
CXmlElement* ReadContent(std::vector<Particle> const& content, CXmlGeneratedClass& holder, CXmlElement* parent,
                         CXmlElement* cursor, CXmlSerializationContext const& ctx);

}  // namespace Quillon9
