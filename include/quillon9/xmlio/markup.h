#pragma once

#include <cstddef>
#include <string>

namespace Quillon9 {

/// A comment or a processing instruction (XML 1.0, W3C, sections 2.5 and 2.6), and where it stands.
struct CMarkup {
  std::string target;  ///< of a processing instruction; empty for a comment
  std::string text;    ///< of a comment, or the data of a processing instruction
  /// How many of the children around it stand in front of it.
  std::size_t childrenInFront = 0;
  /// The size of the text of the element in front of it, in bytes. Counts where the text is mixed with children or is
  /// all that the element has.
  std::size_t textInFront = 0;

  /// Whether this is a comment.
  bool IsComment() const { return target.empty(); }
};

}  // namespace Quillon9
