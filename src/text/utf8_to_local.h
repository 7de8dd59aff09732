#pragma once

#include <string>
#include <string_view>

namespace Quillon9 {

/// Converts text from UTF-8 as CEncoder does, for readers that convert many pieces: it looks the locale up only once
/// and searches for ASCII in blocks of eight bytes, both of which reading depends on for its speed.
class CUtf8ToLocal {
 public:
  /// Uses the present locale and the present switch of ASCIIOnly(bool).
  CUtf8ToLocal();

  /// Append the converted \p utf8 to \p target.
  void Append(std::string& target, std::string_view utf8) const;
  /// The same, without carriage returns.
  void AppendExcludingCR(std::string& target, std::string_view utf8) const;
  /// Whether the conversion would not change the text and the text has no carriage return. May return false even so.
  bool IsSameExcludingCR(std::string_view utf8) const;
  /// Whether the conversion leaves plain ASCII unchanged.
  bool KeepsAscii() const { return m_kind != Kind::kOther; }
  /// Whether it leaves all well-formed text without zeros unchanged.
  bool KeepsUtf8() const { return m_kind == Kind::kSame || m_kind == Kind::kUtf8; }
  std::string operator()(std::string_view utf8) const {
    std::string local;
    Append(local, utf8);
    return local;
  }

 private:
  enum class Kind { kSame, kUtf8, kAscii, kOther };
  static Kind Find();

  Kind m_kind;
};

}  // namespace Quillon9
