#include "quillon9/records/record_writer.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "binding/lost_text.h"
#include "binding/text_scope.h"
#include "descriptors/form_access.h"
#include "descriptors/root_prologue.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/descriptors/unknown_content.h"
#include "quillon9/xmlio/element.h"
#include "quillon9/xmlio/markup.h"
#include "records/octet_output.h"
#include "records/record_encoder.h"
#include "records/tree_writing.h"
#include "xmlio/checking_writer.h"
#include "xmlio/reserved_namespaces.h"
#include "xmlio/xml_characters.h"

namespace Quillon9 {

namespace {

/// Holds while text of the program is written that belongs to no object.
class OwnTextScope {
 public:
  OwnTextScope() : m_use(Utf8Text::Use::kYes), m_rules(ValueRules_XmlSchema) {}

 private:
  Utf8Text::Scope m_use;
  RulesInUse::Scope m_rules;
};

void RequireText(std::string const& text) {
  RequireXmlCharacters(text);
  OwnTextScope const scope;
  Utf8Text::Check(text);
}

/// Namespaces in XML 1.0 (W3C), section 3, "Reserved Prefixes and Namespace Names".
bool IsReserved(std::string const& prefix, std::string const& uri) {
  std::string start = prefix.substr(0, 3);
  for (char& c : start) c = static_cast<char>(c | 0x20);
  return start == "xml" || uri.empty() || uri == CXmlWriter::XML_NAMESPACE || uri == kDeclarationsNamespace;
}

void RequireName(std::string const& name) {
  OwnTextScope const scope;
  TreeWriting::RequireName(name);
}

void RequireElementName(std::string const& name, std::string const& namespaceUri, bool hasDefaultNamespace) {
  OwnTextScope const scope;
  TreeWriting::RequireElementName(name, namespaceUri, hasDefaultNamespace);
}

void RequireAttributeName(std::string const& name, std::string const& namespaceUri) {
  OwnTextScope const scope;
  TreeWriting::RequireAttributeName(name, namespaceUri);
}

/// Gives an object another element name for a time.
class Renamed {
 public:
  Renamed(CXmlObjectBase& object, std::string const& name) : m_object(object), m_before(object.GetElementName()) {
    m_object.SetElementName(name.c_str());
  }
  ~Renamed() { m_object.SetElementName(m_before.c_str()); }
  Renamed(Renamed const&) = delete;
  Renamed& operator=(Renamed const&) = delete;

 private:
  CXmlObjectBase& m_object;
  std::string m_before;
};

}  // namespace

class CXmlRecordWriter::Work {
 public:
  Work(CRecordTarget target, CXmlSerializationContext const& ctx)
      : m_ctx(ctx), m_output(std::move(target.m_output)), m_isAppended(target.m_isAppended) {}
  Work(Work const&) = delete;
  Work& operator=(Work const&) = delete;
  ~Work() {
    if (!m_isAppended || m_encoder == nullptr || m_isFinished || m_failure != nullptr) return;
    try {
      Finish();
    } catch (...) {  // nobody asks any more
    }
  }

  // ---- Form

  void SetText(RecordLayout const& layout) {
    RequireNew();
    m_layout = layout;
    m_infoset.reset();
  }
  void SetFastInfoset(FInfoDecl decl) {
    RequireNew();
    if (m_isAppended) throw CQnInvalidParamException("Records in Fast Infoset cannot be appended to a file");
    m_infoset = decl;
  }
  void SetCompression(CompressionType compression) {
    RequireNew();
    m_compression = compression;
  }

  // ---- Elements around the records

  void DeclareNamespace(std::string const& prefix, std::string const& uri) {
    RequireUsable();
    RequireText(uri);
    if (!prefix.empty()) RequireName(prefix);
    if (m_hasPrologue) {
      throw CQnInvalidStateException(
          "Namespaces are declared before the attributes and the content of the document element");
    }
    auto const isSame = [&](auto const& declared) { return declared.first == prefix; };
    auto const known = std::find_if(m_declared.begin(), m_declared.end(), isSame);
    bool const isTaken = known != m_declared.end() ? known->second != uri : IsTakenByContext(prefix, uri);
    if (isTaken || IsReserved(prefix, uri)) {
      throw CQnInvalidParamException(
          FormatString("The prefix [%s] cannot stand for [%s]", prefix.c_str(), uri.c_str()));
    }
    if (prefix.empty() && m_pending) RequireElementName(m_pending->first, m_pending->second, !m_infoset);
    if (known == m_declared.end()) m_declared.emplace_back(prefix, uri);
  }

  void OpenElement(std::string const& localName, std::string const& namespaceUri) {
    RequireRoomForElement();
    RequireText(namespaceUri);
    CheckElementName(localName, namespaceUri);
    EndStart();
    m_pending.emplace(localName, namespaceUri);
    NoteOpened(true);
  }

