#include "quillon9/base/limits.h"

namespace Quillon9 {

namespace {

constexpr std::uint64_t kMebibyte = 1024U * 1024U;

std::uint32_t maxElementDepth = 1000;
std::uint64_t maxContentSize = 256 * kMebibyte;
std::uint32_t maxContentGrowth = 100;
std::uint64_t maxContentTotal = 4096 * kMebibyte;
std::uint32_t maxDecompressedSize = 1024 * kMebibyte;
bool allowDocumentType = true;
std::uint32_t maxDeclaredAttributes = 1000;
bool useFastReader = true;

}  // namespace

std::uint32_t CLimits::GetMaxElementDepth() { return maxElementDepth; }
void CLimits::SetMaxElementDepth(std::uint32_t depth) { maxElementDepth = depth; }

std::uint64_t CLimits::GetMaxContentSize() { return maxContentSize; }
void CLimits::SetMaxContentSize(std::uint64_t bytes) { maxContentSize = bytes; }

std::uint32_t CLimits::GetMaxContentGrowth() { return maxContentGrowth; }
void CLimits::SetMaxContentGrowth(std::uint32_t factor) { maxContentGrowth = factor; }

std::uint64_t CLimits::GetMaxContentTotal() { return maxContentTotal; }
void CLimits::SetMaxContentTotal(std::uint64_t bytes) { maxContentTotal = bytes; }

std::uint32_t CLimits::GetMaxDecompressedSize() { return maxDecompressedSize; }
void CLimits::SetMaxDecompressedSize(std::uint32_t bytes) { maxDecompressedSize = bytes; }

bool CLimits::GetAllowDocumentType() { return allowDocumentType; }
void CLimits::SetAllowDocumentType(bool allow) { allowDocumentType = allow; }

std::uint32_t CLimits::GetMaxDeclaredAttributes() { return maxDeclaredAttributes; }
void CLimits::SetMaxDeclaredAttributes(std::uint32_t count) { maxDeclaredAttributes = count; }

bool CLimits::GetUseFastReader() { return useFastReader; }
void CLimits::SetUseFastReader(bool use) { useFastReader = use; }

}  // namespace Quillon9
