#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "records/record_stream.h"

namespace Quillon9 {

/// Records for a thread.
struct RecordWork {
  std::unique_ptr<RecordBatch> batch;
  std::size_t first = 0;     ///< of the batch
  std::size_t end = 0;       ///< of the batch: where the records stop
  std::uint64_t number = 0;  ///< of the work in the order of the document, from 0
};

/// Threads that work on batches. One thread adds the batches, and waits while there are enough of them.
class RecordWorkers {
 public:
  using Function = std::function<void(RecordWork const& work)>;

  /// Start \p count threads.
  /// \throws std::system_error if there are no resources for them.
  RecordWorkers(unsigned count, Function function);
  /// Let the threads finish the records at which they are.
  ~RecordWorkers() { StopAndJoin(); }
  RecordWorkers(RecordWorkers const&) = delete;
  RecordWorkers& operator=(RecordWorkers const&) = delete;

  /// Hand over the next records, those from \p first up to \p end of \p batch. False if a thread has failed, so that no more are needed.
  bool Add(std::unique_ptr<RecordBatch> batch, std::size_t first, std::size_t end);
  /// Wait until all work is done.
  /// \throws what the function threw first.
  void Finish();

  /// Whether there is no need to go on. Any thread.
  bool IsStopped() const { return m_isStopped; }
  /// Wait until the turns of the work in front of \p number have ended. False if there is no need to go on.
  bool WaitForTurn(std::uint64_t number);
  /// The work whose turn it is has been done.
  void EndTurn();

 private:
  void Run();
  bool Take(RecordWork& work);
  void Stop();
  void Fail(std::exception_ptr failure);
  void StopAndJoin();

  Function m_function;
  std::size_t m_most;  // that wait
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<RecordWork> m_waiting;
  std::uint64_t m_added = 0;
  std::uint64_t m_turn = 0;
  bool m_isFinished = false;  // no more work comes
  std::atomic<bool> m_isStopped{false};
  std::exception_ptr m_failure;
  std::vector<std::thread> m_threads;
};

}  // namespace Quillon9
