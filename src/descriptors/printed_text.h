#pragma once

#include <string>

#include "quillon9/values/variant.h"

namespace Quillon9Data {

/// The text of a value as QnVariant::ToString() gives it, but that of a string without a copy: the value must outlive
/// this and stay as it is.
class PrintedText {
 public:
  PrintedText(Quillon9::QnVariant const& value, char const* format)
      : m_printed(IsString(value) ? std::string() : value.ToString(format)),
        m_text(IsString(value) ? value.GetString() : m_printed) {}
  PrintedText(PrintedText const&) = delete;
  PrintedText& operator=(PrintedText const&) = delete;

  std::string const& Get() const { return m_text; }

 private:
  static bool IsString(Quillon9::QnVariant const& value) { return value.GetItemType() == Quillon9::ItemType_string; }

  std::string const m_printed;
  std::string const& m_text;
};

}  // namespace Quillon9Data
