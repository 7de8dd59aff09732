#pragma once

#include "quillon9/binding/object_base.h"
#include "quillon9/binding/serialization_context.h"
#include "text/utf8_text.h"

namespace Quillon9 {

/// How \p object holds its text in a read or write under \p ctx. For a Utf8Text::Scope around it, which also ends the
/// use of UTF-8 by an outer read or write.
inline Utf8Text::Use TextUse(CXmlObjectBase const& object, CXmlSerializationContext const& ctx) {
  if (object.HoldsUtf8Text()) return Utf8Text::Use::kCountingCharacters;
  return ctx.GetTextEncoding() == TextEncoding_UTF8 ? Utf8Text::Use::kYes : Utf8Text::Use::kNo;
}

}  // namespace Quillon9
