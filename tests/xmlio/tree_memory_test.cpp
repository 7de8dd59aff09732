// What one tree must not see of the trees that had its memory before.

#include "xmlio/tree_memory.h"

#include <gtest/gtest.h>

#include <string>

#include "quillon9/quillon9.h"

namespace Quillon9 {
namespace {

void Load(CXmlDocument& document, std::string const& text) {
  document.LoadXmlStream(reinterpret_cast<unsigned char const*>(text.data()), text.size());
}

// Long enough for blocks of several sizes.
TEST(TreeMemory, LargeTreesAreWhole) {
  constexpr int kCount = 150'000;
  std::string text = "<all>";
  for (int i = 0; i < kCount; ++i) text += "<n a='x" + std::to_string(i) + "'>" + std::to_string(i) + "</n>";
  text += "</all>";
  for (int round = 0; round < 2; ++round) {
    CXmlDocument document;
    Load(document, text);
    int number = 0;
    for (CXmlElement const& child : document.GetDocumentElement()->Children()) {
      std::string const shown = std::to_string(number++);
      ASSERT_EQ(child.GetTextView(), shown);
      ASSERT_EQ(child.GetFirstAttribute()->GetValueView(), "x" + shown);
    }
    EXPECT_EQ(number, kCount);
  }
}

// Each document has names that those before it did not have, until a thread no longer keeps them.
TEST(TreeMemory, NamesOfOtherDocumentsCountAgain) {
  std::uint64_t const size = CLimits::GetMaxContentSize();
  std::uint32_t const growth = CLimits::GetMaxContentGrowth();
  CLimits::SetMaxContentGrowth(0);
  for (int i = 0; i < 40; ++i) {
    std::string text = "<a>";
    for (int name = 0; name < 10; ++name) text += "<n" + std::to_string(10 * i + name + 1000) + "/>";
    text += "</a>";
    // Eleven nodes and as many names: 64 octets and 256 with twice the text.
    constexpr std::uint64_t kContent = 11 * (64 + 256) + 2 + 10 * 2 * 5;
    for (int round = 0; round < 2; ++round) {
      CXmlDocument document;
      CLimits::SetMaxContentSize(kContent);
      EXPECT_NO_THROW(Load(document, text)) << i;
      CLimits::SetMaxContentSize(kContent - 1);
      EXPECT_THROW(Load(document, text), CQnException) << i;
    }
  }
  CLimits::SetMaxContentSize(size);
  CLimits::SetMaxContentGrowth(growth);
}

// The name that a caller holds with a node stays with the memory of the old tree.
TEST(TreeMemory, DetachedNodesKeepTheirNamesApart) {
  CXmlElement* kept = nullptr;
  {
    CXmlDocument document;
    Load(document, "<a><b>old</b></a>");
    kept = document.GetDocumentElement()->RemoveLastChildElement();
  }
  CXmlDocument next;
  Load(next, "<a><b>new</b></a>");
  kept->SetElementName("c");
  EXPECT_EQ("b", next.GetDocumentElement()->GetFirstElement()->GetLocalName());
  EXPECT_EQ("c", kept->GetLocalName());
  EXPECT_EQ("old", kept->GetText());
  delete kept;
  CXmlDocument last;
  Load(last, "<c/>");
  EXPECT_EQ(last.GetDocumentElement()->GetDocument(), &last);
  EXPECT_EQ(next.GetDocumentElement()->GetDocument(), &next);
}

}  // namespace
}  // namespace Quillon9
