#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "binding/failure_report.h"
#include "quillon9/base/failures.h"
#include "quillon9/fwd.h"
#include "records/resume_point.h"
#include "text/utf8_text.h"

namespace Quillon9 {

/// What a stream of records reads, and how it cuts it.
struct RecordLimits {
  std::size_t batchSize = 0x10000;  ///< bytes of records that are loaded together
  std::size_t mostRecord = std::size_t{256} << 20;
  std::optional<ResumePoint> start;                               ///< where the input begins; none for the document
  std::uint64_t end = std::numeric_limits<std::uint64_t>::max();  ///< records that begin here or later are not read
};

/// Some records in a row. One thread at a time uses a batch, which need not be the one that took it from its stream.
class RecordBatch {
 public:
  virtual ~RecordBatch();

  virtual std::size_t Size() const = 0;
  /// Which of the paths selects \p record.
  virtual std::size_t Selection(std::size_t record) const = 0;
  /// Where \p record begins.
  virtual CFailurePlace Place(std::size_t record) const = 0;
  /// A text with which another read can begin at \p record.
  /// \throws CQnInvalidStateException "A read can begin in the middle of uncompressed text in UTF-8 only".
  virtual std::string ResumePointOf(std::size_t record) const = 0;
  /// The tree of \p record, with text that is held as \p use says. It lives until the next call. It is quickest to ask
  /// for one record after the other.
  /// \throws CQnException for a record that cannot be loaded.
  virtual CXmlElement const* Load(std::size_t record, Utf8Text::Use use) = 0;
  /// The elements around the record that was loaded last, from the root on.
  virtual std::vector<CXmlElement const*> Ancestors() const = 0;
  /// Whether a document that is not well-formed was the reason why the last Load() threw, so that there are no more
  /// records.
  virtual bool IsAtEnd() const = 0;
  /// Finds the places of the nodes of the tree that was loaded last.
  virtual PlaceFinder& Places() = 0;
};

/// The selected elements of a document.
class RecordStream {
 public:
  virtual ~RecordStream();

  /// The next records; null at the end. \p use is how the text of most of them will be asked for.
  /// \throws CQnException for a document that is not well-formed, after the records in front of the fault: then there
  ///         are no more.
  virtual std::unique_ptr<RecordBatch> Next(Utf8Text::Use use) = 0;
};

}  // namespace Quillon9
