#include "binding/lost_text.h"

#include <cstddef>
#include <limits>

#include "binding/failure_report.h"
#include "quillon9/base/failures.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

namespace {

std::string TextFor(LostCharacter const& lost) {
  return FormatString(lost.isByte ? "The byte 0x%02X is not part of a character of the code page"
                                  : "The character U+%04X has no place in the code page",
                      static_cast<unsigned>(lost.code));
}

std::size_t MostRemarks(CXmlSerializationContext const& ctx) {
  return ctx.GetMaxFailures() != 0 ? ctx.GetMaxFailures() : std::numeric_limits<std::size_t>::max();
}

/// The names of the open elements, from the root.
std::string PathOf(CXmlWriter const& writer) {
  std::vector<CXmlWriter::CXmlWriterContext const*> open;
  for (auto const* at = XmlWriterAccess::OpenElement(writer); at != nullptr; at = at->m_parent) open.push_back(at);
  std::string path;
  for (auto at = open.rbegin(); at != open.rend(); ++at) {
    path += '/';
    std::string const* const prefix = (*at)->NeedsNoPrefix() ? nullptr : (*at)->FindPrefix((*at)->m_namespace);
    if (prefix != nullptr) path += *prefix + ':';
    path += (*at)->m_elementName;
  }
  return path;
}

}  // namespace

// ---- LossesOfReading

LossesOfReading::LossesOfReading(CXmlDocument const& document) : m_document(document) {
  LostCharacters::Observer* const observer = document.GetContext().GetFailureSink() != nullptr ? this : nullptr;
  m_scope.emplace(observer);
}

void LossesOfReading::OnLost(LostCharacter const& lost) {
  Loss const loss(m_document.GetOpenElement(), lost.code);
  if (m_losses.size() >= MostRemarks(m_document.GetContext()) || !m_known.insert(loss).second) return;
  m_losses.push_back(loss);
}

void LossesOfReading::Tell() {
  m_scope.reset();
  for (auto const& [element, character] : m_losses) {
    // Names and namespaces of the root come in front of it.
    FailurePoint const point{element != nullptr ? element : m_document.GetDocumentElement()};
    FailureReport::Remark(m_document.GetContext(), FailureKind_LostCharacter, point, TextFor({character, false, 0}));
  }
}

// ---- LossesOfWriting

LossesOfWriting::LossesOfWriting(CXmlSerializationContext const& ctx, CXmlWriter const* writer)
    : m_ctx(ctx), m_writer(writer) {
  LostCharacters::Observer* const observer = ctx.GetFailureSink() != nullptr ? this : nullptr;
  m_scope.emplace(observer);
}

void LossesOfWriting::OnLost(LostCharacter const& lost) {
  if (m_remarks.size() >= MostRemarks(m_ctx)) return;
  std::string const path = m_writer != nullptr ? PathOf(*m_writer) : std::string();
  if (!m_known.insert({path, lost.code}).second) return;
  CFailurePlace place;
  place.SetPath(path);
  m_remarks.emplace_back(FailureKind_LostCharacter, FailureSeverity_Remark, place, TextFor(lost));
}

void LossesOfWriting::Tell() {
  m_scope.reset();
  for (CFailure const& remark : m_remarks) m_ctx.GetFailureSink()->OnFailure(remark);
}

}  // namespace Quillon9
