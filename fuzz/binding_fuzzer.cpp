#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "dynamic_class.h"
#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/values/conversions.h"
#include "tree.h"

namespace {

using namespace Quillon9;
using namespace Quillon9Data;
using namespace Quillon9::Testing;
using Fuzzing::Require;

/// The second octet; the first one contains the options of reading.
enum Options : unsigned {
  kClassMask = 3,
  kFormatted = 4,
  kCompressed = 8,
  kNoDefaults = 16,
  kSuggested = 32,
  kInForm = 64
};

// ---- Classes with members of every kind

constexpr Shape::Options Of(XmlElementGroupType group, XmlElementType type = XmlElementType_Element) {
  return {group, type, -1, type == XmlElementType_Element, false};
}
/// The facet check refuses a char even without facets, so a member of that kind is never written.
constexpr ItemType WritableKind(ItemType kind) { return kind == ItemType_char ? ItemType_string : kind; }

enum Classes { kLeaf, kGroup, kEither, kText, kNillable, kEvery, kAll, kChoice };
/// Properties. Those of elements with a value have the numbers of the kinds; those of attributes follow.
enum Property {
  kAttributes = 30,
  kColour = 60,
  kLeafMember,
  kGroupMember,
  kEitherMember,
  kTextMember,
  kNillableMember,
  kAbstractMember,
  kStrings,
  kDecimals,
  kDates,
  kLeaves,
  kUntyped,
  kUntypedRun,
  kColourAttribute,
  kDefaulted,
  kOtherAttributes
};

char const* ColourText(int value) { return value == 1 ? "red" : value == 2 ? "green" : ""; }
int ColourOf(char const* text) { return std::strcmp(text, "red") == 0 ? 1 : std::strcmp(text, "green") == 0 ? 2 : 0; }

CSmartPtr<CXmlObjectBase> Make(int classId, char const* name);
CSmartPtr<CXmlObjectBase> MakeForElement(CXmlElement* element) {
  return Make(CClassfactoryBase::GetElementType(element) == "Type" ? kText : kLeaf, element->GetLocalName().c_str());
}

Shape const& EveryKind() {
  static Shape const shape(
      Of(XmlElementGroupType_Sequence),
      {
#define QN_VALUE_KIND(number, stem, accessors, type) \
  Prim<CElementInfoSeqPrimOpt>(#stem, number, WritableKind(ItemType_##stem)),
#include "values/item_types.def"
          new CElementInfoSeqEnumOpt("colour", "", kColour, ColourText, ColourOf),
          new CElementInfoSeqClsOpt("leaf", "", kLeafMember, XmlElementType_Element, Make, kLeaf),
          new CElementInfoSeqClsOpt("", "", kGroupMember, XmlElementType_Pseudo, Make, kGroup),
          new CElementInfoSeqClsOpt("", "", kEitherMember, XmlElementType_Pseudo, Make, kEither),
          new CElementInfoSeqClsOpt("text", "urn:f", kTextMember, XmlElementType_Element, Make, kText),
          new CElementInfoSeqClsOpt("nillable", "", kNillableMember, XmlElementType_Element, Make, kNillable),
          new CElementInfoSeqAbsClsOpt("abstract", "", kAbstractMember, XmlElementType_Element, MakeForElement),
          new CElementInfoSeqPrimCol("s", "", kStrings), new CElementInfoSeqPrimCol("n", "", kDecimals),
          new CElementInfoSeqPrimCol("d", "", kDates),
          new CElementInfoSeqClsCol("item", "", kLeaves, XmlElementType_Element),
          new CElementInfoSeqUntpdOpt("any", "", kUntyped, "##any", ""),
          new CElementInfoSeqUntpdCol("AnyElement", "", kUntypedRun)},
      {
#define QN_VALUE_KIND(number, stem, accessors, type) \
  Attribute(#stem, kAttributes + number, true, WritableKind(ItemType_##stem)),
#include "values/item_types.def"
          new CAttributeInfoEnum("colour", "", kColourAttribute, true, ColourText, ColourOf, "red"),
          Attribute("defaulted", kDefaulted, true, ItemType_i4, NoFacets(), "7", "urn:f"),
          new CAttributeInfoAny("other", "", kOtherAttributes, true, "##any", "", "")});
  return shape;
}

Shape const& AllGroup() {
  static Shape const shape(Of(XmlElementGroupType_All),
                           {Prim<CElementInfoAllPrimMnd>("string", ItemType_string),
                            Prim<CElementInfoAllPrimOpt>("decimal", ItemType_decimal, ItemType_decimal),
                            new CElementInfoAllEnumOpt("colour", "", kColour, ColourText, ColourOf),
                            new CElementInfoAllClsOpt("leaf", "", kLeafMember, XmlElementType_Element, Make, kLeaf),
                            new CElementInfoAllClsOpt("", "", kGroupMember, XmlElementType_Pseudo, Make, kGroup),
                            new CElementInfoAllUntpdOpt("any", "", kUntyped, "##any", "")});
  return shape;
}

Shape const& ChoiceGroup() {
  static Shape const shape(
      Of(XmlElementGroupType_Choice),
      {Prim<CElementInfoChoicePrimOpt>("string", ItemType_string),
       Prim<CElementInfoChoicePrimOpt>("date", ItemType_date, ItemType_date),
       new CElementInfoChoiceEnumOpt("colour", "", kColour, ColourText, ColourOf),
       new CElementInfoChoiceClsOpt("leaf", "", kLeafMember, XmlElementType_Element, Make, kLeaf),
       new CElementInfoChoiceClsOpt("", "", kGroupMember, XmlElementType_Pseudo, Make, kGroup),
       new CElementInfoChoicePrimCol("s", "", kStrings),
       new CElementInfoChoiceClsCol("item", "", kLeaves, XmlElementType_Element),
       new CElementInfoChoiceAbsClsOpt("abstract", "", kAbstractMember, XmlElementType_Element, MakeForElement),
       new CElementInfoChoiceUntpdOpt("any", "", kUntyped, "##any", "")});
  return shape;
}

Shape const& ShapeOf(int classId) {
  static CPrimitiveRestrictions const bounded("", -1, -1, "0", "1000000", "", "", -1);
  static Shape const leaf(Of(XmlElementGroupType_Sequence),
                          {Prim<CElementInfoSeqPrimMnd>("v", 0, ItemType_i4, bounded)}, {Attribute("id", 1, false)});
  static Shape const group(Of(XmlElementGroupType_Sequence, XmlElementType_Pseudo),
                           {Prim<CElementInfoSeqPrimMnd>("p", 0), Prim<CElementInfoSeqPrimOpt>("q", 1, ItemType_r8)});
  static Shape const either(Of(XmlElementGroupType_Choice, XmlElementType_Pseudo),
                            {Prim<CElementInfoChoicePrimOpt>("a", 0, ItemType_boolean),
                             new CElementInfoChoiceClsOpt("b", "", 1, XmlElementType_Element, Make, kLeaf)});
  static Shape const text({XmlElementGroupType_Sequence, XmlElementType_Element, 0, false, true},
                          {Prim<CElementInfoSeqPrimOpt>("v", 1)});
  switch (classId) {
    case kEvery: return EveryKind();
    case kAll: return AllGroup();
    case kChoice: return ChoiceGroup();
    case kGroup: return group;
    case kEither: return either;
    case kText: return text;
    default: return leaf;
  }
}

CSmartPtr<CXmlObjectBase> Make(int classId, char const* name) {
  if (classId == kNillable) return new NillableClass(ShapeOf(classId), name);
  return new DynamicClass(ShapeOf(classId), name);
}

constexpr CWhitespaceUtils::WhitespaceRule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

/// Includes the collections that its tables name.
CSmartPtr<DynamicClass> MakeRoot(int classId) {
  CSmartPtr<DynamicClass> const root(new DynamicClass(ShapeOf(classId)));
  root->With(kStrings, new CstringCol("s", "", 0, 20, "", -1, 40, "", "", "", "", -1, kCollapse, nullptr));
  root->With(kDecimals, new CdecimalCol("n", "", 0, -1, "", -1, -1, "", "1e6", "", "", -1, kCollapse, nullptr));
  root->With(kDates, new CdateCol("d", "", 0, -1, "", -1, -1, "", "", "", "", -1, kCollapse, nullptr));
  root->With(kLeaves, new DynamicCollection(ShapeOf(kLeaf), "item", 0, 10));
  root->With(kUntypedRun, new CElementCol("", "##any", "", 0, -1));
  root->With(kOtherAttributes, new CAttributeCol("", "##any", ""));
  return root;
}

// ---- What is documented as lost

/// A decimal that is rounded, or a product with a power of ten, may keep zeros at its end until it is read again.
bool IsReadAgain(CDecimal const& decimal) {
  std::string const text = decimal.ToString();
  return text.find('.') == std::string::npos || text.back() != '0';
}

/// Sixteen digits do not always restore the number.
bool IsReadAgain(double number) {
  QnVariant printed;
  printed.SetR8(number);
  QnVariant again;
  again.SetR8(CConversions::r8FromString(printed.ToString(), kCollapse));
  return again.ToString() == printed.ToString();
}

bool IsReadAgain(CdecimalCol const& decimals) {
  for (int i = 0; i < decimals.GetCount(); ++i) {
    if (!IsReadAgain(decimals.Item(i))) return false;
  }
  return true;
}

bool IsReadAgain(QnVariant const& value) {
  if (value.GetItemType() == ItemType_duration) return Fuzzing::IsReadAgain(value.GetDuration());
  if (value.GetItemType() == ItemType_decimal) return IsReadAgain(value.GetDecimal());
  if (value.GetItemType() == ItemType_r8) return IsReadAgain(value.GetR8());
  if (value.GetItemType() == ItemType_xmlCollection) {
    CSmartPtr<CXmlCollectionBase> const collection = value.GetXmlCollection();
    auto const* const decimals = dynamic_cast<CdecimalCol const*>(static_cast<CXmlCollectionBase const*>(collection));
    return decimals == nullptr || IsReadAgain(*decimals);
  }
  return value.GetItemType() != ItemType_year || (value.GetYear() >= 1000 && value.GetYear() <= 9999);
}

bool AreReadAgain(DynamicClass const& object) {
  for (auto const& property : object.m_properties) {
    if (!IsReadAgain(property.second)) return false;
  }
  return true;
}

/// With the suggested encodings, a float is made of its first octet only.
bool HasFloat(DynamicClass const& object) {
  for (auto const& property : object.m_properties) {
    if (property.second.GetItemType() == ItemType_r4) return true;
  }
  return false;
}

/// Fast Infoset cannot hold text after a child, which is where untyped content has it.
bool IsUnmixed(CXmlElement const& element) {
  return element.GetFirstElement() == nullptr || element.GetText().find_first_not_of(" \t\n") == std::string::npos;
}

bool IsTakenWhole(CXmlElement const& root, bool isText) {
  return Fuzzing::All(root, Fuzzing::IsWrittenWhole) && (isText || Fuzzing::All(root, Fuzzing::FitsText));
}

// ---- The run

CXmlSerializationContext ContextOf(unsigned reading, unsigned writing) {
  std::string letters;
  for (unsigned i = 0; i < 6; ++i) {
    bool const isExcluded = i == 5 && (reading & 1) != 0;  // missing elements together with unknown ones
    if ((reading & 1u << i) != 0 && !isExcluded) letters += "UCIANM"[i];
  }
  CXmlSerializationContext context = Ignoring(letters);
  context.SetNoOptionalAttributeDefaultOutput((writing & kNoDefaults) != 0);
  if ((writing & kSuggested) != 0) context.GetFIContext()->SetSuggestedValues();
  // Fast Infoset writes the name of a type in an unbound namespace as a separate attribute.
  context.GetNamespaceAliases()->Add("t", "urn:type");
  return context;
}

/// Requires that reading \p document gives an object that writes \p text.
void RequireObject(CBinaryData const& document, int classId, CXmlSerializationContext const& context,
                   std::string const& text, char const* what) {
  Fuzzing::LimitContent(1u << 26);
  CSmartPtr<DynamicClass> const object = MakeRoot(classId);
  try {
    object->FromXmlStream(document, context);
    Fuzzing::RequireEqual(object->Text(context), text, what);
  } catch (CQnException const& failure) {
    Require(false, what, failure.GetFullMessage(), text);
  }
}

/// The white space of formatted output becomes part of untyped content.
bool IsFormattable(DynamicClass& object) {
  return !object.m_properties[kUntyped].IsValid() &&
         object.m_properties[kUntypedRun].GetXmlCollection()->GetCount() == 0;
}

CBinaryData AsText(DynamicClass& object, unsigned writing, CXmlSerializationContext context) {
  bool const isFormatted = (writing & kFormatted) != 0 && IsFormattable(object);
  context.SetKeepForm((writing & kInForm) != 0 && IsFormattable(object));
  if ((writing & kCompressed) != 0) {
    try {
      return object.ToXmlStream(true, isFormatted, XmlEncoding_UTF8, EOLType_LF, context, CompressionType_GZip);
    } catch (CQnException const&) {  // a text that is too short cannot be shortened
    }
  }
  return object.ToXmlStream(true, isFormatted, XmlEncoding_UTF8, EOLType_LF, context);
}

void WriteAndRead(DynamicClass& object, int classId, unsigned writing, CXmlSerializationContext const& context) {
  std::string text;
  try {
    text = object.Text(context);
  } catch (CQnException const&) {
    return;  // facets are checked now
  }
  RequireObject(AsText(object, writing, context), classId, context, text, "an object written as text is read again");
  CXmlDocument document(context);
  document.LoadXml(text.c_str());
  if (!Fuzzing::All(*document.GetDocumentElement(), IsUnmixed)) return;
  bool const isSuggested = (writing & kSuggested) != 0;
  if (isSuggested && HasFloat(object)) return;
  CBinaryData octets;
  try {
    octets = object.ToFastInfosetStream(FInfoDecl_None, context);
  } catch (CQnException const& failure) {
    Require(isSuggested, "what is written as text is written as Fast Infoset", failure.GetFullMessage(), text);
    return;  // the suggested encodings cannot represent every value
  }
  RequireObject(octets, classId, context, text, "an object written as Fast Infoset is read again");
}

}  // namespace

/// A document for one of three classes. The object read from it can be written in either format and read back
/// unchanged.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::Input input(data, size);
  unsigned const reading = input.Options();
  unsigned const writing = input.Options();
  int const classId = (writing & kClassMask) == 1 ? kAll : (writing & kClassMask) == 2 ? kChoice : kEvery;
  Fuzzing::LimitContent(1u << 20);
  CXmlSerializationContext const context = ContextOf(reading, writing);
  CBinaryData document;
  document.Append(input.Data(), static_cast<unsigned long>(input.Size()));
  CSmartPtr<DynamicClass> const object = MakeRoot(classId);
  CXmlDocument tree(context);
  CXmlSerializationContext keeping = context;
  keeping.SetKeepForm((writing & kInForm) != 0);
  try {
    tree.LoadXmlStream(input.Data(), input.Size());
    object->FromXmlStream(document, keeping);
  } catch (CQnException const&) {
    return 0;
  }
  bool const isText = input.Size() > 0 && *input.Data() == '<' && input.Rest().find("finf") == std::string::npos;
  if (!IsTakenWhole(*tree.GetDocumentElement(), isText) || !AreReadAgain(*object)) return 0;
  object->SetElementName("root");
  WriteAndRead(*object, classId, writing, context);
  return 0;
}
