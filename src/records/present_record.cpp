#include "records/present_record.h"

#include "binding/failure_report.h"
#include "binding/reported_read.h"
#include "binding/text_scope.h"
#include "descriptors/object_reading.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

CSmartPtr<CXmlObjectBase> PresentRecord::Read(detail::RecordMaker make, CXmlSerializationContext const& ctx) {
  return ReadWithReport(ctx, m_batch->Places(), [&] {
    CSmartPtr<CXmlObjectBase> object = make(*m_element);
    ReadElement(*object, ctx);
    return object;
  });
}

void PresentRecord::ReadInto(CXmlObjectBase& object, CXmlSerializationContext const& ctx) {
  ReadWithReport(ctx, m_batch->Places(), [&] { ReadElement(object, ctx); });
}

void PresentRecord::ReadElement(CXmlObjectBase& object, CXmlSerializationContext const& ctx) {
  TextScope const scope(object, ctx);
  Utf8Text::Use const use = TextUse(object, ctx);
  if (use != m_use) {
    m_element = nullptr;  // the tree ends even where the record cannot be loaded again
    *this = PresentRecord(*m_batch, m_record, use);
  }
  try {
    ReadObject(*m_element, object, ctx);
  } catch (CQnException& failure) {
    FailureReport::Note(failure, {m_element});
    throw;
  }
}

}  // namespace Quillon9
