#include "xmlio/form_writer.h"

#include <vector>

#include "quillon9/xmlio/streams.h"
#include "xmlio/form_scan.h"
#include "xmlio/start_tag.h"

namespace Quillon9 {

namespace {

constexpr std::string_view kDocumentTypeStart = "<!DOCTYPE";

bool IsDocumentType(std::string_view markup) {
  return markup.substr(0, kDocumentTypeStart.size()) == kDocumentTypeStart;
}

bool IsIgnoringReturns(std::string_view one, std::string_view other) {
  auto const without = [](std::string_view text) {
    std::string kept;
    for (char const c : text) {
      if (c != '\r') kept += c;
    }
    return kept;
  };
  return without(one) == without(other);
}

/// Whether \p spelled has the markup of \p written, besides a document type declaration.
bool HaveSameMarkup(std::string_view written, std::string_view spelled) {
  std::vector<std::string_view> ours;
  std::vector<std::string_view> theirs;
  if (!FormScan::SplitMarkup(written, ours) || !FormScan::SplitMarkup(spelled, theirs)) return false;
  auto next = ours.begin();
  for (std::string_view const piece : theirs) {
    if (IsDocumentType(piece)) continue;
    if (next == ours.end() || !IsIgnoringReturns(*next++, piece)) return false;
  }
  return next == ours.end();
}

/// \p prolog with \p documentType in place of the one that it has, if any.
std::string WithDocumentType(std::string prolog, std::string const& documentType) {
  std::vector<std::string_view> pieces;
  static_cast<void>(FormScan::SplitMarkup(prolog, pieces));
  for (std::string_view const piece : pieces) {
    if (!IsDocumentType(piece)) continue;
    auto const start = static_cast<std::size_t>(piece.data() - prolog.data());
    std::size_t const lineEnd = documentType.empty() && start > 0 && prolog[start - 1] == '\n' ? 1 : 0;
    return prolog.replace(start - lineEnd, piece.size() + lineEnd, documentType);
  }
  return documentType.empty() ? prolog : prolog + documentType + '\n';
}

}  // namespace

FormWriter::FormWriter(CTextStream& stream, CDocumentForm const& form, bool usesDefault)
    : CXmlTextWriter(stream), m_stream(stream), m_form(form) {
  if (usesDefault) SetDefaultNamespace(form.defaultNamespace);
  SetPlainQuotes(form.hasPlainQuotes);
}

/// Done when the line end is known.
void FormWriter::TakeModels() {
  for (std::string const& spelled : m_form.startTags) m_spelled.push_back(WithLineEnds(spelled));
  for (std::string const& spelled : m_spelled) {
    StartTag const tag(spelled);
    if (!tag.IsRight()) continue;
    auto const known = m_models.emplace(tag.Name(), tag);
    if (!known.second) known.first->second.Learn(tag);
  }
}

void FormWriter::WriteHeader(bool isWanted, std::string_view name) {
  TakeModels();
  if (!m_form.declaration.empty()) {
    m_stream.Append(WithLineEnds(FormScan::WithEncoding(m_form.declaration, name)));
    m_headerEnd = m_stream.GetLength();
    m_stream.Append(std::string(LineEnd()));
  } else if (!m_form.hasLayout && isWanted) {
    WriteStartDocument();
    m_headerEnd = m_stream.GetLength();
  }
}

void FormWriter::WriteStartElement(std::string const& localName, std::string const& namespaceUri) {
  bool const isRoot = m_context == nullptr;
  if (isRoot && namespaceUri.empty()) SetDefaultNamespace("");
  CXmlTextWriter::WriteStartElement(localName, namespaceUri);
  m_tags.push_back(m_stream.GetLength());  // what stands in front of the element may have been written just now
  if (!namespaceUri.empty() || m_context->GetDefaultNamespace().empty()) return;
  m_context->SetDefaultNamespace("");
  m_stream.Append(" xmlns=\"\"");
}

void FormWriter::WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) {
  bool const hasDefault = m_context != nullptr && !m_context->GetDefaultNamespace().empty();
  m_isInDefault |= namespaceUri.empty() && hasDefault;
  CXmlTextWriter::WriteAttributeType(namespaceUri, typeName, type);
}

