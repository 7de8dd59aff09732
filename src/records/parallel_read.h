#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "quillon9/binding/serialization_context.h"
#include "quillon9/records/record_reader.h"
#include "records/record_stream.h"
#include "records/record_workers.h"

namespace Quillon9 {

/// What the threads of a parallel read do with batches.
class ParallelRead {
 public:
  /// How the records become objects, and what is done with them.
  struct Options {
    CXmlSerializationContext const& ctx;
    Utf8Text::Use use;
    RecordOrder order;
    detail::RecordMaker make;
    detail::RecordTask const& task;
    std::vector<bool> const& isRecord;  ///< one for each path; the other elements are passed over
  };

  /// Start \p threads threads.
  /// \throws std::system_error if there are no resources for them.
  ParallelRead(Options const& options, unsigned threads);

  RecordWorkers& Workers() { return m_workers; }

 private:
  void Do(RecordWork const& work);
  void DoInTurn(RecordWork const& work);
  template <class Action>
  void ForEach(RecordWork const& work, Action action);

  Options m_options;
  RecordWorkers m_workers;
};

}  // namespace Quillon9
