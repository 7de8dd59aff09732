#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "records/text_window.h"

namespace Quillon9 {

/// What a splitter must know to begin at a record in the middle of a document.
struct ResumePoint {
  /// An element around the record.
  struct Element {
    std::string startTag;      ///< as it is in the document, but of an element with content
    std::uint64_t number = 0;  ///< among its siblings of the same name, from 1; 0 if unknown
  };

  TextPosition at;     ///< of the record
  std::string prolog;  ///< the document type declaration, and an XML declaration if the document stands alone
  std::vector<Element> elements;
  std::string name;          ///< of the record
  std::uint64_t number = 0;  ///< of the record, as above

  /// As a word of ASCII characters without white space and quotation marks.
  std::string ToText() const;
  /// \throws CQnInvalidParamException "The text [%s] does not describe the place of a record" unless \p text is one of
  ///         ToText().
  static ResumePoint Of(std::string const& text);
  /// \throws CQnInvalidParamException "The text [%s] does not describe the place of a record", always.
  [[noreturn]] static void ThrowNoResumePoint(std::string const& text);
};

}  // namespace Quillon9
