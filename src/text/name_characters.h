#pragma once

#include <cstdint>

namespace Quillon9 {

/// The characters of names beyond ASCII in XML 1.0 up to its fourth edition (W3C), appendix B, which is the edition
/// that expat implements: the fifth one allows more.
namespace NameCharacters {

/// Whether a name may begin with \p character: BaseChar and Ideographic.
bool IsStart(std::uint32_t character);
/// Whether \p character may follow in a name: also CombiningChar, Digit and Extender.
bool IsPart(std::uint32_t character);

}  // namespace NameCharacters

}  // namespace Quillon9
