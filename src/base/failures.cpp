#include "quillon9/base/failures.h"

#include <string_view>
#include <utility>

#include "base/bounded_text.h"

namespace Quillon9 {

// ---- CFailurePlace

CFailurePlace::CFailurePlace() = default;
CFailurePlace::CFailurePlace(CFailurePlace const& other) = default;
CFailurePlace::CFailurePlace(CFailurePlace&& other) noexcept = default;
CFailurePlace& CFailurePlace::operator=(CFailurePlace const& other) = default;
CFailurePlace& CFailurePlace::operator=(CFailurePlace&& other) noexcept = default;
CFailurePlace::~CFailurePlace() = default;

void CFailurePlace::SetPath(std::string path) { m_path = BoundedText::CutMiddle(std::move(path)); }
void CFailurePlace::SetFile(std::string file) { m_file = std::move(file); }

// ---- CFailure

CFailure::CFailure(FailureKind kind, FailureSeverity severity, CFailurePlace place, std::string const& text)
    : m_kind(kind), m_severity(severity), m_place(std::move(place)), m_text(BoundedText::CutEnd(text)) {}
CFailure::CFailure(CFailure const& other) = default;
CFailure::CFailure(CFailure&& other) noexcept = default;
CFailure& CFailure::operator=(CFailure const& other) = default;
CFailure& CFailure::operator=(CFailure&& other) noexcept = default;
CFailure::~CFailure() = default;

std::string CFailure::GetReport() const {
  constexpr std::size_t kMostShown = 1024;
  std::string report = BoundedText::Escape(m_place.GetFile());
  if (!report.empty()) report += ':';
  if (m_place.GetLine() != 0) {
    report += std::to_string(m_place.GetLine()) + ':' + std::to_string(m_place.GetColumn()) + ':';
  } else if (m_place.GetOffset() >= 0) {
    report += '@' + std::to_string(m_place.GetOffset()) + ':';
  }
  if (!report.empty()) report += ' ';
  report += m_severity == FailureSeverity_Remark ? "remark: " : "error: ";
  if (!m_place.GetPath().empty()) report += BoundedText::Escape(m_place.GetPath()) + ": ";
  return report + BoundedText::Escape(BoundedText::CutEnd(m_text, kMostShown));
}

// ---- CFailureList

CFailureList::CFailureList(std::size_t most) : m_most(most) {}
CFailureList::~CFailureList() = default;

bool CFailureList::OnFailure(CFailure const& failure) {
  bool const isError = failure.GetSeverity() == FailureSeverity_Error;
  std::size_t& count = isError ? m_errors : m_remarks;
  if (count < m_most) m_failures.push_back(failure);
  ++count;
  return !isError || m_errors < m_most;
}

std::string CFailureList::GetReport() const {
  std::string report;
  for (CFailure const& failure : m_failures) report += failure.GetReport() + '\n';
  return report;
}

void CFailureList::Clear() {
  m_failures.clear();
  m_errors = 0;
  m_remarks = 0;
}

}  // namespace Quillon9
