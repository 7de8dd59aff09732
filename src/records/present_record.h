#pragma once

#include <cstddef>
#include <vector>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/records/record_reader.h"
#include "records/record_stream.h"

namespace Quillon9 {

/// A record of a batch, from which objects are read. The batch is borrowed.
class PresentRecord {
 public:
  PresentRecord() = default;
  /// Load the tree of \p record with text that is held as \p use says.
  /// \throws as RecordBatch::Load().
  PresentRecord(RecordBatch& batch, std::size_t record, Utf8Text::Use use)
      : m_batch(&batch), m_record(record), m_use(use), m_element(batch.Load(record, use)) {}

  /// Null for none.
  CXmlElement const* Element() const { return m_element; }
  std::vector<CXmlElement const*> Ancestors() const {
    return m_element != nullptr ? m_batch->Ancestors() : std::vector<CXmlElement const*>();
  }
  /// Read it into a new object.
  /// \throws what CXmlObjectBase::FromXmlElement() throws, with the place in the whole document.
  CSmartPtr<CXmlObjectBase> Read(detail::RecordMaker make, CXmlSerializationContext const& ctx);
  /// Read it into \p object.
  /// \throws as Read().
  void ReadInto(CXmlObjectBase& object, CXmlSerializationContext const& ctx);

 private:
  void ReadElement(CXmlObjectBase& object, CXmlSerializationContext const& ctx);

  RecordBatch* m_batch = nullptr;
  std::size_t m_record = 0;
  Utf8Text::Use m_use = Utf8Text::Use::kNo;
  CXmlElement const* m_element = nullptr;
};

}  // namespace Quillon9
