#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "quillon9/xmlio/output_options.h"

namespace Quillon9 {

/// How a document spells an element that is empty.
enum EmptyElementForm : int {
  EmptyElementForm_Short = 0,  ///< `<a/>`
  EmptyElementForm_Blank = 1,  ///< `<a />`
  EmptyElementForm_Pair = 2,   ///< `<a></a>`
};

/// What a document looks like beyond its content: a read under CXmlSerializationContext::SetKeepForm() fills it in, and
/// a write under that option uses it, so that a document that is read and written shows few differences in a comparison
/// of lines. The program may change every member. A plain value: it belongs to one thread while it changes.
struct CDocumentForm {
  /// The XML declaration as it is spelled, from "<?xml" to "?>" (XML 1.0, W3C, section 2.8); empty for none. Written
  /// literally, except that the name of another encoding than that of the output is replaced. Fast Infoset uses the
  /// version and `standalone`.
  std::string declaration;
  /// The document type declaration as it is spelled, written literally in front of the document element; empty for
  /// none. A read keeps only one without declarations of its own in brackets, since their entities have been replaced.
  std::string documentType;
  /// The values of xsi:schemaLocation and xsi:noNamespaceSchemaLocation of the document element.
  ///@{
  std::optional<std::string> schemaLocation;
  std::optional<std::string> noNamespaceSchemaLocation;
  ///@}
  /// The default namespace of the document element, whose elements are written without a prefix; empty for none. Not
  /// used where the context has a default namespace of its own or a prefix for this one, or where a name in a value
  /// cannot be written because of it. Fast Infoset does not use it.
  std::string defaultNamespace;

  /// Whether the members below are known: true after a read of text. Otherwise, as after a read of Fast Infoset, the
  /// arguments of the writing operation decide.
  bool hasLayout = false;
  EOLType lineEnd = EOLType_LF;  ///< the first one of the document
  bool isFormatted = true;       ///< whether elements are on lines of their own; false if all are on one line
  char indentCharacter = '\t';   ///< of one level: a tab or a blank
  std::uint8_t indentWidth = 1;  ///< how many of these a level has
  std::uint8_t flatLevels = 0;   ///< how many levels inside the document element are not indented
  bool hasPlainQuotes = false;   ///< whether double quotes in text are written as they are
  EmptyElementForm emptyElements = EmptyElementForm_Short;  ///< the most frequent one at the start of the document
  bool hasByteOrderMark = false;                            ///< of UTF-8; only bytes are written with one
  bool hasFinalLineEnd = true;                              ///< whether the document ends with a line end

  /// What stands around the document element, as the document spells it with line feeds as line ends. A write takes the
  /// white space from here if the comments and processing instructions are those that it writes anyway. Empty where the
  /// document has none, or more than 64 KiB.
  ///@{
  std::string prolog;  ///< from the end of the XML declaration to the document element
  std::string epilog;
  ///@}
  /// Start tags as the document spells them: that of the document element, then of each other name in the first 64 KiB
  /// the first one that has attributes, and the later ones that have further attributes. A write takes the order of
  /// attributes, the white space between them and their quotes from here, the spelling of values that are the same, and
  /// declarations of prefixes of the document element.
  std::vector<std::string> startTags;
};

}  // namespace Quillon9
