// How a generated class is checked before it is written: as generated_class_writing.cpp writes it, but going on after
// each failure, and with a look at what a reader would refuse.

#include <string>
#include <vector>

#include "base/nesting_guard.h"
#include "descriptors/descriptor_access.h"
#include "descriptors/member_check.h"
#include "descriptors/table_check.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generated_class.h"
#include "xmlio/checking_writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

using namespace Quillon9Data;

void CXmlGeneratedClass::CheckElement(CheckingWriter& writer, bool isRoot, char const* ns,
                                      CXmlSerializationContext const& ctx, bool inChoice) const {
  std::size_t const level = writer.GetLevel();
  CheckingWriter::Holder holder(writer);
  try {
    if constexpr (kChecksTables) CheckTablesOnce(*this);
    bool const hasTag = GetClassInfo()->m_elementType == XmlElementType_Element;
    NestingGuard const guard(hasTag);
    if (hasTag) CheckStart(writer, isRoot, ns, ctx, inChoice);
    holder.Begin();
    INillable const* const nillable = AsNillable(&XmlWriterAccess::PlainTypes(writer));
    if (nillable != nullptr && nillable->IsNil()) {
      writer.WriteAttributeNil();
    } else {
      CheckContent(writer, ctx, inChoice);
    }
    if (hasTag) writer.WriteEndElement();
  } catch (CQnException& failure) {
    if (!writer.GoesOnFrom(level, failure)) throw;
  }
}

void CXmlGeneratedClass::CheckStart(CheckingWriter& writer, bool isRoot, char const* ns,
                                    CXmlSerializationContext const& ctx, bool inChoice) const {
  std::size_t const level = writer.GetLevel();
  try {
    WriteStart(&writer, isRoot, ns, ctx, inChoice);
  } catch (CQnException& failure) {
    if (writer.GetLevel() == level || !writer.GoesOnFrom(level + 1, failure)) throw;
  }
}

void CXmlGeneratedClass::CheckAttributes(CheckingWriter& writer, CXmlSerializationContext const& ctx,
                                         CElementInfo** elements, CAttributeInfo** attributes) const {
  for (; *attributes != nullptr; ++attributes) {
    try {
      (*attributes)->AttributeToXml(ctx, this, &writer);
    } catch (CQnException& failure) {
      if (!MemberCheck::GoesOn(writer, failure, **attributes)) throw;
    }
  }
  for (; *elements != nullptr; ++elements) (*elements)->PseudoChildAttributeToXml(ctx, this, &writer);
}

void CXmlGeneratedClass::CheckContent(CheckingWriter& writer, CXmlSerializationContext const& ctx,
                                      bool inChoice) const {
  switch (GetClassInfo()->m_groupType) {
    case XmlElementGroupType_Sequence:
    case XmlElementGroupType_All: CheckMembers(writer, ctx); break;
    case XmlElementGroupType_Choice: CheckChoice(writer, ctx, inChoice); break;
    default: throw CQnException("Unknown XML Group Type");
  }
  int const textProperty = GetClassInfo()->m_textPropertyIndex;
  if (textProperty == -1) return;
  QnVariant text;
  ReadProperty(textProperty, text);
  writer.WriteString(text.GetString(), text.GetItemType());
}

namespace {

void TellMissing(CheckingWriter& writer, char const* name) {
  try {
    MemberCheck::ThrowNotSet(name);
  } catch (CQnException& failure) {
    if (!writer.GoesOn(failure)) throw;
  }
}

void TellMoreThanOne(CheckingWriter& writer, std::string const& names) {
  try {
    MemberCheck::ThrowMoreThanOne(names.c_str());
  } catch (CQnException& failure) {
    if (!writer.GoesOn(failure)) throw;
  }
}

}  // namespace

// A class without a tag may be absent as a whole. So it lacks something only if it has something else.
void CXmlGeneratedClass::CheckMembers(CheckingWriter& writer, CXmlSerializationContext const& ctx) const {
  bool const hasTag = GetClassInfo()->m_elementType == XmlElementType_Element;
  std::size_t const before = writer.GetStarted();
  std::vector<char const*> missing;
  for (CElementInfo** member = GetClassElementInfo(); *member != nullptr; ++member) {
    bool const isWritten = MemberCheck::Write(writer, ctx, this, **member).isWritten;
    if (!isWritten && writer.JudgesReading() && MemberCheck::IsRequired(**member, ctx, this)) {
      missing.push_back(DescriptorAccess::Name(**member).c_str());
    }
    if (!hasTag && writer.GetStarted() == before) continue;
    for (char const* const name : missing) TellMissing(writer, name);
    missing.clear();
  }
}

// The first member that has something is written. A reader that takes it refuses the rest.
void CXmlGeneratedClass::CheckChoice(CheckingWriter& writer, CXmlSerializationContext const& ctx, bool inChoice) const {
  std::string chosen;
  bool hasMore = false;
  for (CElementInfo** member = GetClassElementInfo(); *member != nullptr; ++member) {
    std::string const& name = DescriptorAccess::Name(**member);
    if (chosen.empty()) {
      if (writer.JudgesReading()) MemberCheck::CheckCountOfChosen(**member, ctx, this);
      if (MemberCheck::Write(writer, ctx, this, **member).isDone) chosen = name;
    } else if (writer.JudgesReading() && MemberCheck::IsChosen(**member, this)) {
      chosen += ", " + name;
      hasMore = true;
    }
  }
  if (chosen.empty()) return RequireChoice(ctx, inChoice);
  if (hasMore) TellMoreThanOne(writer, chosen);
}

}  // namespace Quillon9
