#include "text/utf8_to_local.h"

#include <algorithm>
#include <cstring>

#include "base/byte_blocks.h"
#include "base/text_copy.h"
#include "text/code_page.h"

namespace Quillon9 {

namespace {

// ASCII without zeros and carriage returns.
bool IsPlain(std::string_view text) { return !ByteBlocks::Any(text, ' ', FindUnplain); }

}  // namespace

CUtf8ToLocal::CUtf8ToLocal() : m_kind(Find()) {}

CUtf8ToLocal::Kind CUtf8ToLocal::Find() {
  if (CodePage::IsPassedThrough()) return Kind::kSame;
  switch (CodePage::Current()) {
    case CodePage::Charset::kUtf8: return Kind::kUtf8;
    case CodePage::Charset::kAscii: return Kind::kAscii;
    case CodePage::Charset::kOther: break;
  }
  return Kind::kOther;
}

bool CUtf8ToLocal::IsSameExcludingCR(std::string_view utf8) const {
  if (m_kind == Kind::kOther) return false;
  if (IsPlain(utf8)) return true;
  bool const isSame = m_kind == Kind::kSame || (m_kind == Kind::kUtf8 && LegalUtf8Length(CodePage::Bytes(utf8.data()),
                                                                                         utf8.size()) == utf8.size());
  return isSame && utf8.find_first_of(std::string_view("\r\0", 2)) == std::string_view::npos;
}

void CUtf8ToLocal::AppendExcludingCR(std::string& target, std::string_view utf8) const {
  std::size_t const start = target.size();
  Append(target, utf8);
  std::size_t const firstCR = target.find('\r', start);
  if (firstCR == std::string::npos) return;
  auto const from = target.begin() + static_cast<std::ptrdiff_t>(firstCR);
  target.erase(std::remove(from, target.end(), '\r'), target.end());
}

void CUtf8ToLocal::Append(std::string& target, std::string_view utf8) const {
  if (utf8.empty()) return;
  char const* const text = utf8.data();
  if (m_kind == Kind::kSame) {
    target.append(utf8);
  } else if (m_kind == Kind::kUtf8) {
    // Ill-formed input also ends the text in the full conversion, so the well-formed part before it can be copied in
    // any case.
    target.append(text, strnlen(text, LegalUtf8Length(CodePage::Bytes(text), utf8.size())));
  } else if (m_kind == Kind::kAscii && CodePage::IsAscii(text, utf8.size())) {
    target.append(text, strnlen(text, utf8.size()));
  } else {
    CodePage::AppendFromUtf8(target, m_kind == Kind::kAscii ? CodePage::Charset::kAscii : CodePage::Charset::kOther,
                             text, utf8.size());
  }
}

}  // namespace Quillon9
