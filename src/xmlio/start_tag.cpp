#include "xmlio/start_tag.h"

#include <algorithm>
#include <cstddef>
#include <set>

#include "xmlio/character_reference.h"

namespace Quillon9 {

namespace {

constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kDeclaration = "xmlns:";

/// Takes the first bytes of \p text that are among \p bytes, or are not.
///@{
std::string_view TakeAll(std::string_view& text, std::string_view bytes) {
  std::string_view const taken = text.substr(0, text.find_first_not_of(bytes));
  text.remove_prefix(taken.size());
  return taken;
}
std::string_view TakeUntil(std::string_view& text, std::string_view bytes) {
  std::string_view const taken = text.substr(0, text.find_first_of(bytes));
  text.remove_prefix(taken.size());
  return taken;
}
///@}

/// The value that an attribute spelled \p spelled has (XML 1.0, W3C, section 3.3.3); false if it has other references
/// than those that need no declaration.
bool Decode(std::string_view spelled, std::string& value) {
  char const* at = spelled.data();
  char const* const end = at + spelled.size();
  while (at != end) {
    if (*at == '&') {
      CharacterReference reference;
      at = reference.Read(at, end);
      if (at == nullptr) return false;
      value += reference.Text();
    } else {
      bool const isHalfLineEnd = *at == '\r' && at + 1 != end && at[1] == '\n';
      if (!isHalfLineEnd) value += kSpace.find(*at) != std::string_view::npos ? ' ' : *at;
      ++at;
    }
  }
  return true;
}

bool SayTheSame(std::string_view one, std::string_view other) {
  if (one == other) return true;
  std::string oneValue;
  std::string otherValue;
  return Decode(one, oneValue) && Decode(other, otherValue) && oneValue == otherValue;
}

}  // namespace

StartTag::StartTag(std::string_view text) {
  if (text.size() < 3 || text.front() != '<' || text.back() != '>') return;
  m_end = text.substr(text.size() - (text[text.size() - 2] == '/' ? 2 : 1));
  std::string_view rest = text.substr(1, text.size() - 1 - m_end.size());
  m_name = TakeUntil(rest, kSpace);
  while (TakeAttribute(rest)) {
  }
  m_isRight = rest.empty();
}

bool StartTag::TakeAttribute(std::string_view& rest) {
  std::string_view left = rest;
  Attribute taken;
  taken.space = TakeAll(left, kSpace);
  if (left.empty()) {
    m_space = taken.space;
    rest = left;
    return false;
  }
  char const* const start = left.data();
  taken.name = TakeUntil(left, " \t\r\n=\"'");
  TakeAll(left, kSpace);
  if (taken.name.empty() || left.empty() || left.front() != '=') return false;
  left.remove_prefix(1);
  TakeAll(left, kSpace);
  if (left.empty() || (left.front() != '"' && left.front() != '\'')) return false;
  std::size_t const close = left.find(left.front(), 1);
  if (close == std::string_view::npos) return false;
  taken.value = left.substr(1, close - 1);
  left.remove_prefix(close + 1);
  taken.spelled = std::string_view(start, static_cast<std::size_t>(left.data() - start));
  m_attributes.push_back(taken);
  rest = left;
  return true;
}

StartTag::Attribute const* StartTag::Find(std::string_view name) const {
  auto const found = std::find_if(m_attributes.begin(), m_attributes.end(),
                                  [&](Attribute const& attribute) { return attribute.name == name; });
  return found != m_attributes.end() ? &*found : nullptr;
}

bool StartTag::LacksAttributeOf(StartTag const& other) const {
  return std::any_of(other.m_attributes.begin(), other.m_attributes.end(),
                     [this](Attribute const& attribute) { return Find(attribute.name) == nullptr; });
}

void StartTag::Learn(StartTag const& other) {
  std::size_t place = 0;
  for (Attribute const& attribute : other.m_attributes) {
    if (Attribute const* const own = Find(attribute.name)) {
      place = static_cast<std::size_t>(own - m_attributes.data()) + 1;
    } else {
      m_attributes.insert(m_attributes.begin() + static_cast<std::ptrdiff_t>(place++), attribute);
    }
  }
}

/// A value that says something else gets the quotes of the model.
void StartTag::AppendValue(std::string& tag, Attribute const& own, Attribute const& model) {
  char const quote = model.spelled.back();
  if (SayTheSame(own.value, model.value)) {
    tag += model.spelled;
  } else if (own.value.find(quote) != std::string_view::npos) {
    tag += own.spelled;
  } else {
    tag += model.spelled.substr(0, model.spelled.size() - model.value.size() - 1);
    tag += own.value;
    tag += quote;
  }
}

std::string StartTag::Like(StartTag const& model, Declarations declarations) const {
  std::string tag = "<";
  tag += m_name;
  std::set<Attribute const*> written;
  for (Attribute const& attribute : model.m_attributes) {
    if (Attribute const* const own = Find(attribute.name)) {
      tag += attribute.space;
      AppendValue(tag, *own, attribute);
      written.insert(own);
    } else if (declarations == Declarations::kAll && attribute.name.substr(0, kDeclaration.size()) == kDeclaration) {
      tag += attribute.space;
      tag += attribute.spelled;
    }
  }
  for (Attribute const& attribute : m_attributes) {
    if (written.count(&attribute) != 0) continue;
    tag += attribute.space;
    tag += attribute.spelled;
  }
  tag += model.m_end == m_end ? model.m_space : m_space;
  tag += m_end;
  return tag;
}

}  // namespace Quillon9
