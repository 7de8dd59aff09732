// Rejected input leaves no trace: after each of these inputs the same document, object, context and thread read a good
// one, in each of its forms, as if the bad one had never been read.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>

#include "expect_failure.h"
#include "octets.h"
#include "quillon9/quillon9.h"
#include "sample_order.h"

namespace Quillon9 {
namespace {

using namespace Testing;
using Orders::CPurchaseOrderType;

constexpr auto& kDefault = CXmlSerializationContext::m_defaultContext;

CBinaryData OrderAs(bool isFastInfoset, CompressionType compression) {
  if (isFastInfoset) return NewOrder()->ToFastInfosetStream(FInfoDecl_None, kDefault, compression);
  return NewOrder()->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, kDefault, compression);
}

std::string FirstHalf(CBinaryData const& data) { return Bytes(data).substr(0, data.GetLength() / 2); }

std::string Damaged(CBinaryData const& data) {
  std::string bytes = Bytes(data);
  for (std::size_t at = bytes.size() / 2; at < bytes.size(); at += 7) bytes[at] = '\xF0';
  return bytes;
}

/// The good document with \p text replaced.
std::string OrderWith(std::string const& text, std::string const& replacement) {
  std::string document = kOrder;
  return document.replace(document.find(text), text.size(), replacement);
}

/// Reads with everything that stays the same from one input to the next.
class Reader {
 public:
  Reader() { m_ctx.SetSchemaType(SchemaType_XSD); }

  /// Whether just loading the tree is refused, and the message of reading into the object.
  std::pair<bool, std::string> Reject(std::string const& bytes) {
    CBinaryData const data(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size(), false);
    bool isLoadRefused = false;
    try {
      m_document.LoadXmlStream(data.GetData(), data.GetLength());
    } catch (CQnException const&) {
      isLoadRefused = true;
    }
    try {
      static_cast<CXmlObjectBase&>(*m_order).FromXmlStream(data, m_ctx);
    } catch (CQnException const& failure) {
      return {isLoadRefused, failure.GetFullMessage()};
    }
    return {isLoadRefused, "not refused"};
  }

  void ExpectToRead(CBinaryData const& good, std::string const& expected) {
    ASSERT_NO_THROW(m_document.LoadXmlStream(good.GetData(), good.GetLength()));
    EXPECT_EQ("purchaseOrder", m_document.GetDocumentElement()->GetLocalName());
    EXPECT_EQ("2024-03-18", m_document.GetDocumentElement()->GetAttribute("orderDate", ""));
    EXPECT_EQ("", m_document.LookupNamespaceFromAlias("left"));
    EXPECT_EQ(nullptr, m_document.GetOpenElement());
    ASSERT_NO_THROW(static_cast<CXmlObjectBase&>(*m_order).FromXmlStream(good, m_ctx));
    EXPECT_EQ(expected, m_order->ToXml(true, true, EOLType_LF, m_ctx));
  }

 private:
  CXmlSerializationContext m_ctx;
  CXmlDocument m_document{m_ctx};
  CSmartPtr<CPurchaseOrderType> m_order = CPurchaseOrderType::CreateInstance();
};

TEST(Recovery, FromEachRejectedInput) {
  CBinaryData const gzip = OrderAs(false, CompressionType_GZip);
  CBinaryData const fastInfoset = OrderAs(true, CompressionType_None);
  std::string levels;
  for (int level = 0; level < 1500; ++level) levels += "<a>";
  struct Row {
    bool isLoadRefused;
    std::string document;
    char const* message;  // a part of it
  } const rows[] = {
      {true, "", "XML Stream is empty!"},
      {true, std::string(kOrder, 300), "unclosed token at line 3"},
      {true, "<l:a xmlns:left='urn:left'><b xmlns:l='urn:l'/></l:a>", "unbound prefix at line 1"},
      {true, "<a xmlns:left='urn:left'><b></a>", "mismatched tag at line 1"},
      {true, "<a xmlns:left='urn:left'>\xC3(</a>", "not well-formed (invalid token) at line 1"},
      {true, "<a xmlns:left='urn:left'>&nothing;</a>", "undefined entity at line 1"},
      {true, levels, "The element nesting exceeds the limit of 1000 levels"},
      {true, FirstHalf(gzip), "not well-formed"},
      {true, Damaged(gzip), "not well-formed"},
      {true, FirstHalf(fastInfoset), "Failed to parse FastInfoset"},
      {true, Damaged(fastInfoset), "Failed to parse FastInfoset"},
      {false, "<purchaseOrder/>", "Failed to find a required element [shipTo]"},
      {false, OrderWith("<city>", "<left/><city>"), "Failed to find a required element [city]"},
      {false, OrderWith("</items>", "</items><left/>"), "The unexpected element [left] remains un processed"},
      {false, OrderWith("country=", "left="), "Unexpected Attribute [left] found."},
      {false, OrderWith("<quantity>3", "<quantity>three"), "three"},
      {false, OrderWith("2024-03-25", "2024-13-25"), "Failed to process the element [item]"},
      {false, OrderWith("LM42-0007732", std::string(21, 'x')), "Invalid Value for serial"},
  };
  CBinaryData const goodOnes[] = {CBinaryData(kOrder), gzip, fastInfoset};
  std::string const expected = NewOrder()->ToXml();
  Reader reader;
  for (Row const& row : rows) {
    for (CBinaryData const& good : goodOnes) {
      auto const [isLoadRefused, message] = reader.Reject(row.document);
      EXPECT_EQ(row.isLoadRefused, isLoadRefused) << message;
      EXPECT_NE(std::string::npos, message.find(row.message)) << message;
      SCOPED_TRACE(row.message);
      reader.ExpectToRead(good, expected);
    }
  }
}

TEST(Recovery, FromEachRejectedValueOnWriting) {
  CSmartPtr<CPurchaseOrderType> const order = NewOrder();
  std::string const expected = order->ToXml();
  CBinaryData const expectedFastInfoset = order->ToFastInfosetStream();
  auto const expectRefusal = [&](std::string const& document, char const* cause) {
    std::string const message =
        "Failed to convert the element [purchaseOrder] to XML\nFailed to convert the element [items] to XML\n"
        "Failed to convert the element [item] to XML\n";
    CXmlSerializationContext classic;  // does not look at facets on reading
    classic.SetValueRules(ValueRules_Classic);
    order->FromXml(document.c_str(), classic);
    EXPECT_FAILURE(CQnValidationException, message + cause, order->ToXml());
    EXPECT_FAILURE(CQnValidationException, message + cause, order->ToFastInfosetStream());
  };
  expectRefusal(OrderWith("<quantity>3", "<quantity>100"), "Invalid Value for quantity [100]");
  order->GetItems().GetItem()[1].SetQuantity(3);
  EXPECT_EQ(expected, order->ToXml());
  expectRefusal(OrderWith("203-TW", "203-tw"),
                "Failed to convert attributes to XML\nInvalid Value for partNum [203-tw]");
  order->GetItems().GetItem()[1].SetPartNum("203-TW");
  EXPECT_EQ(expected, order->ToXml());
  EXPECT_EQ(expectedFastInfoset, order->ToFastInfosetStream());
}

}  // namespace
}  // namespace Quillon9
