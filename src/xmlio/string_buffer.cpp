#include "quillon9/xmlio/string_buffer.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace Quillon9 {

namespace {

constexpr unsigned long kDefaultBlockSize = 4096;  // with the byte that ends the text

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
    m_used += piece;
    m_length += piece;
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

void CStringBuffer::JoinBlocks() {
  std::unique_ptr<char[]> joined(new char[m_length + 1]);
  m_blockSizes.back() = m_used;
  char* end = joined.get();
  for (std::size_t i = 0; i < m_blocks.size(); ++i) {
    std::memcpy(end, m_blocks[i], m_blockSizes[i]);
    end += m_blockSizes[i];
    delete[] m_blocks[i];
  }
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
  std::memset(m_current, 0, m_used);  // the rest is zero already
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

void CStringBuffer::AddNewBlock() {
  std::unique_ptr<char[]> block(new char[m_blockSize + 1]());
  m_blockSizes.reserve(m_blocks.size() + 1);
  m_blocks.push_back(block.get());
  if (!m_blockSizes.empty()) m_blockSizes.back() = m_used;
  m_blockSizes.push_back(m_blockSize);
  m_current = block.release();
  m_used = 0;
  m_capacity = m_blockSize;
}

}  // namespace Quillon9
