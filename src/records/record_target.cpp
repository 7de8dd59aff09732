#include "quillon9/records/record_target.h"

#include <utility>

#include "base/text_arguments.h"
#include "records/octet_output.h"

namespace Quillon9 {

CRecordTarget::CRecordTarget(char const* path) : m_output(OutputToFile(OrEmpty(path))) {}

CRecordTarget::CRecordTarget(Function function) : m_output(OutputToFunction(std::move(function))) {}

CRecordTarget::CRecordTarget(std::unique_ptr<OctetOutput> output) : m_output(std::move(output)) {}

CRecordTarget::CRecordTarget(CRecordTarget&& other) noexcept = default;
CRecordTarget& CRecordTarget::operator=(CRecordTarget&& other) noexcept = default;
CRecordTarget::~CRecordTarget() = default;

CRecordTarget CRecordTarget::EndOfFile(std::string const& path) {
  CRecordTarget target(OutputToEndOfFile(path));
  target.m_isAppended = true;
  return target;
}

CRecordTarget CRecordTarget::Descriptor(int descriptor) { return CRecordTarget(OutputToDescriptor(descriptor)); }

CRecordTarget CRecordTarget::Memory(std::string& bytes) { return CRecordTarget(OutputToMemory(bytes)); }

CRecordTarget CRecordTarget::Memory(CBinaryData& bytes) { return CRecordTarget(OutputToMemory(bytes)); }

}  // namespace Quillon9