  void OpenElement(CXmlGeneratedClass const& object) {
    RequireRoomForElement();
    EndStart();
    Begin(false);
    WritePartOf(object, [&] {
      bool const isRoot = m_depth == 0;
      if (isRoot) {
        BindDeclared();
        BindKeptPrefixes(object, m_ctx, Writer());
      }
      FormAccess::WriteStart(object, Writer(), isRoot, object.GetTargetNamespace().c_str(), m_ctx);
      if (isRoot) DeclareAll();
    });
    if (m_depth == 0) KeepMarkupAfter(object);
    m_hasPrologue = true;
    NoteOpened(false);
    SendIfFull();
  }

  void WriteAttribute(std::string const& localName, std::string const& value, std::string const& namespaceUri,
                      ItemType type) {
    RequireOpenElement();
    RequireName(localName);
    RequireText(value);
    RequireText(namespaceUri);
    if (!m_takesAttributes) {
      throw CQnInvalidStateException(
          FormatString("The attribute [%s] comes after the content of its element", localName.c_str()));
    }
    RequireAttributeName(localName, namespaceUri);
    StartPending();
    std::pair<std::string, std::string> name(localName, namespaceUri);
    if (std::find(m_attributes.begin(), m_attributes.end(), name) != m_attributes.end()) {
      throw CQnInvalidParamException(FormatString("The element has two attributes [%s]", localName.c_str()));
    }
    Guarded([&] {
      OwnTextScope const scope;
      m_tree->WriteAttribute(localName, namespaceUri, value, type);
      m_attributes.push_back(std::move(name));
    });
  }

  void WriteText(std::string const& text, ItemType type) {
    RequireOpenElement();
    RequireText(text);
    if (text.empty()) return;
    EndStart();
    Guarded([&] {
      OwnTextScope const scope;
      Writer().PreserveSpace();
      Writer().WriteString(text, type);
      m_encoder->MoveTo(m_block);
    });
    SendIfFull();
  }

  void CloseElement() {
    RequireOpenElement();
    EndStart();
    Guarded([this] {
      OwnTextScope const scope;
      Writer().WriteEndElement();
      if (m_depth == 1) {
        for (CMarkup const& markup : m_markupAfter) Writer().WriteMarkup(markup);
      }
      m_encoder->MoveTo(m_block);
      --m_depth;
    });
    SendIfFull();
  }

  // ---- Records

  void Write(CXmlObjectBase const& object, std::string const& namespaceUri) {
    bool const isRoot = m_depth == 0 && !m_isAppended;
    BeginRecord(!isRoot);
    LossesOfWriting losses(m_ctx);
    WritePartOf(object, [&] {
      if (isRoot) BindDeclared();
      CXmlObjectBase::ToXml_Int(&object, &Writer(), isRoot, namespaceUri.c_str(), m_ctx, false);
    });
    EndRecord();
    losses.Tell(object);
  }

  void Write(CXmlElement const& element) {
    BeginRecord(true);
    Utf8Text::Scope const use(m_ctx.GetTextEncoding() == TextEncoding_UTF8 ? Utf8Text::Use::kYes : Utf8Text::Use::kNo);
    // Sections of character data that a tree keeps as they are written are text under other rules.
    RulesInUse::Scope const rules(m_ctx.GetStripCDATA() ? ValueRules_XmlSchema : ValueRules_Classic);
    WholeOrNothing([&] { m_tree->Write(element, m_ctx.GetKeepPrefixes()); });
    EndRecord();
  }

  std::uint64_t Count() const { return m_count; }

  // ---- End

  void Flush() {
    RequireUsable();
    Begin(false);
    Guarded([this] {
      OwnTextScope const scope;
      m_encoder->MoveTo(m_block);
      Send();
      m_output->Flush();
    });
  }

  void Finish() {
    if (m_isFinished && m_failure == nullptr) return;
    RequireUsable();
    if (!m_hasRoot && !m_isAppended) throw CQnInvalidStateException("A document needs an element");
    while (m_depth != 0) CloseElement();
    Begin(false);
    Guarded([this] {
      m_encoder->End();
      m_encoder->MoveTo(m_block);
      Send();
      m_output->Finish();
      m_isFinished = true;
    });
  }

 private:
  CXmlWriter& Writer() { return m_encoder->Writer(); }

