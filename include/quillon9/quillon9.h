#pragma once

/// Includes everything that the library offers. This program reads a document and writes another one from it:
///
/// \code
/// #include <iostream>
///
/// #include "quillon9/quillon9.h"
///
/// int main() try {
///   Quillon9::CXmlDocument document;
///   document.LoadXml("<order xmlns='urn:shop'><item count='2'>ink</item><item count='1'>paper</item></order>");
///
///   Quillon9::CTextStream text;
///   Quillon9::CXmlTextWriter writer(text);
///   writer.SetFormat(false);
///   writer.Open();
///   writer.WriteStartElement("list", "");
///   for (Quillon9::CXmlElement const& item : document.GetDocumentElement()->Children("item", "urn:shop")) {
///     writer.WriteStartElement(item.GetText(), "");
///     writer.WriteString(item.GetAttribute("count", ""), Quillon9::ItemType_string);
///     writer.WriteEndElement();
///   }
///   writer.WriteEndElement();
///   writer.Close();
///   std::cout << text.GetText() << '\n';  // <list><ink>2</ink><paper>1</paper></list>
/// } catch (Quillon9::CQnException const& failure) {
///   std::cerr << failure.GetFullMessage() << '\n';
///   return 1;
/// }
/// \endcode
///
/// Most programs read into their own classes and write those instead; see generated_class.h.

#include "quillon9/base/critical_section.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/failures.h"
#include "quillon9/base/instance_monitor.h"
#include "quillon9/base/limits.h"
#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/collection.h"
#include "quillon9/binding/namespace_alias_map.h"
#include "quillon9/binding/node_iterator.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/binding/typed_collections.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/class_factory.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/descriptors/unknown_content.h"
#include "quillon9/export.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/fastinfoset/declaration.h"
#include "quillon9/fastinfoset/encoding_algorithms.h"
#include "quillon9/fastinfoset/vocabulary.h"
#include "quillon9/fastinfoset/writer.h"
#include "quillon9/fwd.h"
#include "quillon9/generated.h"
#include "quillon9/generated/any_element_col.h"
#include "quillon9/generated/bound_content.h"
#include "quillon9/generated/bound_object.h"
#include "quillon9/generated/class_tables.h"
#include "quillon9/generated/enum_col.h"
#include "quillon9/generated/id_index.h"
#include "quillon9/generated/object_col.h"
#include "quillon9/generated/property_ref.h"
#include "quillon9/generated/qualified_name.h"
#include "quillon9/generated/rows.h"
#include "quillon9/generated/value_element.h"
#include "quillon9/generated/xml_source.h"
#include "quillon9/records/record_reader.h"
#include "quillon9/records/record_source.h"
#include "quillon9/records/record_target.h"
#include "quillon9/records/record_writer.h"
#include "quillon9/text/encoder.h"
#include "quillon9/text/string_buffer.h"
#include "quillon9/text/text_encoding.h"
#include "quillon9/text/unicode.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/base64.h"
#include "quillon9/values/big_integer.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/date_time.h"
#include "quillon9/values/date_time_span.h"
#include "quillon9/values/decimal.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/values/pattern.h"
#include "quillon9/values/rare_part.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/schema_form.h"
#include "quillon9/values/schema_pattern.h"
#include "quillon9/values/schema_values.h"
#include "quillon9/values/value_rules.h"
#include "quillon9/values/variant.h"
#include "quillon9/version.h"
#include "quillon9/xmlio/compression.h"
#include "quillon9/xmlio/content_item.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/document_form.h"
#include "quillon9/xmlio/element.h"
#include "quillon9/xmlio/element_ranges.h"
#include "quillon9/xmlio/markup.h"
#include "quillon9/xmlio/output_options.h"
#include "quillon9/xmlio/schema_type.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "quillon9/xmlio/writer.h"
