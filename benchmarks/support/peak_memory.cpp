#include "support/peak_memory.h"

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

namespace Benchmarks {

namespace {

/// One line of /proc/self/status, in bytes: VmRSS is the present resident size, VmHWM its peak.
std::uint64_t StatusBytes(std::string const& name) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    std::uint64_t kibibytes = 0;
    if (word == name + ":" && status >> kibibytes) return kibibytes * 1024;
  }
  throw std::runtime_error("/proc/self/status does not tell " + name);
}

/// Restart the system's peak from the present resident size.
void ResetPeak() {
  malloc_trim(0);
  std::ofstream file("/proc/self/clear_refs");
  file << 5 << std::flush;
  if (!file) throw std::runtime_error("/proc/self/clear_refs does not reset the peak");
}

[[noreturn]] void RunChild(std::function<void(MemoryProbe&)> const& work, int result) {
  int status = 1;
  try {
    MemoryProbe probe;
    work(probe);
    std::uint64_t const peak = probe.Peak();
    if (write(result, &peak, sizeof peak) == sizeof peak) status = 0;
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "memory not measured: %s\n", failure.what());
  }
  _exit(status);
}

}  // namespace

void MemoryProbe::Begin() {
  ResetPeak();
  m_atBegin = StatusBytes("VmRSS");
}

void MemoryProbe::ForgetPeak() { ResetPeak(); }

std::uint64_t MemoryProbe::Peak() const {
  std::uint64_t const peak = StatusBytes("VmHWM");
  return peak > m_atBegin ? peak - m_atBegin : 0;
}

std::optional<std::uint64_t> PeakMemoryOf(std::function<void(MemoryProbe&)> const& work) {
  int ends[2];
  if (pipe(ends) != 0) return std::nullopt;
  std::fflush(nullptr);
  pid_t const child = fork();
  if (child == 0) {
    close(ends[0]);
    RunChild(work, ends[1]);
  }
  close(ends[1]);
  std::uint64_t peak = 0;
  bool const told = child > 0 && read(ends[0], &peak, sizeof peak) == sizeof peak;
  close(ends[0]);
  if (child > 0) waitpid(child, nullptr, 0);
  return told ? std::optional(peak) : std::nullopt;
}

}  // namespace Benchmarks
