#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "binding/failure_report.h"
#include "quillon9/base/failures.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/fwd.h"
#include "text/utf8_text.h"

namespace Quillon9 {

/// The selected elements of a document as trees, one after the other.
class RecordStream {
 public:
  virtual ~RecordStream();

  /// Go to the next element, whose text is held as \p use says; false at the end.
  /// \throws CQnException for an element that cannot be loaded; the next call goes on with the one after it, unless the
  ///         document is not well-formed: then every call throws that failure.
  virtual bool Next(Utf8Text::Use use) = 0;

  /// \name The present element, between two calls of Next()
  /// @{
  /// Its tree; null if it could not be loaded. With another use of text, it may be another tree.
  virtual CXmlElement const* Element(Utf8Text::Use use) = 0;
  /// Which of the paths selects it.
  virtual std::size_t Selection() const = 0;
  /// Where it begins.
  virtual CFailurePlace Place() const = 0;
  /// Finds the places of its nodes.
  virtual PlaceFinder& Places() = 0;
  /// @}
};

}  // namespace Quillon9
