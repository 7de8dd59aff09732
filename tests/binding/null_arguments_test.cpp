// Each public constructor that takes a pointer can be called with a literal null: no other overload makes the call
// ambiguous, in particular none that the caller cannot see. The test is that this compiles.

#include <gtest/gtest.h>

#include <utility>

#include "expect_failure.h"
#include "quillon9/quillon9.h"

namespace Quillon9 {
namespace {

using namespace Quillon9Data;

#define QN_TAKES(...) static_assert(sizeof(decltype(new __VA_ARGS__)) != 0)

// One pointer.
#define QN_TAKES_NULL(Class) \
  QN_TAKES(Class(nullptr));  \
  QN_TAKES(Class(0))
QN_TAKES_NULL(CXmlElement);
QN_TAKES_NULL(CElement);
QN_TAKES_NULL(CNode);
QN_TAKES_NULL(CSmartPtr<CElement>);
QN_TAKES_NULL(CInstanceMonitor);
QN_TAKES_NULL(CBigInteger);
QN_TAKES_NULL(CDecimal);
QN_TAKES_NULL(CDateTime);
QN_TAKES_NULL(CBinaryData);
QN_TAKES_NULL(CFastInfosetBinaryData);

// Pointers with other arguments.
QN_TAKES(CElement(nullptr, nullptr));
QN_TAKES(CElement(0, 0));
QN_TAKES(CElement(nullptr, ""));
QN_TAKES(CElement(0, 0, 0, 0));
QN_TAKES(CElement(static_cast<CXmlObjectBase*>(nullptr), 0));
QN_TAKES(CAttribute(0, 0, 0));
QN_TAKES(CAttributeCol(0, 0, 0));
QN_TAKES(CElementCol(0, 0, 0, 0, 0));
QN_TAKES(CBinaryData(0, 0, false));
QN_TAKES(CFastInfosetBinaryData(0, 0, false));
QN_TAKES(CBinaryData::CDataHolder(0, 0));
QN_TAKES(CBinaryData::CDataHolder(0, 0, false));
QN_TAKES(CFileTextStream(0, XmlEncoding_UTF8));
QN_TAKES(CFileBinaryStream(0, XmlEncoding_UTF8));
QN_TAKES(CFileBinaryStream(0, XmlEncoding_UTF8, CBinaryData()));
QN_TAKES(CXmlWriter::CXmlWriterContext("", "", 0));
QN_TAKES(CXmlWriter::CXmlWriterContext("", "", "", {}, 0));
QN_TAKES(CParentElementInfo(XmlElementGroupType_All, XmlElementType_Element, 0, 0, 0, false, false));
QN_TAKES(CAttributeInfoPrimitive(0, 0, 0, false, ItemType_i4, 0, CWhitespaceUtils::WhitespaceRule_None,
                                 std::declval<CPrimitiveRestrictions>(), 0));
QN_TAKES(CAttributeInfoEnum(0, 0, 0, false, 0, 0, 0));
QN_TAKES(CAttributeInfoAny(0, 0, 0, false, 0, 0, 0));

#define QN_TAKES_NULLS(stem, ...)               \
  QN_TAKES(CElementInfoSeq##stem(__VA_ARGS__)); \
  QN_TAKES(CElementInfoAll##stem(__VA_ARGS__)); \
  QN_TAKES(CElementInfoChoice##stem(__VA_ARGS__))
QN_TAKES_NULLS(PrimOpt, 0, 0, 0, ItemType_i4, 0, CWhitespaceUtils::WhitespaceRule_None,
               std::declval<CPrimitiveRestrictions>());
QN_TAKES_NULLS(EnumOpt, 0, 0, 0, 0, 0);
QN_TAKES_NULLS(ClsOpt, 0, 0, 0, XmlElementType_Element, 0, 0);
QN_TAKES_NULLS(AbsClsOpt, 0, 0, 0, XmlElementType_Element, 0);
QN_TAKES_NULLS(UntpdOpt, 0, 0, 0, 0, 0);
QN_TAKES(CElementInfoSeqClsCol(0, 0, 0, XmlElementType_Element));
QN_TAKES(CElementInfoChoiceClsCol(0, 0, 0, XmlElementType_Element));

TEST(NullArguments, OfAnElementAreANullName) {
  EXPECT_FAILURE(CQnInvalidNamespaceException, "Element Name must have a value", CElement(nullptr, nullptr));
  CXmlElement const element(nullptr);
  EXPECT_EQ(nullptr, element.GetDocument());
  EXPECT_EQ(1970, CDateTime(0).GetYear());
}

}  // namespace
}  // namespace Quillon9
