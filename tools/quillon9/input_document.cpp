#include "input_document.h"

#include <utility>

#include "failure.h"
#include "files.h"
#include "infoset_parser.h"
#include "utf8.h"

namespace Quillon9Tool {

using Quillon9::CBinaryData;
using Quillon9::CQnException;

InputDocument::InputDocument(std::string const& path, Progress* progress) {
  CBinaryData const bytes = ReadInput(path, progress);
  if (progress != nullptr) progress->Clear();
  Named(InputName(path), [&] {
    m_isFastInfoset = InfosetParser::Recognises(View(bytes));
    if (m_isFastInfoset) {
      PrepareForInfoset(View(bytes));
    } else {
      m_losses = FindLosses(View(bytes));
    }
    m_document.emplace(m_context);
    m_document->LoadXmlStream(bytes.GetData(), bytes.GetLength());
    for (auto const& alias : m_document->GetNamespaceAliases()) m_prefixes[alias.first] = alias.second;
  });
}

void InputDocument::PrepareForInfoset(std::string_view octets) {
  InfosetFindings findings = FindInInfoset(octets);
  m_losses = findings.losses;
  m_prefixes = std::move(findings.prefixes);
  if (findings.externalVocabulary) {
    throw CQnException("it cannot be read without the vocabulary " + Quoted(*findings.externalVocabulary));
  }
  if (!findings.vocabulary) return;
  m_context.GetFIContext()->GetVocabulary() = *findings.vocabulary;
  m_context.GetFIContext()->SetUseGeneratedVocabulary(true);
}

}  // namespace Quillon9Tool
