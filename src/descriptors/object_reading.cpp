// The reading operations of CXmlObjectBase: each loads a document and passes its root to FromXml_Int. They are in a
// file of their own because they depend on the document, and with it on the parser.

#include "descriptors/object_reading.h"

#include <string>
#include <utility>

#include "base/failure_detail.h"
#include "binding/lost_text.h"
#include "binding/reported_read.h"
#include "binding/text_scope.h"
#include "descriptors/failed_scans.h"
#include "descriptors/kept_form.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/node_access.h"
#include "xmlio/object_content.h"

namespace Quillon9 {

void ReadObject(CXmlElement const& element, CXmlObjectBase& object, CXmlSerializationContext const& ctx) {
  // The tree is only read, but the cursor that walks it is not const.
  auto& parent = const_cast<CXmlElement&>(element);
  ObjectContent const content(element);
  FailedScans::Pause const pause;
  CXmlObjectBase::FromXml_Int(&object, &parent, parent.GetFirstElement(), ctx);
}

namespace {

/// \p isSeen says whether the program knows the document; its form counts only then.
void ReadFrom(CXmlElement const* root, CXmlObjectBase& object, CXmlSerializationContext const& ctx, bool isSeen) {
  if (root == nullptr) throw CQnInvalidParamException("The element to read from may not be NULL");
  ReadObject(*root, object, ctx);
  if (isSeen && ctx.GetKeepForm()) KeptForm::Keep(*root, object);
}

/// The caller has never seen \p text, so a place in it means nothing.
void LoadUnseen(CXmlDocument& document, std::string const& text) try {
  XmlNodeAccess::LoadLentText(document, text.c_str());
} catch (CQnException& failure) {
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  CFailurePlace place;
  place.SetPath(detail.place.GetPath());
  detail.place = std::move(place);
  throw;
}

/// Shares bytes, so that nobody changes them during a read of this thread.
class HeldBytes {
 public:
  explicit HeldBytes(CBinaryData const& bytes) : m_bytes(bytes), m_outer(std::exchange(t_innermost, this)) {}
  ~HeldBytes() { t_innermost = m_outer; }
  HeldBytes(HeldBytes const&) = delete;
  HeldBytes& operator=(HeldBytes const&) = delete;

  CBinaryData const& Get() const { return m_bytes; }
  /// Whether they are these bytes.
  static bool Are(unsigned char const* data, unsigned long length) {
    return t_innermost != nullptr && data == t_innermost->m_bytes.GetData() &&
           length == t_innermost->m_bytes.GetLength();
  }

 private:
  static inline thread_local HeldBytes const* t_innermost = nullptr;

  CBinaryData const m_bytes;
  HeldBytes const* const m_outer;
};

/// \p load gets an empty document.
template <class Load>
void ReadDocument(CXmlObjectBase& object, CXmlSerializationContext const& ctx, InputForm form, char const* file,
                  Load load) {
  TextScope const scope(object, ctx);
  CXmlDocument document(ctx);
  DocumentPlaces places(document, form, file);
  ReadWithReport(ctx, places, [&] {
    LossesOfReading losses(document);
    load(document);
    losses.Tell();
    ReadFrom(document.GetDocumentElement(), object, ctx, form != InputForm::kUnseen);
  });
}

}  // namespace

void CXmlObjectBase::FromXmlFile(char const* path, CXmlSerializationContext const& ctx) {
  ReadDocument(*this, ctx, InputForm::kBytes, path, [&](CXmlDocument& document) { document.Load(path); });
}

void CXmlObjectBase::FromXml(char const* text, CXmlSerializationContext const& ctx) {
  ReadDocument(*this, ctx, InputForm::kBytes, nullptr, [&](CXmlDocument& document) { document.LoadXml(text); });
}

void CXmlObjectBase::FromXml(wchar_t const* text, CXmlSerializationContext const& ctx) {
  ReadDocument(*this, ctx, InputForm::kWideText, nullptr, [&](CXmlDocument& document) { document.LoadXml(text); });
}

// Bytes of the caller are copied, because the read may change them: they may be part of the object. A place is looked
// for in the input only after a failure.
void CXmlObjectBase::FromXmlStream(unsigned char* data, unsigned long length, CXmlSerializationContext const& ctx) {
  ReadDocument(*this, ctx, InputForm::kBytes, nullptr, [&](CXmlDocument& document) {
    if (HeldBytes::Are(data, length)) return XmlNodeAccess::LoadLentStream(document, data, length);
    document.LoadXmlStream(data, length);
  });
}

void CXmlObjectBase::FromXmlStream(CBinaryData const& data, CXmlSerializationContext const& ctx) {
  HeldBytes const held(data);
  FromXmlStream(held.Get().GetData(), held.Get().GetLength(), ctx);
}

void CXmlObjectBase::FromXmlElement(CXmlElement const* element, CXmlSerializationContext const& ctx) {
  TextScope const scope(*this, ctx);
  DocumentPlaces places(element);
  ReadWithReport(ctx, places, [&] { ReadFrom(element, *this, ctx, true); });
}

void CXmlObjectBase::FromXmlElement(CElement const* element, CXmlSerializationContext const& ctx) {
  if (element == nullptr) throw CQnInvalidParamException("The element to read from may not be NULL");
  CXmlSerializationContext writing = CXmlSerializationContext::m_defaultContext;
  // The generic content comes from a read like this one.
  if (TextUse(*this, ctx) != Utf8Text::Use::kNo) writing.SetTextEncoding(TextEncoding_UTF8);
  std::string const text = element->ToXml(false, false, EOLType_LF, writing);
  ReadDocument(*this, ctx, InputForm::kUnseen, nullptr, [&](CXmlDocument& document) { LoadUnseen(document, text); });
}

}  // namespace Quillon9
