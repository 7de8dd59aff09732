#include <gtest/gtest.h>

#include "expect_failure.h"
#include "quillon9/quillon9.h"

namespace Quillon9 {
namespace {

TEST(Context, UnknownAndMissingElementsCanNotBothBeIgnored) {
  CXmlSerializationContext ctx;
  ctx.SetIgnoreMissingMandatoryElements(true);
  EXPECT_FAILURE(CQnInvalidStateException,
                 "The parser can only ignore additional elements, or ignore the fact that some required ones are "
                 "missing, you can not ignore both\nSet IgnoreMissingMandatoryElements to false before setting "
                 "IgnoreUnknownElements to true",
                 ctx.SetIgnoreUnknownElements(true));
  ctx.SetIgnoreUnknownElements(false);
  EXPECT_TRUE(ctx.GetIgnoreMissingMandatoryElements());
  ctx.SetIgnoreMissingMandatoryElements(false);
  ctx.SetIgnoreUnknownElements(true);
  EXPECT_FAILURE(CQnInvalidStateException,
                 "The parser can only ignore additional elements, or ignore the fact that some required ones are "
                 "missing, you can not ignore both\nSet IgnoreUnknownElements to false before setting "
                 "IgnoreMissingMandatoryElements to true",
                 ctx.SetIgnoreMissingMandatoryElements(true));
  EXPECT_FALSE(ctx.GetIgnoreMissingMandatoryElements());
}

TEST(Context, ASchemaWithoutNamespacesIgnoresThem) {
  CXmlSerializationContext ctx;
  EXPECT_FALSE(ctx.GetIgnoreNamespaces());
  ctx.SetSchemaType(static_cast<SchemaType>(2));
  ctx.SetIgnoreNamespaces(false);
  EXPECT_TRUE(ctx.GetIgnoreNamespaces());
}

TEST(Context, CopiesEveryOption) {
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI("urn:d");
  ctx.SetWriteTypeAttribute(false);
  ctx.GetNamespaceAliases()->Add("p", "urn:p");
  ctx.GetProcessingInstructions().push_back("<?x?>");
  ctx.SetInLineSchema("s");
  ctx.SetIgnoreUnknownAttributes(true);
  ctx.SetSchemaType(SchemaType_DTD);
  ctx.SetNoOptionalAttributeDefaultOutput(true);
  ctx.SetStripCDATA(false);
  CXmlSerializationContext const copy(ctx);
  ctx.GetNamespaceAliases()->Add("q", "urn:q");
  EXPECT_EQ("urn:d", copy.GetDefaultNamespaceURI());
  EXPECT_FALSE(copy.GetWriteTypeAttribute());
  EXPECT_EQ(1, copy.GetNamespaceAliases()->GetNamespaceCount());
  EXPECT_EQ("<?x?>", copy.GetProcessingInstructions().at(0));
  EXPECT_EQ("s", copy.GetInLineSchema());
  EXPECT_TRUE(copy.GetIgnoreUnknownAttributes());
  EXPECT_EQ(SchemaType_DTD, copy.GetSchemaType());
  EXPECT_TRUE(copy.GetNoOptionalAttributeDefaultOutput());
  EXPECT_FALSE(copy.GetStripCDATA());
}

TEST(NamespaceAliasMap, OneAliasForEachNamespaceInByteOrder) {
  CNamespaceAliasMap map;
  map.Add("a", "urn:B");
  map.Add("b", "urn:B");
  map.Add("b", "urn:A");
  EXPECT_EQ(2, map.GetNamespaceCount());
  EXPECT_EQ("urn:A", map.GetNamespaceAt(0));
  EXPECT_EQ("urn:A", map.GetNamespaceFromAlias("b"));
  EXPECT_FALSE(map.DoesAliasExist("a"));
  EXPECT_FAILURE(CQnException, "Namespace alias [a] not found", map.GetNamespaceFromAlias("a"));
  EXPECT_FAILURE(CQnException, "Index 2 is out of range", map.GetNamespaceAt(2));
  EXPECT_EQ("", map.GetAliasFromNamespace("urn:C"));
  EXPECT_EQ(3, map.GetNamespaceCount()) << "a lookup that misses enters the namespace";
  map.RemoveNamespace("urn:C");
  map.RemoveNamespace("urn:C");
  EXPECT_FALSE(map.DoesNamespaceExist("urn:C"));
}

TEST(NamespaceRules, WildcardLists) {
  struct Row {
    char const* ns;
    char const* list;
    char const* target;
    bool valid;
  } const rows[] = {
      {"A", "##any", "T", true},
      {"", "A", "T", true},
      {"B", "A", "T", false},
      {"A", "A", "T", true},
      {"A", "##other", "A", false},
      {"B", "##other", "A", true},
      {"", "##other", "A", true},
      {"", "##other", "", false},
      {"", "##local", "T", true},
      {"A", "##local", "T", false},
      {"T", "##targetNamespace", "T", true},
      {"A", "##targetNamespace", "T", false},
      {"", "", "T", true},
      {"A", "", "T", false},
      {"T", "##targetNamespace ##local", "T", true},
      {"", "##targetNamespace ##local", "T", true},    // admitted by the empty token after the first
      {"A", "##targetNamespace ##local", "T", false},  // must not be checked forever
      {"A", "B A", "T", false},                        // only the first token counts
      {"A B", "A B", "T", true},
      {"A", " A", "T", false},
      {"", "##other A", "", true},
  };
  for (Row const& row : rows) {
    EXPECT_EQ(row.valid, CXmlObjectHelper::IsNamespaceValid(row.ns, row.list, row.target))
        << row.ns << " in " << row.list << " of " << row.target;
  }
  EXPECT_FAILURE(CQnInvalidNamespaceException,
                 "Invalid namespace [B]. The namespace must be one of [A] where the target namespace is [T]",
                 CXmlObjectHelper::TestNamespace("B", "A", "T"));
}

TEST(NamespaceRules, ElementNames) {
  CXmlDocument document;
  document.LoadXml("<a xmlns='urn:x'/>");
  CXmlElement const* const a = document.GetDocumentElement();
  CXmlSerializationContext ctx;
  EXPECT_TRUE(CXmlObjectHelper::DoesElementNameMatch(ctx, a, "a", "urn:x"));
  EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(ctx, a, "a", ""));
  EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(ctx, a, "b", "urn:x"));
  EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(ctx, nullptr, "a", ""));
  ctx.SetSchemaType(SchemaType_DTD);
  EXPECT_TRUE(CXmlObjectHelper::DoesElementNameMatch(ctx, a, "a", "other"));
}

}  // namespace
}  // namespace Quillon9
