#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "quillon9/values/variant.h"
#include "values/number_text.h"
#include "values/ruled_values.h"

namespace Quillon9Data {

/// The text of a value as RuledValues::ToText() returns it, but without copying a string: the value must outlive this
/// object and must not change.
class PrintedText {
 public:
  PrintedText(Quillon9::QnVariant const& value, char const* format)
      : m_printed(IsString(value) ? std::string() : Quillon9::RuledValues::ToText(value, format)),
        m_text(IsString(value) ? value.GetString() : m_printed) {}
  PrintedText(PrintedText const&) = delete;
  PrintedText& operator=(PrintedText const&) = delete;

  std::string const& Get() const { return m_text; }

 private:
  static bool IsString(Quillon9::QnVariant const& value) { return value.GetItemType() == Quillon9::ItemType_string; }

  std::string const m_printed;
  std::string const& m_text;
};

/// The text of a value of the most common kinds, without creating a string: either printed into \p room, or the string
/// that the value holds. It is followed by a zero. Returns a string_view without data for all other values.
[[gnu::always_inline]] inline std::string_view TextAtHand(Quillon9::QnVariant const& value, char const* format,
                                                          char (&room)[Quillon9::kGeneralRoom]) {
  using namespace Quillon9;
  auto const printed = [&](char* end) {
    *end = '\0';
    return std::string_view(room, static_cast<std::size_t>(end - room));
  };
  auto const integer = [&](auto number) { return printed(std::to_chars(room, room + sizeof room - 1, number).ptr); };
  switch (value.GetItemType()) {
    case ItemType_string: return value.GetString();
    case ItemType_boolean: return value.GetBoolean() ? "true" : "false";
    case ItemType_i2: return integer(value.GetI2());
    case ItemType_i4: return integer(value.GetI4());
    case ItemType_i8: return integer(value.GetI8());
    case ItemType_ui2: return integer(value.GetUI2());
    case ItemType_ui4: return integer(value.GetUI4());
    case ItemType_ui8: return integer(value.GetUI8());
    case ItemType_r4:
      if (!IsShortestFormat(format) || !std::isfinite(value.GetR4())) return {};
      return printed(PutShortest(room, value.GetR4()));
    case ItemType_r8:
      if (!std::isfinite(value.GetR8())) return {};
      if (format == nullptr) return printed(PutGeneral(room, value.GetR8(), 16));
      return IsShortestFormat(format) ? printed(PutShortest(room, value.GetR8())) : std::string_view();
    default: return {};
  }
}

}  // namespace Quillon9Data