  void RequireNew() const {
    RequireUsable();
    if (m_encoder != nullptr || m_hasRoot) throw CQnInvalidStateException("The write has begun");
  }
  void RequireUsable() const {
    if (m_failure != nullptr) std::rethrow_exception(m_failure);
    if (m_isFinished) throw CQnInvalidStateException("The document is finished");
  }
  void RequireOpenElement() const {
    RequireUsable();
    if (m_depth == 0) throw CQnInvalidStateException("There is no open element");
  }
  void RequireNoRoot() const {
    RequireUsable();
    if (m_hasRoot && m_depth == 0) throw CQnInvalidStateException("A document has only one element");
  }
  void RequireRoomForElement() const {
    RequireNoRoot();
    if (m_isAppended) throw CQnInvalidStateException("Records that are appended have no elements around them");
  }
  void CheckElementName(std::string const& localName, std::string const& namespaceUri) const {
    bool hasDefault = !m_ctx.GetDefaultNamespaceURI().empty();
    for (auto const& declared : m_declared) hasDefault = hasDefault || declared.first.empty();
    RequireElementName(localName, namespaceUri, hasDefault && !m_infoset);
  }
  bool IsTakenByContext(std::string const& prefix, std::string const& uri) const {
    if (prefix.empty()) return !m_ctx.GetDefaultNamespaceURI().empty() && m_ctx.GetDefaultNamespaceURI() != uri;
    CNamespaceAliasMap const& aliases = *m_ctx.GetNamespaceAliases();
    return aliases.DoesAliasExist(prefix.c_str()) && aliases.GetNamespaceFromAlias(prefix.c_str()) != uri;
  }

  /// Do \p action. If it fails, the document cannot go on.
  template <class Action>
  void Guarded(Action action) {
    try {
      action();
    } catch (...) {
      m_failure = std::current_exception();
      throw;
    }
  }

  /// Write what stands in front of everything else, and with \p withPrologue also what stands in front of the document
  /// element.
  void Begin(bool withPrologue) {
    Guarded([&] {
      if (m_encoder == nullptr) BeginDocument();
      if (!withPrologue || std::exchange(m_hasPrologue, true)) return;
      OwnTextScope const scope;
      WriteRootPrologue(Writer(), nullptr, m_ctx);
      BindDeclared();
    });
  }
  void BeginDocument() {
    if (m_isAppended) m_layout.hasHeader = false;
    std::unique_ptr<RecordEncoder> encoder = m_infoset ? EncoderOfInfoset(*m_infoset, m_ctx) : EncoderOfText(m_layout);
    m_output = Compressed(std::move(m_output), m_compression);
    m_tree.emplace(encoder->Writer(), !m_infoset);
    m_encoder = std::move(encoder);
    m_encoder->Begin();
  }
  void BindDeclared() {
    if (!m_ctx.GetDefaultNamespaceURI().empty()) m_tree->SetDefaultNamespace(m_ctx.GetDefaultNamespaceURI());
    for (auto const& [prefix, uri] : m_declared) {
      if (prefix.empty()) {
        m_tree->SetDefaultNamespace(uri);
      } else {
        m_tree->AddNamespace(prefix, uri);
      }
    }
  }

  /// What BindDeclared() leaves, because one namespace may have several prefixes.
  void DeclareAll() {
    for (auto const& [prefix, uri] : m_declared) {
      if (!prefix.empty()) Writer().DeclarePrefix(prefix, uri);
    }
  }

  void NoteOpened(bool takesAttributes) {
    ++m_depth;
    m_hasRoot = true;
    m_takesAttributes = takesAttributes;
    m_attributes.clear();
  }

  /// Start the element whose name has been given.
  void StartPending() {
    if (!m_pending) return;
    Begin(true);
    Guarded([this] {
      OwnTextScope const scope;
      m_tree->Start(m_pending->first, m_pending->second);
      m_pending.reset();
      if (m_depth != 1) return;
      DeclareAll();
      WriteContextAttributes();
    });
  }
  void WriteContextAttributes() {
    CAttributeCol const* const additional = m_ctx.FindAdditionalRootAttributes();
    if (additional == nullptr) return;
    CXmlObjectBase::ToXml_Int(additional, &Writer(), false, "", m_ctx, false);
    for (CAttribute const& attribute : *additional) {
      m_attributes.emplace_back(attribute.GetName(), attribute.GetNamespace());
    }
  }
  /// The content of the open element begins, if there is one.
  void EndStart() {
    StartPending();
    if (!std::exchange(m_takesAttributes, false) || m_depth != 1 || m_ctx.GetInLineSchema().empty()) return;
    Guarded([this] { Writer().WriteInlineSchema(m_ctx.GetInLineSchema()); });
  }

  void BeginRecord(bool withPrologue) {
    RequireNoRoot();
    EndStart();
    Begin(withPrologue);
  }
  void EndRecord() {
    ++m_count;
    m_hasRoot = m_hasRoot || !m_isAppended;
    SendIfFull();
  }

  /// \p object is the document element. It may be gone when the element is closed.
  void KeepMarkupAfter(CXmlGeneratedClass const& object) {
    CUnknownContent const* const unknown = object.GetUnknownContent();
    if (unknown == nullptr) return;
    for (CMarkup const& markup : unknown->GetDocumentMarkup()) {
      if (markup.childrenInFront == 1) m_markupAfter.push_back(markup);
    }
  }

