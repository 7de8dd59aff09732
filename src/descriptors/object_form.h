#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/descriptors/unknown_content.h"
#include "quillon9/xmlio/document_form.h"

namespace Quillon9 {

/// What an object keeps of the form of the document it was read from. Generated classes that derive from CBoundObject
/// use all of it, others only the unknown content and the form of the document.
struct ObjectForm {
  std::vector<int> members;  ///< of an all group, by their places in the group; empty for the order of the schema
  /// For each element of mixed content, the size of the text in front of it; further ones follow all text. Without a
  /// value, all elements stand in front of the text.
  std::optional<std::vector<std::size_t>> places = std::vector<std::size_t>();
  std::vector<std::pair<std::string, std::string>> prefixes;  ///< of the document, each with its URI
  std::unique_ptr<CUnknownContent> unknown;                   ///< null for none
  std::size_t textSize = 0;  ///< of the element that the unknown content is from; places in another text mean nothing
  std::unique_ptr<CDocumentForm> document;  ///< null for none
};

}  // namespace Quillon9
