#include "xmlio/checking_writer.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

#include "base/bounded_text.h"
#include "base/failure_detail.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/variant.h"
#include "text/lost_characters.h"
#include "text/utf8_text.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

CheckingWriter::CheckingWriter(Scope scope, CheckReceiver& receiver, CheckingWriter const* first)
    : CXmlWriter("CheckingWriter"),
      m_scope(scope),
      m_receiver(receiver),
      m_first(first),
      m_outer(std::exchange(t_current, this)) {
  XmlWriterAccess::SetChecking(*this);
}

void XmlWriterAccess::SetChecking(CheckingWriter& writer) { writer.m_checking = &writer; }

CheckingWriter::~CheckingWriter() { t_current = m_outer; }

// ---- Failures

bool CheckingWriter::GoesOn(CQnException& failure, char const* attribute) {
  if (m_isStopped) return false;
  m_isStopped = true;   // also if the receiver throws
  m_encoder = nullptr;  // it may be unable to go on
  m_attribute = attribute;
  bool const isLimit = failure.GetKind() == FailureKind_Limit;
  bool const goesOn = m_receiver.OnFailure(failure, *this);
  m_attribute = nullptr;
  m_isStopped = !goesOn || isLimit;  // an endless graph has a limit in each of its branches
  return !m_isStopped;
}

bool CheckingWriter::GoesOnFrom(std::size_t level, CQnException& failure) {
  if (!GoesOn(failure)) return false;
  while (m_level > level) Leave();
  return true;
}

bool CheckingWriter::GoesOnAt(std::string const& name, std::string const& ns, CQnException& failure) {
  FailureKind const kind = failure.GetKind();
  bool const isElsewhere = kind == FailureKind_MissingElement || kind == FailureKind_Count ||
                           kind == FailureKind_EmptyChoice || kind == FailureKind_Limit;
  if (!m_isStopped && !isElsewhere && m_level == m_holderLevel && !name.empty()) {
    m_encoder = nullptr;
    try {
      WriteStartElement(name, ns);
    } catch (CQnException const&) {  // nested too deep: the failure is told at the object
    }
  }
  return GoesOnFrom(m_holderLevel, failure);
}

bool CheckingWriter::GoesOnAfterCount(void const* collection, CQnException& failure) {
  if (m_countedCollection == collection && m_countedAt == m_started && !m_isStopped) return true;
  m_countedCollection = collection;
  m_countedAt = m_started;
  return GoesOn(failure);
}

// ---- The path

void CheckingWriter::Enter(std::string const& name) {
  Children root;
  Children& siblings = m_level != 0 ? m_levels[m_level - 1].children[name] : root;
  if (++siblings.count == 1) siblings.first = m_started;
  if (m_first == nullptr) {
    m_hasSiblings.push_back(siblings.count > 1);
    m_hasSiblings[siblings.first] = siblings.count > 1;
  }
  std::size_t const sibling = siblings.count;
  if (m_levels.size() == m_level) m_levels.emplace_back();
  Level& level = m_levels[m_level++];
  level.name = name;
  level.number = m_started++;
  level.sibling = sibling;
  level.children.clear();
}

void CheckingWriter::Leave() {
  --m_level;
  PopContext();
}

bool CheckingWriter::HasSiblings(Level const& level) const {
  std::vector<bool> const& known = m_first != nullptr ? m_first->m_hasSiblings : m_hasSiblings;
  return level.sibling > 1 || (level.number < known.size() && known[level.number]);
}

std::string CheckingWriter::GetPath() const {
  constexpr std::size_t kMostOfName = 256;
  std::string path;
  for (std::size_t i = 0; i < m_level; ++i) {
    Level const& level = m_levels[i];
    path += '/' + BoundedText::CutMiddle(level.name, kMostOfName);
    if (HasSiblings(level)) path += '[' + std::to_string(level.sibling) + ']';
  }
  if (m_attribute != nullptr) path += "/@" + BoundedText::CutMiddle(m_attribute, kMostOfName);
  return path;
}

// ---- What is written

