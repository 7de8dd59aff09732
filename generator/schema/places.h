#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Quillon9Generator::Schema {

/// The place of a start tag, from 1.
struct TagPlace {
  int line;
  int column;  ///< in characters
};

/// Why a text is not well-formed.
struct MalformedText {
  TagPlace place;
  std::string reason;
};

/// What a pass over the text of a document finds that the library's tree does not keep.
struct TagPlaces {
  std::vector<TagPlace> places;  ///< of all start tags in document order
  /// The texts of the elements called documentation that have child elements, theirs included, by the number of the
  /// start tag from 0. None for an encoding that expat does not know.
  std::map<std::size_t, std::string> documentation;
  std::optional<MalformedText> malformed;
};

/// Find the places of all start tags in \p xml. A start tag from an entity has the place of the reference.
TagPlaces FindTags(std::string_view xml);

}  // namespace Quillon9Generator::Schema
