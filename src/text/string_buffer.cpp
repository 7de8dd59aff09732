#include "quillon9/text/string_buffer.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace Quillon9 {

namespace {

constexpr unsigned long kDefaultBlockSize = 4096;  // including the byte that ends the text
constexpr unsigned long kLargestGrownBlock = 1UL << 20;

}  // namespace

CStringBuffer::CStringBuffer() : CStringBuffer(kDefaultBlockSize) {}

CStringBuffer::CStringBuffer(unsigned long blockSize) : m_blockSize(std::max(blockSize, 2UL) - 1) {}

CStringBuffer::~CStringBuffer() { Clear(); }

void CStringBuffer::Append(char const* text) {
  if (text != nullptr) Append(text, std::strlen(text));
}

void CStringBuffer::Append(std::string const& text) { Append(text.c_str()); }

void CStringBuffer::Append(char const* text, unsigned long length) {
  while (length > 0) {
    if (m_used == m_capacity) AddNewBlock();
    unsigned long const piece = std::min(length, m_capacity - m_used);
    std::memcpy(m_current + m_used, text, piece);
    Commit(piece);
    text += piece;
    length -= piece;
  }
}

void CStringBuffer::SetText(char const* text) {
  Clear();
  Append(text);
}

char const* CStringBuffer::GetText() {
  if (m_blocks.empty()) return "";
  if (m_blocks.size() > 1) JoinBlocks();
  return m_current;
}

std::vector<std::string_view> CStringBuffer::GetBlocks() const {
  std::vector<std::string_view> blocks;
  blocks.reserve(m_blocks.size());
  for (std::size_t i = 0; i < m_blocks.size(); ++i) {
    bool const isLast = i + 1 == m_blocks.size();
    blocks.emplace_back(m_blocks[i], isLast ? m_used : m_blockSizes[i]);
  }
  return blocks;
}

void CStringBuffer::JoinBlocks() {
  std::unique_ptr<char[]> joined(new char[m_length + 1]);
  char* end = joined.get();
  for (std::string_view const block : GetBlocks()) end += block.copy(end, block.size());
  for (char const* block : m_blocks) delete[] block;
  *end = '\0';
  m_current = joined.release();
  m_used = m_capacity = m_length;
  m_blocks.assign(1, m_current);
  m_blockSizes.assign(1, m_capacity);
}

void CStringBuffer::Empty() {
  if (m_blocks.size() != 1) {
    Clear();
    return;
  }
  m_current[0] = '\0';
  m_used = 0;
  m_length = 0;
}

void CStringBuffer::Clear() {
  for (char const* block : m_blocks) delete[] block;
  m_blocks.clear();
  m_blockSizes.clear();
  m_used = 0;
  m_capacity = 0;
  m_current = nullptr;
  m_length = 0;
}

void CStringBuffer::AddNewBlock() { AddBlock(m_blockSize); }

void CStringBuffer::AddBlock(unsigned long least) {
  // Blocks grow with the text, up to a moderate size, so that long texts do not need thousands of blocks.
  unsigned long const size = std::max({m_blockSize, least, std::min(m_length / 2, kLargestGrownBlock)});
  std::unique_ptr<char[]> block(new char[size + 1]);
  block[0] = '\0';
  m_blockSizes.reserve(m_blocks.size() + 1);
  m_blocks.push_back(block.get());
  if (!m_blockSizes.empty()) m_blockSizes.back() = m_used;
  m_blockSizes.push_back(size);
  m_current = block.release();
  m_used = 0;
  m_capacity = size;
}

}  // namespace Quillon9
