#pragma once

#include <cstddef>
#include <list>
#include <map>
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

 private:
  friend class TagModel;
  struct Attribute {
    std::string_view space;  // in front
    std::string_view name;
    std::string_view spelled;  // the name, the equals sign and the value in quotes
    std::string_view value;
  };

  bool TakeAttribute(std::string_view& rest);

  bool m_isRight = false;
  std::string_view m_name;
  std::vector<Attribute> m_attributes;
  std::string_view m_space;  // in front of the end
  std::string_view m_end;
};

/// What the start tags of one name look like. It refers to their texts, which must outlive it. A document determines
/// how many attributes it has, so nothing here takes time in proportion to them for each tag.
class TagModel {
 public:
  TagModel() = default;
  TagModel(TagModel const&) = delete;
  TagModel& operator=(TagModel const&) = delete;

  /// Add the attributes of \p tag that were in no tag so far, each after its neighbour. Returns whether there were any.
  bool Learn(StartTag const& tag);
  /// Call this between Learn() and Shaped().
  void Number();

  /// Which declarations of prefixes are added.
  enum class Declarations { kOwn, kAll };
  /// \p tag, with the order of attributes, the white space and the spelling of values that this model has wherever both
  /// say the same. Both are right.
  std::string Shaped(StartTag const& tag, Declarations declarations) const;

 private:
  using Attribute = StartTag::Attribute;
  struct Entry {
    Attribute attribute;
    std::size_t number = 0;
  };

  static void AppendValue(std::string& tag, Attribute const& own, Attribute const& model);

  std::list<Entry> m_entries;
  std::map<std::string_view, std::list<Entry>::iterator> m_byName;
  std::string_view m_space;  // in front of the end of the first tag
  std::string_view m_end;
};

}  // namespace Quillon9
