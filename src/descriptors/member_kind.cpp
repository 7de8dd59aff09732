#include "descriptors/member_kind.h"

#include <typeindex>
#include <unordered_map>
#include <utility>

#include "descriptors/descriptor_access.h"

namespace Quillon9Data {

namespace {

using Kind = Quillon9::FailedScans::Kind;

struct Rule {
  Kind kind;  // for a member whose object, if it holds one of a known class, has a tag
  XmlElementType (*childType)(CElementInfo const&) = nullptr;
};

template <class Member>
std::pair<std::type_index const, Rule> Value(Kind kind) {
  return {typeid(Member), Rule{kind}};
}

template <class Member>
XmlElementType ChildTypeOf(CElementInfo const& member) {
  return DescriptorAccess::ChildType(static_cast<Member const&>(member));
}

template <class Member>
std::pair<std::type_index const, Rule> Object(Kind kind) {
  return {typeid(Member), Rule{kind, ChildTypeOf<Member>}};
}

}  // namespace

Kind KindOf(CElementInfo const& member) {
  // Never freed, because destructors of a program's globals may still read.
  static auto const& rules = *new std::unordered_map<std::type_index, Rule>{
      Value<CElementInfoSeqPrimMnd>(Kind::kRequired),   Value<CElementInfoSeqPrimOpt>(Kind::kNamed),
      Value<CElementInfoSeqEnumMnd>(Kind::kRequired),   Value<CElementInfoSeqEnumOpt>(Kind::kNamed),
      Object<CElementInfoSeqClsMnd>(Kind::kHeld),       Object<CElementInfoSeqClsOpt>(Kind::kNamed),
      Value<CElementInfoSeqAbsClsMnd>(Kind::kRequired), Value<CElementInfoSeqAbsClsOpt>(Kind::kNamed),
      Value<CElementInfoAllPrimMnd>(Kind::kNamed),      Value<CElementInfoAllPrimOpt>(Kind::kNamed),
      Value<CElementInfoAllEnumMnd>(Kind::kNamed),      Value<CElementInfoAllEnumOpt>(Kind::kNamed),
      Object<CElementInfoAllClsMnd>(Kind::kHeld),       Object<CElementInfoAllClsOpt>(Kind::kNamed),
      Value<CElementInfoChoicePrimOpt>(Kind::kNamed),   Value<CElementInfoChoiceEnumOpt>(Kind::kNamed),
      Object<CElementInfoChoiceClsOpt>(Kind::kNamed),   Value<CElementInfoChoiceAbsClsOpt>(Kind::kNamed),
  };
  auto const found = rules.find(typeid(member));
  if (found == rules.end()) return Kind::kOther;
  Rule const& rule = found->second;
  bool const isGroup = rule.childType != nullptr && rule.childType(member) != XmlElementType_Element;
  return isGroup ? Kind::kGroup : rule.kind;
}

}  // namespace Quillon9Data
