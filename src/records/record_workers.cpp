#include "records/record_workers.h"

#include <utility>

namespace Quillon9 {

RecordWorkers::RecordWorkers(unsigned count, Function function)
    : m_function(std::move(function)), m_most(std::size_t{2} * count) {
  try {
    for (unsigned i = 0; i < count; ++i) m_threads.emplace_back([this] { Run(); });
  } catch (...) {
    StopAndJoin();
    throw;
  }
}

bool RecordWorkers::Add(std::unique_ptr<RecordBatch> batch, std::size_t first, std::size_t end) {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_changed.wait(lock, [this] { return m_isStopped || m_waiting.size() < m_most; });
  if (m_isStopped) return false;
  m_waiting.push_back({std::move(batch), first, end, m_added++});
  m_changed.notify_all();
  return true;
}

void RecordWorkers::Finish() {
  {
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_isFinished = true;
    m_changed.notify_all();
  }
  for (std::thread& thread : m_threads) thread.join();
  m_threads.clear();
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
}

bool RecordWorkers::WaitForTurn(std::uint64_t number) {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_changed.wait(lock, [&] { return m_isStopped || m_turn == number; });
  return !m_isStopped;
}

void RecordWorkers::EndTurn() {
  std::lock_guard<std::mutex> const lock(m_mutex);
  ++m_turn;
  m_changed.notify_all();
}

void RecordWorkers::Run() {
  for (RecordWork work; Take(work); work.batch.reset()) {
    try {
      m_function(work);
    } catch (...) {
      Fail(std::current_exception());
    }
  }
}

bool RecordWorkers::Take(RecordWork& work) {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_changed.wait(lock, [this] { return m_isStopped || m_isFinished || !m_waiting.empty(); });
  if (m_isStopped || m_waiting.empty()) return false;
  work = std::move(m_waiting.front());
  m_waiting.pop_front();
  m_changed.notify_all();
  return true;
}

void RecordWorkers::Fail(std::exception_ptr failure) {
  {
    std::lock_guard<std::mutex> const lock(m_mutex);
    if (m_failure == nullptr) m_failure = std::move(failure);
  }
  Stop();
}

void RecordWorkers::Stop() {
  std::lock_guard<std::mutex> const lock(m_mutex);
  m_isStopped = true;
  m_changed.notify_all();
}

void RecordWorkers::StopAndJoin() {
  Stop();
  for (std::thread& thread : m_threads) thread.join();
  m_threads.clear();
}

}  // namespace Quillon9
