#include "binding/lost_text.h"

#include <cstdint>

#include "binding/check_walk.h"
#include "binding/failure_report.h"
#include "quillon9/base/failures.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/checking_writer.h"

namespace Quillon9 {

namespace {

CFailure Remark(std::string path, std::string const& text) {
  CFailurePlace place;
  place.SetPath(std::move(path));
  return {FailureKind_LostCharacter, FailureSeverity_Remark, std::move(place), text};
}

/// Collects what a walk over a graph finds, up to a limit.
class Finding final : public CheckReceiver {
 public:
  explicit Finding(std::uint64_t most) : m_most(most) {}

  bool OnFailure(CQnException& failure, CheckingWriter const& writer) override {
    if (failure.GetKind() != FailureKind_LostCharacter) return true;
    std::string path = writer.GetPath();
    // A name and a value may lose the same byte.
    bool const isNew = m_known.insert(path + '\n' + failure.GetMessage()).second;
    if (isNew) m_remarks.push_back(Remark(std::move(path), failure.GetMessage()));
    return m_remarks.size() < m_most;
  }
  std::vector<CFailure> const& GetRemarks() const { return m_remarks; }

 private:
  std::uint64_t m_most;
  std::vector<CFailure> m_remarks;
  std::set<std::string> m_known;
};

}  // namespace

// ---- LossesOfReading

LossesOfReading::LossesOfReading(CXmlDocument const& document) : m_document(document) {
  LostCharacters::Observer* const observer = document.GetContext().GetFailureSink() != nullptr ? this : nullptr;
  m_scope.emplace(observer);
}

void LossesOfReading::OnLost(LostCharacter const& lost) {
  Loss const loss(m_document.GetOpenElement(), lost.code);
  if (m_losses.size() >= MostFailures(m_document.GetContext()) || !m_known.insert(loss).second) return;
  m_losses.push_back(loss);
}

void LossesOfReading::Tell() {
  m_scope.reset();
  for (auto const& [element, character] : m_losses) {
    // Names and namespaces of the root come in front of it.
    FailurePoint const point{element != nullptr ? element : m_document.GetDocumentElement()};
    FailureReport::Remark(m_document.GetContext(), FailureKind_LostCharacter, point,
                          LostCharacter{character, false}.GetText());
  }
}

// ---- LossesOfWriting

LossesOfWriting::LossesOfWriting(CXmlSerializationContext const& ctx) : m_ctx(ctx) {
  LostCharacters::Observer* const observer = ctx.GetFailureSink() != nullptr ? this : nullptr;
  m_scope.emplace(observer);
}

// Characters are lost only in conversions that the program itself makes in the middle of a write.
void LossesOfWriting::OnLost(LostCharacter const& lost) {
  if (lost.isByte) m_bytes.insert(lost.code);
}

void LossesOfWriting::Tell(CXmlObjectBase const& object) {
  m_scope.reset();
  if (m_bytes.empty()) return;
  Finding finding(MostFailures(m_ctx));
  CheckWalk(object, m_ctx, CheckingWriter::Scope::kCharacters).SendTo(finding);
  std::vector<CFailure> remarks = finding.GetRemarks();
  if (remarks.empty()) {  // a class writes something else each time
    for (std::uint32_t const byte : m_bytes) remarks.push_back(Remark("", LostCharacter{byte, true}.GetText()));
  }
  for (CFailure const& remark : remarks) m_ctx.GetFailureSink()->OnFailure(remark);
}

}  // namespace Quillon9
