#include "quillon9/descriptors/generic_content.h"

#include <gtest/gtest.h>

#include <memory>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9 {
namespace {

using namespace Testing;

std::string Text(CElement const& element) {
  return element.ToXml(false, false, EOLType_LF, CXmlSerializationContext::m_defaultContext);
}
std::string const kNesting = "The element nesting exceeds the limit of 1000 levels";

TEST(Element, IsBuiltByHand) {
  CSmartPtr<CElement> const list(new CElement("list"));
  list->GetAttributes()->Add("kind", "short", "");
  CSmartPtr<CElement> const item = list->GetElements()->Add("item", "");
  item->SetText("1 < 2");
  list->GetElements()->Add(new CElement("item", "urn:i"));
  list->SetText("behind");
  EXPECT_EQ("<list kind=\"short\"><item>1 &lt; 2</item><AA:item xmlns:AA=\"urn:i\"/>behind</list>", Text(*list));
  EXPECT_EQ("urn:i", list->FindElement("item", "urn:i")->GetNamespace());
  EXPECT_EQ("short", list->FindAttribute("kind")->GetValue());
  EXPECT_FALSE(list->FindElement("item", "urn:other") || list->FindAttribute("none"));
  std::string names;
  for (CElement const& child : *list->GetElements()) names += child.GetName() + ";";
  for (CAttribute& attribute : *list->GetAttributes()) attribute.SetValue("long");
  EXPECT_EQ("item;item;", names);
  EXPECT_EQ("long", list->GetAttributes()->Item(0)->GetValue());
  EXPECT_FALSE(list->GetElements()->Item(2) || list->GetElements()->Item(-1));
}

TEST(Element, ConstructorsTestTheNamespace) {
  std::string const refused =
      "Invalid namespace [urn:t]. The namespace must be one of [##other] where the target namespace is [urn:t]";
  EXPECT_FAILURE(CQnInvalidNamespaceException, "Element Name must have a value", CElement(nullptr));
  EXPECT_FAILURE(CQnInvalidNamespaceException, "Namespace Restriction must have a value",
                 CElement("a", "", nullptr, ""));
  EXPECT_FAILURE(CQnInvalidNamespaceException, "Target Namespace must have a value",
                 CElement("a", "", "##any", nullptr));
  EXPECT_FAILURE(CQnInvalidNamespaceException, "Invalid Namespace [##any]", CElement("a", "##any"));
  EXPECT_FAILURE(CQnInvalidNamespaceException, refused, CElement("a", "urn:t", "##other", "urn:t"));
  CElement element("a", "urn:o", "##other", "urn:t");
  EXPECT_FAILURE(CQnInvalidNamespaceException, refused, element.SetNamespace("urn:t"));
  EXPECT_EQ("urn:o", element.GetNamespace());
}

TEST(Element, ReadingAppendsAndCopyingReplaces) {
  CElement element("was");
  for (int i = 0; i < 2; ++i) element.FromXml("<p:a xmlns:p='urn:a' k='1'>t<b>u</b></p:a>");
  EXPECT_EQ(2, element.GetAttributes()->GetCount());
  EXPECT_EQ(2, element.GetElements()->GetCount());
  EXPECT_EQ("urn:a", element.GetNamespace());
  CXmlSerializationContext context;
  context.SetSchemaType(SchemaType_DTD);  // so that declarations are attributes
  CXmlDocument document(context);
  document.LoadXml("<a xmlns='urn:d'><b/></a>");
  element.CopyXmlElement(document.GetDocumentElement());
  EXPECT_EQ("urn:d", element.GetDefaultNamespace());
  EXPECT_EQ("xmlns", element.GetAttributes()->Item(0)->GetName());
  EXPECT_EQ(1, element.GetElements()->GetCount());
  EXPECT_FAILURE(CQnInvalidParamException, "The element to copy from may not be NULL", element.CopyXmlElement(nullptr));
  CElement narrow("n", "urn:n");
  narrow.FromXml("<a xmlns='urn:a'/>");
  EXPECT_EQ("n", narrow.GetName()) << "a namespace outside the restriction takes nothing";
  CElement base("base");
  base.CXmlObjectBase::FromXml("<a><first><c/></first></a>");
  EXPECT_EQ("<first><c/></first>", Text(base)) << "the operations of the base hand over the children of the root";
  base.CXmlObjectBase::FromXml("<a/>");
  EXPECT_EQ("first", base.GetName());
}

TEST(Element, SharesNamesUntilTheyChange) {
  CElement root("");
  root.FromXml("<r xmlns='urn:a' k='1'><a k='2'/><a k='3'/><r/></r>");
  CElementCol const& children = *root.GetElements();
  CSmartPtr<CElement> const first = children.Item(0);
  EXPECT_EQ(&first->GetName(), &children.Item(1)->GetName());
  CSmartPtr<CElement> const clone = first->Clone();
  first->SetName("b");
  first->GetAttributes()->Item(0)->SetName("l");
  children.Item(1)->SetNamespace("urn:b");
  children.Item(2)->SetDefaultNamespace("urn:a");
  EXPECT_EQ(
      "<AA:r xmlns:AA=\"urn:a\" k=\"1\"><AA:b l=\"2\"/><AB:a xmlns:AB=\"urn:b\" k=\"3\"/><r xmlns=\"urn:a\"/></AA:r>",
      Text(root));
  EXPECT_EQ("<AA:a xmlns:AA=\"urn:a\" k=\"2\"/>", Text(*clone));
  EXPECT_EQ("urn:a", children.Item(1)->GetElements()->Add("new")->GetNamespace()) << "the first namespace";
}

// A document in many namespaces keeps about its size, where each element would declare its own.
TEST(Element, DeclaresKeptPrefixesOnlyOnce) {
  std::string text = "<r";
  for (int i = 0; i < 300; ++i) text += " xmlns:p" + std::to_string(i) + "=\"urn:example:" + std::to_string(i) + "\"";
  text += '>';
  for (int i = 0; i < 3000; ++i) text += "<p" + std::to_string(i % 300) + ":a/>";
  text += "</r>";
  CXmlDocument document;
  document.LoadXml(text.c_str());
  CXmlSerializationContext context;
  CElement element("");
  element.CopyXmlElement(document.GetDocumentElement(), context);
  EXPECT_GT(Text(element).size(), 2 * text.size());
  context.SetKeepPrefixes(true);
  element.CopyXmlElement(document.GetDocumentElement(), context);
  EXPECT_EQ(text.size(), Text(element).size());
  CElement again("");
  again.FromXml(Text(element).c_str());
  EXPECT_EQ("urn:example:299", again.GetElements()->Item(299)->GetNamespace());
}

TEST(Element, KeepsThePrefixesOfItsLastDocumentOnly) {
  CXmlSerializationContext context;
  context.SetKeepPrefixes(true);
  CElement element("");
  auto document = std::make_unique<CXmlDocument>();
  document->LoadXml("<r xmlns:p='urn:p'/>");
  element.CopyXmlElement(document->GetDocumentElement(), context);
  unsigned char const undeclared[] = {0xE0, 0, 0, 1, 0, 0x38, 0xCE, 0, 'p', 0xF0, 0x3C, 0, 'r', 0xF0, 0xF0};
  document->LoadXmlStream(undeclared, sizeof undeclared);
  element.CopyXmlElement(document->GetDocumentElement(), context);
  EXPECT_EQ("<r/>", Text(element));
  document->LoadXml("<r xmlns:q='urn:q'><c/></r>");
  CXmlElement* const child = document->GetDocumentElement()->RemoveLastChildElement();
  document.reset();
  element.CopyXmlElement(child, context);
  EXPECT_EQ("<c/>", Text(element));
  delete child;
}

TEST(Element, WithADefaultNamespaceIsWrittenApart) {
  CElement element("a", "urn:d");
  element.GetAttributes()->Add("lost", "1", "");
  element.GetElements()->Add("b", "urn:d")->SetText("x");
  element.SetDefaultNamespace("urn:d");
  EXPECT_EQ("<a xmlns=\"urn:d\"><b>x</b></a>", Text(element));
  EXPECT_EQ("<AA:a xmlns:AA=\"urn:d\" lost=\"1\"><AA:b>x</AA:b></AA:a>", Text(*element.Clone()));
  CElement outer("o");
  outer.GetElements()->Add(element.Clone().Get())->SetDefaultNamespace("urn:d");
  EXPECT_EQ("<o><a xmlns=\"urn:d\"><b>x</b></a></o>", Text(outer));
}

TEST(Element, CopiesAnyBoundObjectAndIsReadByOne) {
  static Shape const shape({}, {Prim<Quillon9Data::CElementInfoSeqPrimMnd>("v", 0)});
  CSmartPtr<DynamicClass> const source(new DynamicClass(shape));
  source->With(0, "1");
  CElement const copy(source.Get(), nullptr);
  EXPECT_EQ("<root><v>1</v></root>", Text(copy));
  EXPECT_EQ("root", CElement(source.Get(), "urn:d").GetName());
  DynamicClass target(shape);
  target.FromXmlElement(&copy);
  EXPECT_EQ("<root><v>1</v></root>", target.Text());
  EXPECT_FAILURE(CQnInvalidParamException, "The element to read from may not be NULL",
                 target.FromXmlElement(static_cast<CElement const*>(nullptr)));
  EXPECT_FAILURE(CQnInvalidParamException, "The object to copy from may not be NULL",
                 CElement(static_cast<CXmlObjectBase*>(nullptr), ""));
}

// Catches the failure as a pointer. The parents of a child do not catch the failure of that child.
std::string RestrictionFailure(CElement& element, char const* restriction, char const* target) {
  try {
    element.SetNamespaceRestrictions(restriction, target);
  } catch (CQnInvalidNamespaceException* failure) {
    std::unique_ptr<CQnInvalidNamespaceException> const owned(failure);
    return owned->GetFullMessage();
  }
  return "";
}

TEST(Element, RestrictionsAreTestedNotStored) {
  CElement element("e");
  element.GetAttributes()->Add("k", "", "urn:k");
  EXPECT_EQ("", RestrictionFailure(element, "##any", ""));
  EXPECT_EQ(
      "The namespace e in the class  is invalid against restriction ##local\nInvalid namespace [urn:k]. The namespace "
      "must be one of [##local] where the target namespace is []",
      RestrictionFailure(element, "##local", ""));
  element.GetAttributes()->Clear();
  element.GetElements()->Add("c", "urn:c");
  EXPECT_EQ(
      "The namespace c in the class urn:c is invalid against restriction ##local\nInvalid namespace [urn:c]. The "
      "namespace must be one of [##local] where the target namespace is []",
      RestrictionFailure(element, "##local", ""));
  EXPECT_EQ("##any", element.GetNamespaceRestriction());
}

TEST(GenericCollections, NamespacesOfWhatIsAddedByName) {
  EXPECT_EQ("urn:a", CAttributeCol("", "urn:a", "").Add("k")->GetNamespace());
  EXPECT_EQ("urn:a", CAttributeCol("", "urn:a urn:b", "").Add("k")->GetNamespace());
  EXPECT_THROW(CAttributeCol("", "urn:a urn:b", "").Add("k", "", "urn:b"), CQnInvalidNamespaceException);
  EXPECT_EQ("", CAttributeCol("", "##other", "urn:t").Add("k")->GetNamespace());
  EXPECT_EQ("##any", CElementCol("", "##any", "", 0, 1).Add("e")->GetNamespace());
  CElementCol elements("", "urn:a", "urn:t", 5, 5);
  EXPECT_FAILURE(CQnInvalidStateException, "A Namespace has not been set for this Collection", elements.Add("e"));
  EXPECT_FAILURE(CQnInvalidStateException, "A Namespace has not been set for this Collection",
                 elements.Clone()->Add("e"));
  EXPECT_EQ("urn:x", elements.Add("e", "urn:x")->GetNamespace());
  EXPECT_EQ("urn:t", elements.GetNamespace());
  EXPECT_FAILURE(CQnException, "No More Elements in the Collection", *++elements.begin());
  EXPECT_FAILURE(CQnException, "No More Elements in the Collection", ++elements.end());
  EXPECT_FAILURE(CQnInvalidParamException, "The element to add may not be NULL",
                 elements.Add(static_cast<CElement*>(nullptr)));
  CAttribute attribute("k", "v", "");
  EXPECT_FAILURE(CQnException, "This should be done by the collection",
                 attribute.CXmlObjectBase::FromXml("<a><b/></a>"));
}

TEST(GenericCollections, AttributesOutsideTheRestrictionAreRefused) {
  CAttributeCol attributes("", "##local", "");
  EXPECT_FAILURE(CQnInvalidNamespaceException, "Invalid Attribute [k]. The attributes namespace is Inappropriate.",
                 attributes.FromXml("<a first='1' p:k='' xmlns:p='urn:p'/>"));
  EXPECT_EQ(1, attributes.GetCount());
}

TEST(AdditionalRootAttributes, AreSharedWithCopiesAndWrittenFirst) {
  static Shape const shape({}, {}, {Attribute("own", 0, true)});
  DynamicClass object(shape);
  object.With(0, "1");
  CXmlSerializationContext context;
  EXPECT_EQ("<root own=\"1\"/>", object.Text(context));
  EXPECT_EQ(nullptr, context.FindAdditionalRootAttributes()) << "writing changes no context";
  context.GetAdditionalRootAttributes()->Add("extra", "e", "");
  CXmlSerializationContext const copy(context);
  copy.GetAdditionalRootAttributes()->Add("more", "m", "");
  EXPECT_EQ("<root extra=\"e\" more=\"m\" own=\"1\"/>", object.Text(context));
}

TEST(AnyAttribute, TakesWhatItsRestrictionAdmits) {
  Shape const shape({}, {},
                    {Attribute("own", 0, true),
                     new Quillon9Data::CAttributeInfoAny("any", "", 1, true, "##other", "urn:t", nullptr)});
  DynamicClass object(shape);
  object.With(1, new CAttributeCol("", "##other", "urn:t"));
  EXPECT_EQ("<root own=\"1\" xmlns:AA=\"urn:o\" AA:x=\"2\" y=\"3\"/>",
            ReadBack(object, "<root own='1' p:x='2' y='3' xmlns:p='urn:o'/>"));
  EXPECT_EQ(
      "Failed to process the element [root]\nInvalid namespace [urn:t]. The namespace must be one of [##other] where "
      "the "
      "target namespace is [urn:t]",
      ReadBack(object, "<root p:x='2' xmlns:p='urn:t'/>"));
  object.With(1, new CElementCol("", "##any", "", 0, -1));
  EXPECT_EQ(
      "Failed to process the element [root]\nSerialization Data Error : The collection should be a CAttributeCol, it "
      "was "
      "not!",
      ReadBack(object, "<root p:x='2' xmlns:p='urn:o'/>"));
}

TEST(Element, WhatAListenerDropsDuringADestructionIsGoneAtOnce) {
  struct Counter : IEventSink {
    void OnEvent(CXmlObjectBase*, MsgType, void*) override { ++m_events; }
    int m_events = 0;
  } counter;
  struct Dropper : IEventSink {
    void OnEvent(CXmlObjectBase*, MsgType, void*) override {
      m_other = nullptr;
      m_seen = m_counter->m_events;
    }
    CSmartPtr<CElement> m_other;
    Counter* m_counter = nullptr;
    int m_seen = 0;
  } dropper;
  dropper.m_counter = &counter;
  CSmartPtr<CElement> first(new CElement("first"));
  first->GetElements()->Add("child", "")->GetElements()->AddEventListener(&dropper);
  first->FindElement("child")->GetElements()->Add("leaf", "");
  dropper.m_other = new CElement("other");
  dropper.m_other->GetElements()->Add("inner", "")->GetElements()->AddEventListener(&counter);
  dropper.m_other->FindElement("inner")->GetElements()->Add("leaf", "");
  counter.m_events = 0;
  first = nullptr;
  EXPECT_EQ(3, dropper.m_seen) << "removal, its completion and the change";
  EXPECT_EQ(3, counter.m_events);
}

TEST(Element, DepthCostsNoStackAndIsBounded) {
  CSmartPtr<CElement> root(new CElement("r"));
  CElement* innermost = root.Get();
  for (int i = 0; i < 100000; ++i) innermost = innermost->GetElements()->Add("e", "").Get();
  EXPECT_FAILURE(CQnException, kNesting, Text(*root));
  EXPECT_FAILURE(CQnException, kNesting, root->Clone());
  root = nullptr;  // must not recurse
}

// New children and attributes take the namespace that the element had when it was created, whatever its namespace is
// now, and whether or not the collections were used before.
TEST(Element, KeepsTheNamespaceOfItsCollections) {
  CXmlDocument document;
  document.LoadXml("<p:r xmlns:p='urn:p'/>");
  for (bool const isLookedAt : {false, true}) {
    CSmartPtr<CElement> const renamed(new CElement("r", "urn:a", "##any", ""));
    CSmartPtr<CElement> const copied(new CElement("r"));
    for (auto const& element : {renamed, copied}) {
      EXPECT_FALSE(isLookedAt && element->GetElements()->GetCount() + element->GetAttributes()->GetCount() != 0);
    }
    renamed->SetNamespace("urn:b");
    copied->CopyXmlElement(document.GetDocumentElement());
    for (auto const& element : {renamed, renamed->Clone()}) {
      EXPECT_EQ("urn:a", element->GetElements()->Add("c")->GetNamespace());
      EXPECT_EQ("urn:a", element->GetAttributes()->Add("c")->GetNamespace());
    }
    for (auto const& element : {copied, copied->Clone()}) {
      EXPECT_EQ("##any", element->GetElements()->Add("c")->GetNamespace());
      EXPECT_EQ("", element->GetAttributes()->Add("c")->GetNamespace());
    }
  }
}

}  // namespace
}  // namespace Quillon9
