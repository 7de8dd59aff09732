#include "text/utf8_text.h"

#include <algorithm>
#include <string>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "text/code_page.h"

namespace Quillon9 {

std::size_t Utf8Text::CountCharacters(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return !IsTrailByte(static_cast<std::uint8_t>(c)); }));
}

std::size_t Utf8Text::OutsideCharacters(std::string_view text, std::size_t place) {
  if (place >= text.size()) return text.size();
  constexpr std::size_t kLongestSequence = 4;
  std::size_t start = place;
  auto const isTrail = [&] { return IsTrailByte(static_cast<std::uint8_t>(text[start])); };
  while (start > 0 && place - start < kLongestSequence - 1 && isTrail()) --start;
  bool const isCut = SequenceLength(CodePage::Bytes(text.data()) + start, text.size() - start) > place - start;
  return isCut ? start : place;
}

bool Utf8Text::IsIllFormed(std::string_view message) {
  constexpr std::string_view kStart = "The text is not well-formed UTF-8 ";
  return message.substr(0, kStart.size()) == kStart;
}

void Utf8Text::CheckWellFormed(std::string_view text) {
  std::size_t const length = LegalUtf8Length(CodePage::Bytes(text.data()), text.size());
  if (length == text.size()) return;
  constexpr std::size_t kMostShown = 60;
  std::size_t first = length - std::min(length, kMostShown);
  while (first < length && IsTrailByte(CodePage::Bytes(text.data())[first])) ++first;
  std::string const shown(text.substr(first, length - first));
  throw OfKind(FailureKind_BadValue,
               CQnInvalidValueException(FormatString("The text is not well-formed UTF-8 after [%s]", shown.c_str())));
}

}  // namespace Quillon9
