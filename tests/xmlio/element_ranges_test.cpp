#include "quillon9/xmlio/element_ranges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "quillon9/xmlio/document.h"

namespace Quillon9 {
namespace {

using Children = CXmlNodeRange<CXmlElement>;

// The promises of std::forward_iterator_tag, and the types that a name may be constructed from.
static_assert(std::is_same_v<std::iterator_traits<Children::iterator>::reference, CXmlElement&>);
static_assert(std::is_default_constructible_v<Children::iterator> && std::is_copy_assignable_v<Children::iterator>);
static_assert(!std::is_constructible_v<CXmlNameFilter, std::string>);
static_assert(std::is_same_v<decltype(*std::declval<CXmlElement const&>().Children().begin()), CXmlElement const&>);

template <class Range>
std::string TextsOf(Range const& range) {
  std::string texts;
  for (auto const& element : range) texts += element.GetText() + ' ';
  return texts;
}

class ElementRanges : public testing::Test {
 protected:
  ElementRanges() {
    m_document.LoadXml(
        "<r xmlns:p='urn:p' a='1' p:a='2' b=''>"
        "<i>1</i><p:i>2</p:i><j>3</j><i xmlns='urn:q'>4<i>5</i></i><p:j>6</p:j><i>7</i></r>");
  }
  CXmlElement& Root() { return *m_document.GetDocumentElement(); }
  CXmlElement const& ConstRoot() { return Root(); }

  CXmlDocument m_document;
};

TEST_F(ElementRanges, ChildrenByName) {
  EXPECT_EQ(TextsOf(Root().Children()), "1 2 3 4 6 7 ");
  EXPECT_EQ(TextsOf(Root().Children("i")), "1 2 4 7 ");
  EXPECT_EQ(TextsOf(Root().Children("i", "")), "1 7 ");
  EXPECT_EQ(TextsOf(Root().Children("i", "urn:p")), "2 ");
  EXPECT_EQ(TextsOf(Root().Children(nullptr, "urn:p")), "2 6 ");
  EXPECT_EQ(TextsOf(Root().Children("p:i")), "");
  EXPECT_EQ(TextsOf(Root().Children("")), "");
  std::string const name = "j";
  EXPECT_EQ(TextsOf(ConstRoot().Children(name, std::string_view())), "3 ");
  EXPECT_TRUE(Root().Children("I").empty());
  EXPECT_EQ(Root().Children("I").First(), nullptr);
  EXPECT_EQ(ConstRoot().Children("i", "urn:q").First()->GetText(), "4");
}

TEST_F(ElementRanges, AttributesAndOneOfThem) {
  std::string values;
  for (CXmlAttribute const& attribute : ConstRoot().Attributes()) values += attribute.GetValue() + ' ';
  EXPECT_EQ(values, "1 2  ");
  EXPECT_EQ(Root().FindAttribute("a")->GetValue(), "1");
  EXPECT_EQ(Root().FindAttribute("a", "urn:p")->GetValue(), "2");
  EXPECT_EQ(Root().FindAttribute("b", "")->GetValue(), "");
  EXPECT_EQ(Root().FindAttribute("b", "urn:p"), nullptr);
  EXPECT_EQ(Root().FindAttribute("c"), nullptr);
  EXPECT_TRUE(Root().GetFirstElement()->Attributes().empty());
}

TEST_F(ElementRanges, StandardAlgorithms) {
  auto const children = Root().Children();
  EXPECT_EQ(std::distance(children.begin(), children.end()), 6);
  auto const three =
      std::find_if(children.begin(), children.end(), [](CXmlElement const& child) { return child.GetText() == "3"; });
  ASSERT_NE(three, children.end());
  EXPECT_EQ(std::next(three)->GetText(), "4");
  EXPECT_EQ(three->GetText(), "3");  // copies continue independently
  auto const named = Root().Children("i");
  EXPECT_EQ(std::count_if(named.begin(), named.end(), [](auto& i) { return i.GetNamespaceURI().empty(); }), 2);
}

TEST_F(ElementRanges, ChangesDuringAWalk) {
  std::string met;
  for (CXmlElement& child : Root().Children("i", "")) {
    met += child.GetText() + ' ';
    if (child.GetText() == "1") {
      delete Root().RemoveLastChildElement();  // 7, which is not the current node
      CXmlElement* const added = Root().CreateNewChildElement();
      added->SetElementName("i");
      added->AppendText("8");
    }
    child.SetElementName("renamed");
  }
  EXPECT_EQ(met, "1 8 ");
  std::unique_ptr<CXmlElement> last;
  int count = 0;
  for (CXmlElement& child : Root().Children("renamed")) {
    ++count;
    if (child.GetText() == "8") last.reset(Root().RemoveLastChildElement());  // the current node
  }
  EXPECT_EQ(count, 2);
  EXPECT_EQ(last->GetText(), "8");
}

}  // namespace
}  // namespace Quillon9
