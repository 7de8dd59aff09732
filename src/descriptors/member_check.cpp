#include "descriptors/member_check.h"

#include <typeinfo>

#include "base/failure_detail.h"
#include "descriptors/descriptor_access.h"
#include "quillon9/binding/collection.h"
#include "xmlio/writer_access.h"

namespace Quillon9Data {

using namespace Quillon9;

// ---- Failures

bool MemberCheck::GoesOn(CXmlWriter const& writer, CQnException& failure, CElementInfo const& member) {
  CheckingWriter* const check = XmlWriterAccess::Checking(writer);
  if (check == nullptr) return false;
  std::string const& name = DescriptorAccess::Name(member);
  bool const hasName = name != "AnyElement";  // of a wildcard
  return check->GoesOnAt(hasName ? name : "", DescriptorAccess::Namespace(member), failure);
}

bool MemberCheck::GoesOn(CXmlWriter const& writer, CQnException& failure, CAttributeInfo const& member) {
  CheckingWriter* const check = XmlWriterAccess::Checking(writer);
  if (check == nullptr) return false;
  std::string const& name = DescriptorAccess::Name(member);
  return check->GoesOn(failure, !name.empty() ? name.c_str() : nullptr);
}

void MemberCheck::ThrowNotSet(char const* name) {
  throw OfKind(FailureKind_MissingElement,
               CQnValidationException(FormatString("The required element [%s] is not set", name)));
}

void MemberCheck::ThrowMoreThanOne(char const* names) {
  throw OfKind(FailureKind_UnexpectedElement,
               CQnValidationException(
                   FormatString("More than one of the elements [%s] is set, but they exclude each other", names)));
}

// ---- Writing

MemberCheck::Result MemberCheck::Write(CheckingWriter& writer, CXmlSerializationContext const& ctx,
                                       CXmlGeneratedClass const* holder, CElementInfo const& member) {
  std::size_t const before = writer.GetStarted();
  try {
    bool const isDone = member.ElementToXml(ctx, holder, &writer);
    return {isDone, writer.GetStarted() != before};
  } catch (CQnException& failure) {
    if (!GoesOn(writer, failure, member)) throw;
    return {true, true};
  }
}

// ---- What a reader refuses

namespace {

template <class... Members>
bool IsOneOf(CElementInfo const& member) {
  return ((typeid(member) == typeid(Members)) || ...);
}

bool HasTag(CXmlGeneratedClass const* holder) {
  return holder->GetClassInfo()->m_elementType == XmlElementType_Element;
}

bool IsRequiredInAll(CElementInfoAll const& member, CXmlSerializationContext const& ctx,
                     CXmlGeneratedClass const* holder) {
  try {
    return !member.Validate(ctx, holder, false, HasTag(holder));
  } catch (CQnException const&) {
    return true;
  }
}

}  // namespace

bool MemberCheck::IsRequired(CElementInfo const& member, CXmlSerializationContext const& ctx,
                             CXmlGeneratedClass const* holder) {
  if (auto const* const inAll = dynamic_cast<CElementInfoAll const*>(&member)) {
    return IsRequiredInAll(*inAll, ctx, holder);
  }
  bool const isExcused = ctx.GetIgnoreMissingMandatoryElements() && HasTag(holder);
  if (IsOneOf<CElementInfoSeqPrimMnd, CElementInfoSeqEnumMnd>(member)) return !isExcused;
  if (IsOneOf<CElementInfoSeqClsMnd>(member)) {
    auto const& object = static_cast<CElementInfoSeqClsMnd const&>(member);
    bool const isGroup = DescriptorAccess::ChildType(object) != XmlElementType_Element;
    return isGroup ? DescriptorAccess::RequiresContent(object) : !isExcused;
  }
  return IsOneOf<CElementInfoSeqAbsClsMnd, CElementInfoSeqUntpdMnd>(member);
}

bool MemberCheck::IsChosen(CElementInfo const& member, CXmlGeneratedClass const* holder) {
  bool const isCollection = dynamic_cast<CElementInfoChoiceCol const*>(&member) != nullptr;
  bool const isObject =
      IsOneOf<CElementInfoChoiceClsOpt, CElementInfoChoiceAbsClsOpt, CElementInfoChoiceUntpdOpt>(member);
  if (!isCollection && !isObject && !IsOneOf<CElementInfoChoicePrimOpt, CElementInfoChoiceEnumOpt>(member))
    return false;
  QnVariant value;
  member.ReadProperty(holder, value);
  if (!value.IsValid()) return false;
  if (isObject) return value.LookAtXmlObject() != nullptr;
  if (!isCollection) return true;
  CXmlCollectionBase const* const collection = value.LookAtXmlCollection();
  return collection != nullptr && collection->GetCount() > 0;
}

void MemberCheck::CheckCountOfChosen(CElementInfo const& member, CXmlSerializationContext const& ctx,
                                     CXmlGeneratedClass const* holder) {
  if (dynamic_cast<CElementInfoChoiceCol const*>(&member) == nullptr || !IsChosen(member, holder)) return;
  QnVariant value;
  member.ReadProperty(holder, value);
  value.LookAtXmlCollection()->ValidateCount(ctx);
}

}  // namespace Quillon9Data
