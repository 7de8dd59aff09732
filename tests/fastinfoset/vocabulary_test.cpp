#include "quillon9/fastinfoset/vocabulary.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "expect_failure.h"
#include "fastinfoset/vocabulary_access.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/values/item_type.h"

namespace Quillon9 {
namespace {

using Strings = std::vector<std::string>;

template <class Table>
auto Entries(Table const& table) {
  return std::vector<typename std::decay<decltype(*table.begin())>::type>(table.begin(), table.end());
}

/// Names as "prefix namespace local" in indices.
Strings Names(CFIVocabulary::CFIQNameTable const& table) {
  Strings names;
  for (auto const& parts : table) {
    names.push_back(std::to_string(parts.m_prefix) + ' ' + std::to_string(parts.m_namespace) + ' ' +
                    std::to_string(parts.m_localName));
  }
  return names;
}

TEST(Vocabulary, IsBornWithTheBuiltInEntries) {
  CFIVocabulary const vocabulary;
  EXPECT_EQ((Strings{"xml"}), Entries(vocabulary.GetPrefixNamesTable()));
  EXPECT_EQ((Strings{"http://www.w3.org/XML/1998/namespace"}), Entries(vocabulary.GetNamespaceNamesTable()));
  EXPECT_EQ((Strings{"0123456789-+.e ", "0123456789-:TZ "}), vocabulary.GetRestrictedAlphabets());
  unsigned long index = 7;
  EXPECT_FALSE(vocabulary.FindLocalNameIndex("xml", index));
  EXPECT_EQ(7U, index);
  EXPECT_TRUE(vocabulary.FindPrefixNameIndex("xml", index) && index == 1);
  EXPECT_TRUE(vocabulary.FindNamespaceNameIndex(FI_DEFAULT_NAMESPACE, index) && index == 1);
}

TEST(Vocabulary, NamesShareTheirParts) {
  CFIVocabulary vocabulary;
  vocabulary.AddElement("", "", "a");
  vocabulary.AddElement("p", "u", "a");
  vocabulary.AddElement("q", "u", "a");
  vocabulary.AddElement("p", "u", "a");
  vocabulary.AddElement("p", "v", "b");
  vocabulary.AddAttribute("xml", FI_DEFAULT_NAMESPACE, "b");
  EXPECT_EQ((Strings{"0 0 1", "2 2 1", "3 2 1", "2 3 2"}), Names(vocabulary.GetElementNamesTable()));
  EXPECT_EQ((Strings{"1 1 2"}), Names(vocabulary.GetAttributeNamesTable()));
  EXPECT_EQ((Strings{"xml", "p", "q"}), Entries(vocabulary.GetPrefixNamesTable()));
  EXPECT_EQ((Strings{"a", "b"}), Entries(vocabulary.GetLocalNamesTable()));

  CFIIndexMap& names = vocabulary.GetElementNameIndex();
  unsigned long index = 0;
  EXPECT_TRUE(vocabulary.FindIndex(names, std::string("b\1v\1p"), index) && index == 4);
  for (int twice = 0; twice < 2; ++twice) {  // the second lookup uses the recent names
    EXPECT_EQ(1U, names.FindName("", "", "a"));
    EXPECT_EQ(2U, names.FindName("p", "u", "a"));
    EXPECT_EQ(3U, names.FindName("q", "u", "a"));
    EXPECT_EQ(0U, names.FindName("", "u", "a"));
    EXPECT_EQ(0U, names.FindName("u", "p", "a"));
  }
}

TEST(Vocabulary, ValuesAddedTwiceLeaveTheMapAtTheFirst) {
  CFIVocabulary vocabulary;
  vocabulary.AddLocalName("a");
  vocabulary.AddLocalName("a");
  vocabulary.AddElementValue("1");
  vocabulary.AddAttributeValue("2");
  EXPECT_EQ((Strings{"a", "a"}), Entries(vocabulary.GetLocalNamesTable()));
  EXPECT_EQ((Strings{"1"}), Entries(vocabulary.GetCharacterChunksTable()));
  EXPECT_EQ((Strings{"2"}), Entries(vocabulary.GetAttributeValuesTable()));
  EXPECT_EQ(1U, vocabulary.GetCharacterChunkIndex().Find("1"));
  EXPECT_EQ(0U, vocabulary.GetAttributeValueIndex().Find("1"));
  unsigned long index = 0;
  EXPECT_TRUE(vocabulary.FindLocalNameIndex("a", index) && index == 1);

  CFIVocabulary copy(vocabulary);
  copy.AddPrefixName("p");
  copy.AddElement("", "", "c");
  EXPECT_TRUE(copy.FindPrefixNameIndex("p", index) && index == 2);
  EXPECT_FALSE(vocabulary.FindPrefixNameIndex("p", index));
  EXPECT_EQ(1U, Entries(vocabulary.GetPrefixNamesTable()).size());
  EXPECT_EQ(0U, vocabulary.GetElementNameIndex().size());
}

// Strings of all lengths, to cover every path through the hash and every growth of the map.
TEST(Vocabulary, MapFindsWhatItHolds) {
  CFIIndexMap map;
  EXPECT_EQ(0U, map.Find(""));
  Strings texts;
  for (std::size_t length = 0; length < 40; ++length) {
    texts.emplace_back(length, 'x');
    for (std::size_t at = 0; at < length; ++at) {
      texts.push_back(texts[texts.size() - 1 - at]);
      texts.back()[at] = '\0';
    }
  }
  for (std::string const& text : texts) map.Insert(text);
  map.Insert("x");
  ASSERT_EQ(texts.size(), map.size());
  for (std::size_t i = 0; i < texts.size(); ++i) ASSERT_EQ(i + 1, map.Find(texts[i]));
  EXPECT_EQ(0U, map.Find("xxy"));
}

TEST(Vocabulary, MapsAndTheirCopiesFindNamesAfterEachGrowth) {
  CFIIndexMap map;
  CFIIndexMap copy;
  std::string key;
  auto const name = [](unsigned number) { return "name" + std::to_string(number); };
  for (unsigned i = 0; i < 3000; ++i) {
    if (i == 1500) copy = map;
    CFIIndexMap::MakeQNameKey(i % 3 == 0 ? "p" : "", "urn:namespace", name(i), key);
    map.Insert(key);
    ASSERT_EQ(0U, map.FindName("q", "urn:namespace", name(i)));
    for (unsigned const old : {i, i / 2, i / 7}) {
      ASSERT_EQ(old + 1, map.FindName(old % 3 == 0 ? "p" : "", "urn:namespace", name(old)));
    }
  }
  EXPECT_EQ(1500U, copy.size());
  EXPECT_EQ(1500U, copy.FindName("", "urn:namespace", name(1499)));
  copy.Insert(std::string(100000, 'x'));
  EXPECT_EQ(1501U, copy.Find(std::string(100000, 'x')));
  EXPECT_EQ(0U, map.Find(std::string(100000, 'x')));
}

// Texts that collide under other common hashes. In a chain they would take more than a minute.
TEST(Vocabulary, MapStaysFastForTextsChosenToCollide) {
  CFIIndexMap map;
  for (unsigned i = 0; i < 1U << 17; ++i) {
    std::string pairs;  // of equal value if the first letter weighs 33 times the second
    for (unsigned bit = 0; bit < 17; ++bit) pairs += (i >> bit & 1) != 0 ? "bC" : "ad";
    std::string eight(8, '\0');
    std::snprintf(eight.data(), 8, "%07u", i);
    map.Insert(pairs);
    map.Insert(eight + "\x03\xED\x92\xD1\x32\x4A\xB5\xD1");  // multiplies by 0 where this is a known factor
  }
  EXPECT_EQ(2U << 17, map.size());
}

TEST(Vocabulary, FullTablesTakeNoMoreAndSayNothing) {
  CFIVocabulary vocabulary;
  while (vocabulary.GetLocalNamesTable().GetVector().size() < CFIVocabulary::kMaxEntries) {
    vocabulary.AddLocalName(std::to_string(vocabulary.GetLocalNamesTable().GetVector().size()));
  }
  unsigned long index = 0;
  EXPECT_TRUE(vocabulary.FindLocalNameIndex("1048575", index) && index == 1048576);
  vocabulary.AddLocalName("x");
  vocabulary.AddElement("", "", "x");  // its local name has no index
  vocabulary.AddElement("", "u", "7");
  EXPECT_FALSE(vocabulary.FindLocalNameIndex("x", index));
  EXPECT_EQ(1048576U, vocabulary.GetLocalNamesTable().GetVector().size());
  EXPECT_EQ((Strings{"0 2 8"}), Names(vocabulary.GetElementNamesTable()));
  EXPECT_EQ(1U, vocabulary.GetElementNameIndex().size());

  std::vector<CFIVocabulary::CQNameParts> names(CFIVocabulary::kMaxEntries - 1);
  vocabulary.AddQNameToVector(1, 2, 3, names);
  vocabulary.AddQNameToVector(4, 5, 6, names);
  EXPECT_EQ(1048576U, names.size());
  EXPECT_EQ(3U, names.back().m_localName);
}

TEST(FastInfosetContext, SuggestedValuesAreSetAndOthersLeft) {
  CFastInfosetContext context;
  EXPECT_EQ(0, context.GetDefaultStringEncoding());
  EXPECT_EQ(6U, context.GetAttributeMaxAddLength());
  EXPECT_EQ(6U, context.GetElementMaxAddLength());
  EXPECT_FALSE(context.GetUseGeneratedVocabulary());
  auto const shown = [&context] {  // by item type: a digit for the kind and a hexadecimal digit for the index
    std::string text;
    for (unsigned long type = 0; type <= ItemType_xmlCollection; ++type) {
      auto const encoding = context.GetEncoding(type);
      text += FormatString("%lu%lX ", encoding.m_kind, encoding.m_index);
    }
    return text;
  };
  context.SetEncoding(ItemType_string, {2, 10});
  context.SetEncoding(ItemType_boolean, {1, 1});
  context.SetSuggestedValues();
  EXPECT_EQ("00 21 22 23 23 24 25 23 24 25 25 27 28 12 12 12 12 12 12 12 12 12 00 2A 26 11 11 00 00 ", shown());
  EXPECT_FAILURE(CQnException, "The item type [29] is out of range", context.GetEncoding(29));
  EXPECT_FAILURE(CQnException, "The item type [29] is out of range", context.SetEncoding(29, {}));
}

TEST(FastInfosetContext, TravelsInTheSerializationContextAndIsCopiedDeep) {
  CXmlSerializationContext ctx;
  ctx.GetFIContext()->GetVocabulary().AddPrefixName("p");
  ctx.GetFIContext()->SetExternalVocabularyURI("urn:v");
  ctx.GetFIContext()->SetUseGeneratedVocabulary(true);
  CXmlSerializationContext const copy(ctx);
  ctx.GetFIContext()->GetVocabulary().AddPrefixName("q");
  EXPECT_EQ((Strings{"xml", "p"}), Entries(copy.GetFIContext()->GetVocabulary().GetPrefixNamesTable()));
  EXPECT_EQ("urn:v", copy.GetFIContext()->GetExternalVocabularyURI());
  EXPECT_TRUE(copy.GetFIContext()->GetUseGeneratedVocabulary());
}

TEST(IndexMap, ForgetsItsLastEntries) {
  auto const text = [](std::size_t number) { return std::string(number % 23, 'x') + std::to_string(number); };
  auto const find = [&](CFIIndexMap const& map, std::size_t count) {
    std::vector<unsigned long> indices;
    for (std::size_t i = 0; i < count; ++i) indices.push_back(map.Find(text(i)));
    return indices;
  };
  for (std::size_t const kept : {0U, 1U, 20U, 500U, 2000U}) {
    CFIIndexMap expected;
    for (std::size_t i = 0; i < kept; ++i) expected.Insert(text(i));
    CFIIndexMap map;
    for (int round = 0; round < 3; ++round) {
      for (std::size_t i = 0; i < 3000; ++i) map.Insert(text(i));
      VocabularyAccess::ShrinkTo(map, kept);
      EXPECT_EQ(kept, map.size());
      EXPECT_EQ(find(expected, 3000), find(map, 3000)) << kept;
    }
    map.Insert("a name that is new");
    EXPECT_EQ(kept + 1, map.Find("a name that is new"));
  }
}

}  // namespace
}  // namespace Quillon9
