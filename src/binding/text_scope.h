#pragma once

#include "quillon9/binding/object_base.h"
#include "quillon9/binding/serialization_context.h"
#include "text/utf8_text.h"
#include "values/rules_in_use.h"

namespace Quillon9 {

/// How \p object holds its text in a read or write under \p ctx. It also ends the use of
/// UTF-8 by an outer read or write.
inline Utf8Text::Use TextUse(CXmlObjectBase const& object, CXmlSerializationContext const& ctx) {
  if (object.HoldsUtf8Text()) return Utf8Text::Use::kCountingCharacters;
  return ctx.GetTextEncoding() == TextEncoding_UTF8 ? Utf8Text::Use::kYes : Utf8Text::Use::kNo;
}

/// The rules of values in a read or write of \p object under \p ctx.
inline ValueRules RulesFor(CXmlObjectBase const& object, CXmlSerializationContext const& ctx) {
  return ctx.HasValueRules() ? ctx.GetValueRules() : object.GetDefaultValueRules();
}

/// Holds for the time of one read, write or check of an object: how its text is held, and the rules of its values.
class TextScope {
 public:
  TextScope(CXmlObjectBase const& object, CXmlSerializationContext const& ctx)
      : m_use(TextUse(object, ctx)), m_rules(RulesFor(object, ctx)) {}

 private:
  Utf8Text::Scope m_use;
  RulesInUse::Scope m_rules;
};

}  // namespace Quillon9
