#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "binding/failure_report.h"
#include "quillon9/base/failures.h"
#include "quillon9/fwd.h"
#include "xmlio/document_outline.h"

namespace Quillon9 {

/// What the input of a document means to the caller of a read.
enum class InputForm {
  kBytes,
  kWideText,  ///< the input is a copy in UTF-16, and offsets count the bytes of the caller's text
  kUnseen,    ///< the caller does not know the input, so places have only a path
};

/// Finds places by reading the input a second time when the first one is asked for. Until then it costs nothing, and
/// each further place costs time in proportion to its depth.
class DocumentPlaces final : public PlaceFinder {
 public:
  /// The nodes of \p document, which may be loaded later. \p file is the path of the file that it is loaded from, or
  /// null. Both are borrowed.
  DocumentPlaces(CXmlDocument const& document, InputForm form, char const* file = nullptr);
  /// The nodes below \p root, whose places have only a path from there.
  explicit DocumentPlaces(CXmlElement const* root);
  ~DocumentPlaces();

  CFailurePlace Find(FailurePoint const& point) override;
  bool HasPositionsOf(CXmlElement const* element) override;

 private:
  struct Found;

  CXmlElement const* Root() const;
  Found& Prepare();
  void AddAttribute(CFailurePlace& place, std::string& path, FailurePoint const& point, std::uint32_t element);

  CXmlDocument const* m_document = nullptr;
  CXmlElement const* m_root = nullptr;
  InputForm m_form = InputForm::kUnseen;
  char const* m_file = nullptr;
  std::unique_ptr<Found> m_found;
};

/// The place \p at of a failure that ended the load of \p document from \p file, or null. Its path is that of the
/// innermost element that is open there.
CFailurePlace PlaceInText(CXmlDocument const& document, InputPosition const& at, InputForm form, char const* file);

/// The same for Fast Infoset, whose reader has stopped at \p offset.
CFailurePlace PlaceInInfoset(CXmlDocument const& document, std::size_t offset, char const* file);

}  // namespace Quillon9
