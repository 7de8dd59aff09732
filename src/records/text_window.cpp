#include "records/text_window.h"

#include <algorithm>
#include <cstring>

namespace Quillon9 {

namespace {

constexpr std::size_t kBlock = 0x10000;

std::uint64_t CountCharacters(std::string_view text) {
  return static_cast<std::uint64_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

}  // namespace

void TextPosition::Pass(std::string_view text) {
  if (text.empty()) return;
  offset += text.size();
  if (m_isAfterReturn && text.front() == '\n') text.remove_prefix(1);  // its line has ended already
  if (text.empty()) {
    m_isAfterReturn = false;
    return;
  }
  m_isAfterReturn = text.back() == '\r';
  auto lines = static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
  std::size_t last = text.rfind('\n');
  for (std::size_t at = text.find('\r'); at != std::string_view::npos; at = text.find('\r', at + 1)) {
    if (at + 1 < text.size() && text[at + 1] == '\n') continue;
    ++lines;
    if (last == std::string_view::npos || at > last) last = at;
  }
  line += lines;
  if (lines == 0) {
    column += CountCharacters(text);
  } else {
    column = 1 + CountCharacters(text.substr(last + 1));
  }
}

std::size_t TextWindow::Find(std::string_view wanted, std::size_t from) {
  std::size_t at = from;
  while (Has(at + wanted.size() - 1)) {
    std::size_t const found = Text(at, Size()).find(wanted);
    if (found != std::string_view::npos) return at + found;
    at = Size() - wanted.size() + 1;
  }
  return kNone;
}

void TextWindow::Drop(std::size_t count) {
  m_start.Pass(Text(0, count));
  m_first += count;
}

// Bytes move to the front when that is cheaper than the bytes that are read for it.
bool TextWindow::Fill(std::size_t at) {
  if (!m_isAtEnd && at > m_most) throw Full();
  if (!m_isAtEnd && !m_mayRead) throw NeedsMore();
  while (!m_isAtEnd && at >= Size()) {
    if (m_first != 0 && m_first >= Size()) {
      std::memmove(m_bytes.data(), m_bytes.data() + m_first, Size());
      m_last -= m_first;
      m_first = 0;
    }
    if (m_bytes.size() - m_last < kBlock) m_bytes.resize(std::max(m_last + kBlock, m_bytes.size() * 2));
    std::size_t const count = m_input.Read(m_bytes.data() + m_last, m_bytes.size() - m_last);
    m_last += count;
    m_isAtEnd = count == 0;
  }
  return at < Size();
}

}  // namespace Quillon9
