#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quillon9 {

/// A start tag in text, taken apart. It refers to that text, which must outlive it.
class StartTag {
 public:
  /// \p text goes from '<' to '>'.
  explicit StartTag(std::string_view text);

  /// Whether the text was a tag.
  bool IsRight() const { return m_isRight; }
  /// The name with its prefix.
  std::string_view Name() const { return m_name; }
  bool HasAttributes() const { return !m_attributes.empty(); }
  /// Whether \p other has an attribute that this tag does not have.
  bool LacksAttributeOf(StartTag const& other) const;
  /// Add the attributes of \p other that this tag does not have, each after its neighbour, for a model.
  void Learn(StartTag const& other);

  /// Which declarations of prefixes of a model are added.
  enum class Declarations { kOwn, kAll };
  /// This tag, with the order of attributes, the white space and the spelling of values that \p model has wherever both
  /// say the same. Both are right.
  std::string Like(StartTag const& model, Declarations declarations) const;

 private:
  struct Attribute {
    std::string_view space;  // in front
    std::string_view name;
    std::string_view spelled;  // the name, the equals sign and the value in quotes
    std::string_view value;
  };

  bool TakeAttribute(std::string_view& rest);
  Attribute const* Find(std::string_view name) const;
  static void AppendValue(std::string& tag, Attribute const& own, Attribute const& model);

  bool m_isRight = false;
  std::string_view m_name;
  std::vector<Attribute> m_attributes;
  std::string_view m_space;  // in front of the end
  std::string_view m_end;
};

}  // namespace Quillon9