namespace {

/// Whether a reader converts \p text to a value of this type. A date is of a kind that its writer does not know, so only
/// one without a text is judged.
bool IsConvertedOnReading(ItemType type, std::string_view text) {
  switch (type) {
    case ItemType_invalid:
    case ItemType_string:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: return false;
    case ItemType_datetime: return text.empty();
    default: return true;
  }
}

/// XML 1.0 (W3C), 2.2, "Characters". A carriage return is not written.
bool IsControlCharacter(char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r'; }

}  // namespace

// One failure for each byte that the conversion loses.
void CheckingWriter::RequireCharacters(std::string_view text, char const* attribute) {
  struct : LostCharacters::Observer {
    void OnLost(LostCharacter const& lost) override { codes.insert(lost.code); }
    std::set<std::uint32_t> codes;
  } losses;
  {
    LostCharacters::Scope const scope(&losses);
    CEncoder::LocalCodePageToUtf8Binary(std::string(text).c_str());
  }
  for (std::uint32_t const byte : losses.codes) {
    CQnException failure(LostCharacter{byte, true}.GetText());
    FailureAccess::DetailOf(failure).kind = FailureKind_LostCharacter;
    GoesOn(failure, attribute);
  }
}

void CheckingWriter::RequireText(std::string_view text, ItemType type, char const* attribute) {
  if (!WritesText()) return;
  text = text.substr(0, text.find('\0'));
  if (m_scope == Scope::kCharacters) return RequireCharacters(text, attribute);
  try {
    Utf8Text::Check(text);
    if (!JudgesReading()) return;
    auto const control = std::find_if(text.begin(), text.end(), IsControlCharacter);
    if (control != text.end()) {
      throw OfKind(FailureKind_BadValue,
                   CQnInvalidValueException(FormatString("The control character %d has no place in a document",
                                                         static_cast<int>(static_cast<unsigned char>(*control)))));
    }
    if (IsConvertedOnReading(type, text)) {
      QnVariant().FromString(std::string(text), type, CWhitespaceUtils::WhitespaceRule_Collapse);
    }
  } catch (CQnException& failure) {
    if (!GoesOn(failure, attribute)) throw;
  }
}

void CheckingWriter::WriteComment(std::string const& text) { RequireText(text, ItemType_string, nullptr); }

void CheckingWriter::WritePI(std::string const& text) {
  RequireText(text, ItemType_string, nullptr);
  if (m_encoder != nullptr) m_encoder->WritePI(text);
}

void CheckingWriter::WriteInlineSchema(std::string const& text) {
  RequireText(text, ItemType_string, nullptr);
  if (m_encoder != nullptr) m_encoder->WriteInlineSchema(text);
}

void CheckingWriter::AddNamespace(std::string const& alias, std::string const& uri) {
  CXmlWriter::AddNamespace(alias, uri);
  RequireText(alias, ItemType_string, nullptr);
  RequireText(uri, ItemType_string, nullptr);
  if (m_encoder != nullptr) m_encoder->AddNamespace(alias, uri);
}

void CheckingWriter::SetDefaultNamespace(std::string const& uri) {
  CXmlWriter::SetDefaultNamespace(uri);
  RequireText(uri, ItemType_string, nullptr);
  if (m_encoder != nullptr) m_encoder->SetDefaultNamespace(uri);
}

void CheckingWriter::WriteStartElement(std::string const& localName, std::string const& namespaceUri) {
  if (m_context != nullptr) m_context->m_tagOpen = false;
  m_context = NewContext(localName, namespaceUri);
  Enter(localName);
  RequireText(localName, ItemType_string, nullptr);
  RequireText(namespaceUri, ItemType_string, nullptr);
  if (m_encoder != nullptr) m_encoder->WriteStartElement(localName, namespaceUri);
}

void CheckingWriter::WriteString(std::string const& value, ItemType type) {
  RequireText(value, type, nullptr);
  if (m_context != nullptr && !value.empty()) m_context->m_tagOpen = false;
  if (m_encoder != nullptr) m_encoder->WriteString(value, type);
}

void CheckingWriter::WriteEndElement() {
  RequireOpenElement();
  if (m_encoder != nullptr) m_encoder->WriteEndElement();
  Leave();
}

void CheckingWriter::WriteAttributeString(std::string const& localName, std::string const& namespaceUri,
                                          std::string const& value, ItemType type) {
  RequireOpenTag();
  RequireText(localName, ItemType_string, localName.c_str());
  RequireText(namespaceUri, ItemType_string, localName.c_str());
  RequireText(value, type, localName.c_str());
  if (m_encoder != nullptr) m_encoder->WriteAttributeString(localName, namespaceUri, value, type);
}

void CheckingWriter::WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) {
  RequireOpenTag();
  RequireText(namespaceUri, ItemType_string, "type");
  RequireText(typeName, ItemType_string, "type");
  if (m_encoder != nullptr) m_encoder->WriteAttributeType(namespaceUri, typeName, type);
}

// It has no scopes: any prefix will do.
bool CheckingWriter::DeclarePrefix(std::string const& prefix, std::string const& uri) {
  if (m_encoder != nullptr) m_encoder->PrefixForValues(uri, prefix);
  return true;
}

void CheckingWriter::WriteAttributeNil() {
  RequireOpenTag();
  if (m_encoder != nullptr) m_encoder->WriteAttributeNil();
}

}  // namespace Quillon9
