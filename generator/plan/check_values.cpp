#include "plan/check_values.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "plan/names.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/variant.h"

namespace Quillon9Generator::Plan {

namespace {

using Quillon9::CWhitespaceUtils;
using Quillon9::ItemType;

/// Whether the library holds all values of this kind that a schema can give.
bool HoldsAll(ItemType kind) {
  return kind == Quillon9::ItemType_boolean || (kind >= Quillon9::ItemType_i1 && kind <= Quillon9::ItemType_ui8);
}

std::vector<std::string> ValuesIn(ValueType const& type, std::string const& text) {
  return type.item != nullptr ? ItemsOf(text) : std::vector<std::string>{text};
}

class ValueCheck {
 public:
  explicit ValueCheck(Schema::Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  void Check(Member& member) {
    if (member.MayHaveDefault() && member.schemaPlace.file != nullptr) CheckDeclaration(member, member.schemaPlace);
  }

  /// Of something that has a value with a default or fixed value.
  template <class Declaration>
  void CheckDeclaration(Declaration& declaration, Schema::Place const& place) {
    ValueType& type = declaration.value;
    CheckText(type, declaration.name, place, declaration.defaultValue, "default");
    CheckText(type, declaration.name, place, declaration.fixedValue, "fixed");
    if (declaration.fixedValue) type.CompareByMember();
    if (!type.Single().isQualifiedName || (!declaration.defaultValue && !declaration.fixedValue)) return;
    m_diagnostics.Warning(place, "the qualified name in \"" + declaration.name.local +
                                     "\", which has a default or fixed value, is kept as text; its prefix is not "
                                     "declared on writing");
    KeepAsText(type);
  }

 private:
  void CheckText(ValueType const& whole, Schema::QualifiedName const& name, Schema::Place const& place,
                 std::optional<std::string>& text, char const* what) {
    if (!text) return;
    std::string const subject = std::string("the ") + what + " value \"" + *text + "\" of \"" + name.local + "\"";
    ValueType const& type = whole.Single();
    for (std::string const& value : ValuesIn(whole, *text)) {
      if (type.enumeration != nullptr) {
        if (type.enumeration->Find(value) != nullptr) continue;
        return m_diagnostics.Error(place, subject + " is none of the enumeration");
      }
      if (type.kind == Quillon9::ItemType_string || IsReadable(type.kind, value)) continue;
      if (HoldsAll(type.kind)) return m_diagnostics.Error(place, subject + " is no value of its type");
      m_diagnostics.Warning(place, subject + " is not supported and dropped");
      return text.reset();
    }
  }

  static void KeepAsText(ValueType& value) {
    value.isQualifiedName = false;
    value.values.clear();  // a text does not say what they are compared with
    if (value.item == nullptr) return;
    ValueType item = *value.item;
    item.isQualifiedName = false;
    item.values.clear();
    value.item = std::make_shared<ValueType const>(std::move(item));
  }

  Schema::Diagnostics& m_diagnostics;
};

}  // namespace

bool IsReadable(ItemType kind, std::string const& text) {
  try {
    Quillon9::QnVariant value;
    value.FromString(text, kind, CWhitespaceUtils::WhitespaceRule_Collapse);
    return true;
  } catch (Quillon9::CQnException const&) {
    return false;
  }
}

void CheckValues(Plan& plan, Schema::Diagnostics& diagnostics) {
  ValueCheck check(diagnostics);
  for (auto const& cls : plan.classStorage) {
    for (Member& member : cls->members) check.Check(member);
    for (Member& member : cls->restated) {
      if (member.fixedValue) member.value.CompareByMember();
    }
  }
  for (auto const& group : plan.groupStorage) {
    for (ElementGroup::Element& element : group->elements) check.CheckDeclaration(element, element.place);
  }
  for (Namespace& ns : plan.namespaces) {
    for (Root& root : ns.roots) check.CheckDeclaration(root, root.place);
  }
}

}  // namespace Quillon9Generator::Plan
