#include "quillon9/records/record_source.h"

#include <utility>

#include "records/octet_input.h"

namespace Quillon9 {

CRecordSource::CRecordSource(char const* path) : m_path(path != nullptr ? path : ""), m_input(InputOfFile(m_path)) {}

CRecordSource::CRecordSource(Function function) : m_input(InputOfFunction(std::move(function))) {}

CRecordSource::CRecordSource(CBinaryData const& bytes)
    : m_bytes(bytes), m_input(InputOfMemory(m_bytes.GetData(), m_bytes.GetLength())) {}

CRecordSource::CRecordSource(std::unique_ptr<OctetInput> input) : m_input(std::move(input)) {}

CRecordSource::CRecordSource(CRecordSource&& other) noexcept = default;
CRecordSource& CRecordSource::operator=(CRecordSource&& other) noexcept = default;
CRecordSource::~CRecordSource() = default;

CRecordSource CRecordSource::Memory(void const* data, std::size_t size) {
  return CRecordSource(InputOfMemory(data, size));
}

CRecordSource CRecordSource::Descriptor(int descriptor) {
  return CRecordSource(InputOfDescriptor(descriptor, false, "descriptor " + std::to_string(descriptor)));
}

}  // namespace Quillon9
