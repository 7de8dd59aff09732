#pragma once

#include "quillon9/descriptors/element_info.h"

// The heads of the three operations that every element descriptor implements, so that a definition shows only what the
// member does and related members can be compared line by line. Their arguments are `ctx`, `holder`, `writer`; `ctx`,
// `holder`, `parent`, `cursor`, `holderNamespace`, `holderType`; and `found`, `required`.

#define QN_ELEMENT_TO_XML(Member)                                                                                   \
  bool Member::ElementToXml([[maybe_unused]] CXmlSerializationContext const& ctx,                                   \
                            [[maybe_unused]] CXmlGeneratedClass const* holder, [[maybe_unused]] CXmlWriter* writer) \
      const

#define QN_ELEMENT_FROM_XML(Member)                                                                                \
  bool Member::ElementFromXml([[maybe_unused]] CXmlSerializationContext const& ctx,                                \
                              [[maybe_unused]] CXmlGeneratedClass* holder, [[maybe_unused]] CXmlElement* parent,   \
                              [[maybe_unused]] CXmlElement** cursor, [[maybe_unused]] char const* holderNamespace, \
                              [[maybe_unused]] XmlElementType holderType)

#define QN_VALIDATE(Member)                                                                                      \
  bool Member::Validate(CXmlSerializationContext const&, CXmlGeneratedClass const*, [[maybe_unused]] bool found, \
                        [[maybe_unused]] bool required) const
