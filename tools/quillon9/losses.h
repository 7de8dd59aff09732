#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// What a document contains and the library's tree of it does not.
struct Losses {
  std::size_t comments = 0;
  std::size_t processingInstructions = 0;
  std::size_t documentTypes = 0;
  std::size_t entityReferences = 0;  ///< not replaced by their text
  std::size_t declarations = 0;      ///< of notations and unparsed entities, and additional data
  std::size_t floats = 0;            ///< values that the library reads differently
};

/// Find the losses in XML text.
Losses FindLosses(std::string_view xml);

/// What must be known about a Fast Infoset document before the library reads it.
struct InfosetFindings {
  Losses losses;
  /// The document's own vocabulary, which the library ignores unless it is given to it.
  std::optional<Quillon9::CFIVocabulary> vocabulary;
  /// The URI of an external vocabulary, which the document relies on.
  std::optional<std::string> externalVocabulary;
  /// The prefixes of the names, each with its first namespace. They need not be declared.
  std::map<std::string, std::string> prefixes;
};

/// Collect the findings as far as the document is well-formed.
InfosetFindings FindInInfoset(std::string_view octets);

}  // namespace Quillon9Tool
