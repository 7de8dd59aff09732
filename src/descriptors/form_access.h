#pragma once

#include "descriptors/object_form.h"
#include "quillon9/descriptors/generated_class.h"

namespace Quillon9 {

/// The only friend of the base of generated classes: the form that objects keep, and their start tags.
struct FormAccess {
  /// Null for none.
  static ObjectForm* Find(CXmlGeneratedClass const& object) { return object.m_form.get(); }
  static ObjectForm& ToChange(CXmlGeneratedClass& object) {
    if (object.m_form == nullptr) object.m_form.reset(new ObjectForm);
    return *object.m_form;
  }
  static void Drop(CXmlGeneratedClass& object) { object.m_form.reset(); }
  /// Start the element of \p object with its attributes; for a document element, what stands in front of it first.
  static void WriteStart(CXmlGeneratedClass const& object, CXmlWriter& writer, bool isRoot, char const* ns,
                         CXmlSerializationContext const& ctx) {
    object.WriteStart(&writer, isRoot, ns, ctx, false);
  }
};

}  // namespace Quillon9
