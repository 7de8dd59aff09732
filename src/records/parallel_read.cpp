#include "records/parallel_read.h"

#include <exception>
#include <utility>

#include "records/present_record.h"

namespace Quillon9 {

ParallelRead::ParallelRead(Options const& options, unsigned threads)
    : m_options(options), m_workers(threads, [this](RecordWork const& work) { Do(work); }) {}

void ParallelRead::Do(RecordWork const& work) {
  if (m_options.order == RecordOrder_Document) return DoInTurn(work);
  ForEach(work, m_options.task);
}

// A failure waits for its turn, so that the one that is first in the document ends the read.
void ParallelRead::DoInTurn(RecordWork const& work) {
  std::vector<CSmartPtr<CXmlObjectBase>> objects;
  std::exception_ptr failure;
  try {
    ForEach(work, [&](CSmartPtr<CXmlObjectBase> object) { objects.push_back(std::move(object)); });
  } catch (...) {
    failure = std::current_exception();
  }
  if (!m_workers.WaitForTurn(work.number)) return;
  for (CSmartPtr<CXmlObjectBase>& object : objects) m_options.task(std::exchange(object, nullptr));
  if (failure != nullptr) std::rethrow_exception(failure);
  m_workers.EndTurn();
}

template <class Action>
void ParallelRead::ForEach(RecordWork const& work, Action action) {
  for (std::size_t i = work.first; i < work.end && !m_workers.IsStopped(); ++i) {
    if (!m_options.isRecord[work.batch->Selection(i)]) continue;
    action(PresentRecord(*work.batch, i, m_options.use).Read(m_options.make, m_options.ctx));
  }
}

}  // namespace Quillon9
