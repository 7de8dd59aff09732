#include "xmlio/start_tag.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "text/utf8_text.h"
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
/// than those that need no declaration, or references that are no text in the encoding in use.
bool Decode(std::string_view spelled, std::string& value) {
  char const* at = spelled.data();
  char const* const end = at + spelled.size();
  while (at != end) {
    if (*at == '&') {
      CharacterReference reference;
      at = reference.Read(at, end);
      if (at == nullptr || (reference.Text().size() > 1 && !Utf8Text::IsInUse())) return false;
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

/// Whether a document in any encoding, without a document type, may declare a prefix by the attribute \p name with
/// \p value.
bool IsPlainDeclaration(std::string_view name, std::string_view value) {
  auto const isPlain = [](char c) { return c > ' ' && c < '\x7F' && c != '<'; };
  std::string decoded;
  return name.substr(0, kDeclaration.size()) == kDeclaration && std::all_of(name.begin(), name.end(), isPlain) &&
         std::all_of(value.begin(), value.end(), isPlain) && Decode(value, decoded);
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
  if (taken.space.empty() || taken.name.empty() || left.empty() || left.front() != '=') return false;
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

bool TagModel::Learn(StartTag const& tag) {
  if (m_entries.empty()) {
    m_space = tag.m_space;
    m_end = tag.m_end;
  }
  std::size_t const known = m_entries.size();
  auto place = m_entries.begin();
  for (Attribute const& attribute : tag.m_attributes) {
    auto const found = m_byName.find(attribute.name);
    if (found != m_byName.end()) {
      place = std::next(found->second);
    } else {
      m_byName.emplace(attribute.name, m_entries.insert(place, Entry{attribute, 0}));
    }
  }
  return m_entries.size() != known;
}

void TagModel::Number() {
  std::size_t last = 0;
  for (Entry& entry : m_entries) entry.number = ++last;
}

/// A value that says something else gets the quotes of the model.
void TagModel::AppendValue(std::string& tag, Attribute const& own, Attribute const& model) {
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

std::string TagModel::Shaped(StartTag const& tag, Declarations declarations) const {
  std::map<std::size_t, std::pair<Attribute const*, Attribute const*>> placed;  // its own one, which may be null
  std::vector<Attribute const*> others;
  for (Attribute const& attribute : tag.m_attributes) {
    auto const found = m_byName.find(attribute.name);
    if (found == m_byName.end()) {
      others.push_back(&attribute);
    } else {
      placed.emplace(found->second->number, std::pair(&attribute, &found->second->attribute));
    }
  }
  if (declarations == Declarations::kAll) {
    for (Entry const& entry : m_entries) {
      bool const isAdded = IsPlainDeclaration(entry.attribute.name, entry.attribute.value);
      if (isAdded) placed.emplace(entry.number, std::pair(nullptr, &entry.attribute));
    }
  }
  std::string text = "<";
  text += tag.m_name;
  for (auto const& [number, pair] : placed) {
    auto const& [own, model] = pair;
    text += model->space;
    if (own != nullptr) AppendValue(text, *own, *model);
    if (own == nullptr) text += model->spelled;
  }
  for (Attribute const* const attribute : others) {
    text += attribute->space;
    text += attribute->spelled;
  }
  text += m_end == tag.m_end ? m_space : tag.m_space;
  text += tag.m_end;
  return text;
}

}  // namespace Quillon9
