#include "quillon9/binding/object_base.h"

#include <gtest/gtest.h>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9 {
namespace {

using namespace Testing;

/// Makes the helpers that generated setters call accessible.
class Setters : public DynamicClass {
 public:
  using CXmlObjectBase::Choice_CollectionChanged;
  using CXmlObjectBase::Choice_Read_Collection;
  using CXmlObjectBase::Choice_SelectElement;
  using CXmlObjectBase::Choice_SetElementValid;
  using CXmlObjectBase::Throw_IfElementNameDiffers;
  using CXmlObjectBase::Throw_IfPropertyIsNull;
  using DynamicClass::DynamicClass;
};

class ObjectBaseTest : public testing::Test {
 protected:
  Shape m_shape{{}, {}};
  Setters object{m_shape, "object"};
};

TEST_F(ObjectBaseTest, CountsReferencesFromZero) {
  auto* const counted = new DynamicClass(m_shape);
  EXPECT_EQ(1, counted->AddRef());
  CSmartPtr<DynamicClass> first(counted);
  CSmartPtr<CXmlObjectBase> second(first);
  first = first.Get();
  EXPECT_EQ(2, counted->Release());
  first = nullptr;
  EXPECT_EQ(2, second->AddRef());
  EXPECT_EQ(1, second->Release());
}

TEST_F(ObjectBaseTest, ChoiceHelpers) {
  std::string selected;
  object.Choice_SelectElement("a", nullptr, selected);
  EXPECT_EQ("a", selected);
  object.Choice_SelectElement("b", nullptr, selected);
  EXPECT_EQ("a", selected);
  EXPECT_FAILURE(CQnInvalidStateException,
                 "The Property [a] is already set. Only one element within this class bay be set at a time",
                 object.Choice_SelectElement("b", &object, selected));
  object.Choice_SelectElement("a", nullptr, selected);
  EXPECT_EQ("", selected);

  object.Choice_CollectionChanged("c", 0, selected);
  EXPECT_EQ("", selected);
  object.Choice_CollectionChanged("c", 2, selected);
  EXPECT_EQ("c", selected);
  object.Choice_CollectionChanged("d", 0, selected);
  EXPECT_FAILURE(CQnInvalidStateException,
                 "The Property [c] is already set. Only one element within this class bay be set at a time",
                 object.Choice_CollectionChanged("d", 1, selected));
  object.Choice_SetElementValid(true, "c", selected);
  EXPECT_EQ("c", selected);
  object.Choice_SetElementValid(false, "d", selected);
  EXPECT_FAILURE(CQnInvalidStateException,
                 "The Property  is already set. Only one element within this class bay be set at a time",
                 object.Choice_SetElementValid(true, "a", selected));
}

TEST_F(ObjectBaseTest, SetterGuards) {
  object.Throw_IfElementNameDiffers(nullptr, "x");
  object.Throw_IfElementNameDiffers(&object, "object");
  EXPECT_FAILURE(CQnInvalidParamException,
                 "This property requrires an element with the name x the element being set has the element name object",
                 object.Throw_IfElementNameDiffers(&object, "x"));
  EXPECT_FAILURE(CQnInvalidParamException, "The Property [p] is mandatory, it may node be NULL",
                 object.Throw_IfPropertyIsNull(nullptr, "p"));
}

TEST_F(ObjectBaseTest, ReadsACollectionOfAChoiceOnce) {
  Shape const item({}, {});
  DynamicCollection items(item, "i", 0, 2);
  CXmlDocument document;
  document.LoadXml("<r><x/><i/><i/><i/></r>");
  CXmlElement* const root = document.GetDocumentElement();
  CXmlElement* cursor = root->GetFirstElement();
  CXmlElement* const x = cursor;
  long count = 0;
  CXmlSerializationContext const ctx;
  object.Choice_Read_Collection(&items, root, cursor, count, ctx);
  EXPECT_EQ(x, cursor);
  EXPECT_EQ(0, count);
  cursor = cursor->GetNextSiblingElement();
  EXPECT_FAILURE(CQnValidationException, "The Maximum number of [i] elements allowed in this collection is 2",
                 object.Choice_Read_Collection(&items, root, cursor, count, ctx));
  EXPECT_EQ(nullptr, cursor) << "the cursor has moved before the count is judged";
  EXPECT_EQ(0, count);
  count = 1;
  cursor = x->GetNextSiblingElement();
  object.Choice_Read_Collection(&items, root, cursor, count, ctx);
  EXPECT_EQ(3, items.GetCount());
}

TEST_F(ObjectBaseTest, EveryRouteReadsTheSame) {
  Shape const shape({}, {Prim<Quillon9Data::CElementInfoSeqPrimMnd>("v", 0)});
  char const document[] = "<other><v>1</v></other>";
  std::string const path = testing::TempDir() + "quillon9_routes.xml";
  DynamicClass source(shape);
  source.FromXml(document);
  EXPECT_EQ(document, source.Text()) << "the object takes the name of the document element";
  source.ToXmlFile(path.c_str());
  CBinaryData stream = source.ToXmlStream();

  DynamicClass back(shape);
  auto const expectRead = [&](char const* route) {
    EXPECT_EQ(document, back.Text()) << route;
    back.m_properties.clear();
  };
  back.FromXml(L"<other><v>1</v></other>");
  expectRead("wide text");
  back.FromXmlFile(path.c_str());
  expectRead("file");
  back.FromXmlStream(stream);
  expectRead("stream");
  back.FromXmlStream(stream.GetData(), stream.GetLength());
  expectRead("bytes");
  CXmlDocument tree;
  tree.LoadXml(document);
  back.FromXmlElement(tree.GetDocumentElement());
  expectRead("tree");
  EXPECT_FAILURE(CQnInvalidParamException, "The element to read from may not be NULL",
                 back.FromXmlElement(static_cast<CXmlElement const*>(nullptr)));
  EXPECT_FAILURE(CQnException, "XML String is empty!", back.FromXml(""));
  std::remove(path.c_str());
}

}  // namespace
}  // namespace Quillon9