void FormWriter::WriteEndElement() {
  bool const isEmpty = m_form.hasLayout && m_context != nullptr && m_context->m_tagOpen;
  if (isEmpty && m_form.emptyElements == EmptyElementForm_Blank) m_stream.Append(' ');
  if (isEmpty && m_form.emptyElements == EmptyElementForm_Pair) {
    m_stream.Append('>');
    m_context->m_tagOpen = false;
  }
  bool const isRoot = m_context != nullptr && m_context->m_depth == 0;
  CXmlTextWriter::WriteEndElement();
  if (isRoot) m_rootEnd = m_stream.GetLength() - (GetFormat() ? LineEnd().size() : 0);
}

std::string FormWriter::WithLineEnds(std::string_view text) const {
  std::string lines;
  for (char const c : text) {
    if (c == '\n') {
      lines += LineEnd();
    } else {
      lines += c;
    }
  }
  return lines;
}

std::string FormWriter::FormedProlog(std::string_view written) const {
  if (m_form.hasLayout && HaveSameMarkup(written, m_form.prolog)) {
    return WithLineEnds(WithDocumentType(m_form.prolog, m_form.documentType));
  }
  std::string prolog(written);
  if (!m_form.documentType.empty()) prolog += WithLineEnds(m_form.documentType + '\n');
  return prolog;
}

/// \p written is all that was written, up to the end of the document element, which begins at \p root.
std::string FormWriter::FormedTags(std::string_view written, std::size_t root) const {
  std::string formed;
  std::size_t done = root;
  for (std::size_t const inside : m_tags) {
    std::size_t const start = written.rfind('<', inside - 1);
    std::size_t const end = start != std::string_view::npos ? FormScan::FindTagEnd(written, start) : start;
    if (end == std::string_view::npos || start < done) break;
    formed += written.substr(done, start - done);
    formed += FormedTag(written.substr(start, end - start), start == root);
    done = end;
  }
  return formed.append(written.substr(done));
}

/// Declarations are added only where the document element cannot have them for something else.
std::string FormWriter::FormedTag(std::string_view written, bool isRoot) const {
  StartTag const tag(written);
  if (!tag.IsRight()) return std::string(written);
  if (isRoot && !m_spelled.empty()) {
    StartTag const root(m_spelled.front());
    if (root.IsRight()) return tag.Like(root, StartTag::Declarations::kAll);
  }
  auto const model = m_models.find(tag.Name());
  bool const isModelled = model != m_models.end() && tag.HasAttributes();
  return isModelled ? tag.Like(model->second, StartTag::Declarations::kOwn) : std::string(written);
}

std::string FormWriter::FormedText() const {
  std::string const text = m_stream.CopyText();
  std::string_view const written = text;
  std::size_t const root = m_tags.empty() ? m_rootEnd : written.rfind('<', m_tags.front() - 1);
  std::string formed(written.substr(0, m_headerEnd));
  formed += FormedProlog(written.substr(m_headerEnd, root - m_headerEnd));
  formed += FormedTags(written.substr(0, m_rootEnd), root);
  std::string_view const epilog = written.substr(m_rootEnd);
  if (!m_form.hasLayout) return formed.append(epilog);
  formed += HaveSameMarkup(epilog, m_form.epilog) ? WithLineEnds(m_form.epilog) : std::string(epilog);
  if (!m_form.hasFinalLineEnd) formed.erase(formed.find_last_not_of("\r\n") + 1);
  if (m_form.hasFinalLineEnd && formed.back() != '\n') formed += LineEnd();
  return formed;
}

}  // namespace Quillon9