  /// Do \p action, which writes \p object or a part of it, so that a failure leaves nothing of it.
  template <class Action>
  void WritePartOf(CXmlObjectBase const& object, Action action) {
    TextScope const scope(object, m_ctx);
    CheckingWriter::Pause const pause;
    try {
      WholeOrNothing(action);
    } catch (CQnException& failure) {
      m_encoder->AddPlace(failure, object, m_ctx);
      throw;
    }
  }
  template <class Action>
  void WholeOrNothing(Action action) {
    Guarded([this] {
      OwnTextScope const scope;
      m_encoder->SetMark(m_block);
    });
    try {
      action();
      m_encoder->MoveTo(m_block);
    } catch (...) {
      Guarded([this] { m_encoder->ReturnToMark(); });
      throw;
    }
  }

  void SendIfFull() {
    if (m_block.size() >= RecordEncoder::kBlock) Guarded([this] { Send(); });
  }
  void Send() {
    if (m_block.empty()) return;
    m_output->Write(m_block);
    m_block.clear();
  }

  CXmlSerializationContext const& m_ctx;
  std::unique_ptr<OctetOutput> m_output;
  bool m_isAppended;
  RecordLayout m_layout;
  std::optional<FInfoDecl> m_infoset;  // none for text
  CompressionType m_compression = CompressionType_None;
  std::unique_ptr<RecordEncoder> m_encoder;  // null until something is written
  std::optional<TreeWriting> m_tree;         // writes to it
  std::string m_block;                       // output, until it is a full block

  std::vector<std::pair<std::string, std::string>> m_declared;  // prefixes and their namespaces
  bool m_hasPrologue = false;
  std::optional<std::pair<std::string, std::string>> m_pending;   // the open element, if it has not been started
  std::vector<std::pair<std::string, std::string>> m_attributes;  // of the open element, until its content begins
  bool m_takesAttributes = false;
  std::vector<CMarkup> m_markupAfter;  // the document element
  std::size_t m_depth = 0;             // of the open element
  bool m_hasRoot = false;
  bool m_isFinished = false;
  std::uint64_t m_count = 0;
  std::exception_ptr m_failure;  // that ended the writer
};

CXmlRecordWriter::CXmlRecordWriter(CRecordTarget target, CXmlSerializationContext const& ctx)
    : m_work(std::make_unique<Work>(std::move(target), ctx)) {}

CXmlRecordWriter::~CXmlRecordWriter() = default;

void CXmlRecordWriter::SetText(bool includeHeader, bool formatted, EOLType eol) {
  m_work->SetText({includeHeader, formatted, eol});
}

void CXmlRecordWriter::SetFastInfoset(FInfoDecl decl) { m_work->SetFastInfoset(decl); }

void CXmlRecordWriter::SetCompression(CompressionType compression) { m_work->SetCompression(compression); }

void CXmlRecordWriter::DeclareNamespace(std::string const& prefix, std::string const& uri) {
  m_work->DeclareNamespace(prefix, uri);
}

void CXmlRecordWriter::OpenElement(std::string const& localName, std::string const& namespaceUri) {
  m_work->OpenElement(localName, namespaceUri);
}

void CXmlRecordWriter::OpenElement(CXmlGeneratedClass const& object) { m_work->OpenElement(object); }

void CXmlRecordWriter::WriteAttribute(std::string const& localName, std::string const& value,
                                      std::string const& namespaceUri, ItemType type) {
  m_work->WriteAttribute(localName, value, namespaceUri, type);
}

void CXmlRecordWriter::WriteText(std::string const& text, ItemType type) { m_work->WriteText(text, type); }

void CXmlRecordWriter::CloseElement() { m_work->CloseElement(); }

void CXmlRecordWriter::Write(CXmlObjectBase const& object) { m_work->Write(object, object.GetTargetNamespace()); }

void CXmlRecordWriter::Write(CXmlObjectBase& object, std::string const& localName) {
  Write(object, localName, object.GetTargetNamespace());
}

void CXmlRecordWriter::Write(CXmlObjectBase& object, std::string const& localName, std::string const& namespaceUri) {
  RequireElementName(localName, namespaceUri, false);
  Renamed const renamed(object, localName);
  m_work->Write(object, namespaceUri);
}

void CXmlRecordWriter::Write(CXmlElement const& element) { m_work->Write(element); }

std::uint64_t CXmlRecordWriter::GetCount() const { return m_work->Count(); }

void CXmlRecordWriter::Flush() { m_work->Flush(); }

void CXmlRecordWriter::Finish() { m_work->Finish(); }

}  // namespace Quillon9
