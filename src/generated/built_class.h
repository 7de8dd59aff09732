#pragma once

#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "generated/content.h"
#include "generated/value_rule.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/generated/class_tables.h"

namespace Quillon9 {

/// All rows of a class in the order of its content: those of its bases come first, unless it replaces them.
std::vector<CElementRow const*> ElementRowsOf(CClassRow const& row);
/// Whether an object of this class may be written without any element.
bool MayBeEmpty(CClassRow const& row);

/// The number under which the library reaches a text that has a rule, which is not that of its property.
constexpr int kConvertedText = std::numeric_limits<int>::max();

/// What is made of the rows of one class. Immutable.
class BuiltClass {
 public:
  /// An attribute whose values have prefixes, or the attributes of a wildcard, which may have any values.
  struct PrefixUser {
    int property;
    char const* name;  ///< null for a wildcard
    char const* ns;
  };

  /// What is known about one property.
  struct Member {
    CElementRow const* element = nullptr;      ///< its row, if it is an element
    CValueType const* value = nullptr;         ///< of a value
    std::unique_ptr<ValueRule const> rule;     ///< null for a value that is not checked
    bool isRequired = false;                   ///< an element that must occur in each object
    std::vector<std::pair<int, int>> choices;  ///< the choices that it is in, and the alternative of each
  };

  /// A property of a base that a restriction removed.
  struct Removed {
    int property;
    char const* name;
  };

  explicit BuiltClass(CClassTables const& tables);
  ~BuiltClass();
  BuiltClass(BuiltClass const&) = delete;
  BuiltClass& operator=(BuiltClass const&) = delete;

  Quillon9Data::CParentElementInfo* Info() const { return const_cast<Quillon9Data::CParentElementInfo*>(&m_info); }
  Quillon9Data::CElementInfo** Elements() const {
    return const_cast<Quillon9Data::CElementInfo**>(m_elementTable.data());
  }
  Quillon9Data::CAttributeInfo** Attributes() const {
    return const_cast<Quillon9Data::CAttributeInfo**>(m_attributeTable.data());
  }
  int PropertyCount() const { return static_cast<int>(m_members.size()); }
  /// The particles of the element table; for a class without a tag, its round.
  std::vector<Particle> const& Content() const { return m_elements; }
  /// \p property is a number that the class has.
  Member const& At(int property) const { return m_members[static_cast<std::size_t>(property)]; }
  std::vector<Removed> const& RemovedProperties() const { return m_removed; }
  std::vector<PrefixUser> const& PrefixUsers() const { return m_prefixUsers; }
  /// Whether the text has prefixes.
  bool HasNamesInText() const { return m_textRule != nullptr && ValueRule::HasNames(m_textRule->GetType()); }
  /// The properties whose values are of type xs:ID.
  std::vector<int> const& IdProperties() const { return m_ids; }
  /// The rule of the text of the element; null if that is plain text.
  ValueRule const* TextRule() const { return m_textRule; }
  /// The property that holds the text; -1 for none.
  int TextProperty() const { return m_textProperty; }
  /// Whether that is the text of mixed content.
  bool IsMixed() const { return m_isMixed; }
  /// The content of a class without a tag.
  GroupInfo const& Round() const { return *m_round; }
  /// The properties of each alternative of a choice.
  std::vector<std::vector<int>> const& Alternatives(int choice) const {
    return m_choices[static_cast<std::size_t>(choice)].alternatives;
  }
  /// The number of the choice that begins with \p row; -1 for none.
  int FindChoice(CElementRow const* row) const;

 private:
  struct Choice {
    CElementRow const* row;
    std::vector<std::vector<int>> alternatives;
  };
  using RowList = std::vector<CElementRow const*>;

  void NoteProperties(CClassRow const& row);
  void NoteElement(CElementRow const& element);
  void NoteAttribute(CAttributeRow const& attribute);
  void NoteRemoved(CClassRow const& row);
  void NoteRoles(CClassRow const& row);
  void NoteChoices(RowList const& rows);
  void NoteText(CClassRow const& row);
  void MakeElements(CClassRow const& row, RowList const& rows);
  void MakeAttributes(CClassRow const& row);
  Particle MakeParticle(RowList const& rows, std::size_t& at, bool isInGroup) const;
  std::vector<Particle> MakeParticles(RowList const& rows, std::size_t& at) const;
  Member& Noted(int property) { return m_members[static_cast<std::size_t>(property)]; }

  Quillon9Data::CParentElementInfo m_info;
  std::vector<Member> m_members;
  std::vector<Removed> m_removed;
  std::vector<PrefixUser> m_prefixUsers;
  std::vector<int> m_ids;
  std::vector<Choice> m_choices;
  ValueRule const* m_textRule = nullptr;
  int m_textProperty = -1;
  bool m_isMixed = false;
  std::vector<Particle> m_elements;
  std::vector<std::unique_ptr<Quillon9Data::CAttributeInfo>> m_attributes;
  std::vector<Quillon9Data::CElementInfo*> m_elementTable;  // both end with a null pointer
  std::vector<Quillon9Data::CAttributeInfo*> m_attributeTable;
  GroupInfo const* m_round = nullptr;
};

}  // namespace Quillon9
