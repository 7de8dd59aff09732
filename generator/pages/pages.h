#pragma once

#include <string>
#include <vector>

#include "schema/components.h"

/// The documentation of a set of schemas as HTML that needs nothing else: no script, no image, no other file.
namespace Quillon9Generator::Pages {

struct Page {
  std::string path;     ///< relative to the folder of all pages
  std::string content;  ///< UTF-8
};

/// An index, and a page for each namespace; that of a namespace with many components is a table of contents, and its
/// entries are on pages by the first letter of their names. Each global element, attribute, type and group has an
/// entry with its documentation, its content, and what refers to it. All texts of the schemas are escaped. The same
/// set gives the same octets.
std::vector<Page> Write(Schema::SchemaSet const& set);

}  // namespace Quillon9Generator::Pages
