// Eight threads at once share everything that threads may share. Made for ThreadSanitizer; without it, the tests still
// find wrong results.

#include <gtest/gtest.h>

#include <atomic>
#include <exception>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "dynamic_class.h"
#include "expect_failure.h"
#include "octets.h"
#include "quillon9/quillon9.h"
#include "sample_order.h"

namespace Quillon9 {
namespace {

using namespace Testing;
using namespace Quillon9Data;
using Orders::CPurchaseOrderType;

constexpr std::size_t kThreads = 8;

/// Calls work(thread) in kThreads threads, which start together.
template <class Work>
void InThreads(Work work) {
  std::atomic<std::size_t> waiting{kThreads};
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&waiting, &work, thread] {
      --waiting;
      while (waiting != 0) std::this_thread::yield();
      EXPECT_NO_THROW(work(thread));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

void ExpectAllEqual(std::vector<std::string> const& texts) {
  EXPECT_NE("", texts[0]);
  for (std::string const& text : texts) EXPECT_EQ(texts[0], text);
}

/// Does everything that can be done with a graph of objects; returns the final output.
std::string ReadAndWrite(CXmlSerializationContext const& ctx) {
  CSmartPtr<CPurchaseOrderType> const order = CPurchaseOrderType::CreateInstance();
  CXmlObjectBase& object = *order;
  object.FromXml(kOrder, ctx);
  object.FromXmlStream(object.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx), ctx);
  object.FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, ctx, CompressionType_GZip), ctx);
  EXPECT_THROW(object.FromXml("<purchaseOrder><shipTo/></purchaseOrder>", ctx), CQnValidationException);
  object.FromXml(kOrder, ctx);
  CElement const generic(order, nullptr);
  return object.ToXml(true, true, EOLType_LF, ctx) + generic.ToXml(true, true, EOLType_LF, ctx);
}

// First, so that threads build the tables of the classes at the same time.
TEST(Threads, EachWithItsOwnGraphAndContext) {
  std::vector<std::string> texts(kThreads);
  InThreads([&](std::size_t thread) {
    CXmlSerializationContext ctx;
    ctx.GetAdditionalRootAttributes()->Add("a", "1");
    ctx.SetIgnoreUnknownAttributes(true);
    for (int round = 0; round < 10; ++round) texts[thread] = ReadAndWrite(ctx);
  });
  ExpectAllEqual(texts);
}

TEST(Threads, OwnGraphsUnderTheDefaultContext) {
  CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext;
  std::vector<std::string> texts(kThreads);
  InThreads([&](std::size_t thread) {
    for (int round = 0; round < 10; ++round) texts[thread] = ReadAndWrite(ctx);
  });
  ExpectAllEqual(texts);
  EXPECT_EQ(nullptr, ctx.FindAdditionalRootAttributes());
  EXPECT_EQ(0, ctx.GetNamespaceAliases()->GetNamespaceCount());
}

TEST(Threads, HoldersOfBytes) {
  CBinaryData original("the bytes that all threads begin with");
  std::string const bytes = Bytes(original);
  std::vector<CBinaryData> values(kThreads, original);
  original.Clear();
  InThreads([&](std::size_t thread) {
    CBinaryData& own = values[thread];
    for (int round = 0; round < 2000; ++round) {
      CBinaryData const kept(own);
      CBinaryData changed(own);
      changed.Append(static_cast<char>('a' + thread));
      CBinaryData other;
      other = own;
      other[0] = static_cast<unsigned char>('A' + thread);
      ASSERT_EQ(bytes + static_cast<char>('a' + thread), Bytes(changed));
      ASSERT_EQ(static_cast<char>('A' + thread) + bytes.substr(1), Bytes(other));
      ASSERT_EQ(kept, own);
    }
    ASSERT_EQ(bytes, Bytes(own));
    own.Append("x");  // the last thread to do so is the only owner of the holder
    own.Clear();
  });
}

/// A collection that is written by index, as a generated class may do.
class IndexedCollection : public DynamicCollection {
 public:
  using DynamicCollection::DynamicCollection;

 protected:
  void ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx, bool) const override {
    for (int i = 0; i < GetCount(); ++i) CXmlObjectBase::ToXml_Int(Item(i), writer, false, ns, ctx, false);
  }
};

template <class Collection>
CSmartPtr<Collection> NewValues(char const* name, std::initializer_list<char const*> texts) {
  CSmartPtr<Collection> values(new Collection(name, "", 0, -1, "", -1, -1, "", "", "", "", -1,
                                              CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
  for (char const* const text : texts) values->AddFromString(text);
  return values;
}

/// Members of every kind.
class SharedGraph {
 public:
  SharedGraph() {
    m_root->With(0, m_items.Get());
    for (int i = 0; i < 300; ++i) {
      CSmartPtr<DynamicClass> const item(new DynamicClass(m_itemShape, "item"));
      m_items->Add(item->With(0, ("i" + std::to_string(i)).c_str()).With(1, std::int32_t{i}).GetBase());
    }
    int index = 1;
    for (CSmartPtr<CXmlTypeCollection> const& values : m_values) m_root->With(index++, values.Get());
    m_generic->GetAttributes()->Add("a", "1", "urn:attribute");
    m_generic->GetElements()->Add("child", "urn:child")->SetText("<text> of a child");
    m_root->With(10, m_generic.Get());
    m_root->m_properties[11].SetHexBinary(CBinaryData("octets"));
    m_root->m_properties[12].SetBase64Binary(CBinaryData("more octets"));
    m_root->m_properties[13].SetDecimal(CDecimal("-12345678901234567890.5"));
    m_root->m_properties[14].SetDateTime(CDateTime("2024-03-18T12:34:56Z"));
    m_root->m_properties[15].SetInteger(CBigInteger("123456789012345678901234567890"));
    m_root->m_properties[16].SetR8(0.1);
  }

  DynamicClass const& Root() const { return *m_root; }
  DynamicCollection const& Items() const { return *m_items; }
  CElement const& Leaf() const { return *m_generic->FindElement("child"); }

 private:
  Shape m_itemShape{{}, {Prim<CElementInfoSeqPrimMnd>("text", 0)}, {Attribute("number", 1, true, ItemType_i4)}};
  Shape m_shape{
      {},
      {new CElementInfoSeqClsCol("item", "", 0, XmlElementType_Element), new CElementInfoSeqPrimCol("decimal", "", 1),
       new CElementInfoSeqPrimCol("date", "", 2), new CElementInfoSeqPrimCol("octets", "", 3),
       new CElementInfoSeqPrimCol("text", "", 4), new CElementInfoSeqUntpdOpt("generic", "", 10, "##any", ""),
       Prim<CElementInfoSeqPrimMnd>("hex", 11, ItemType_hexBinary),
       Prim<CElementInfoSeqPrimMnd>("base64", 12, ItemType_base64Binary),
       Prim<CElementInfoSeqPrimMnd>("decimal", 13, ItemType_decimal),
       Prim<CElementInfoSeqPrimMnd>("time", 14, ItemType_datetime),
       Prim<CElementInfoSeqPrimMnd>("integer", 15, ItemType_integer),
       Prim<CElementInfoSeqPrimMnd>("double", 16, ItemType_r8)}};
  CSmartPtr<DynamicClass> m_root{new DynamicClass(m_shape)};
  CSmartPtr<DynamicCollection> m_items{new IndexedCollection(m_itemShape, "item", 0, -1)};
  std::vector<CSmartPtr<CXmlTypeCollection>> m_values{
      NewValues<CdecimalCol>("decimal", {"1.50", "-0.25"}), NewValues<CdateCol>("date", {"2024-03-18"}),
      NewValues<Cbase64BinaryCol>("octets", {"AQID", "BAUG"}), NewValues<CstringCol>("text", {"a", "b&c"})};
  CSmartPtr<CElement> m_generic{new CElement("generic", "urn:generic")};
};

std::string FileContents(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(Threads, WriteOneGraph) {
  SharedGraph const graph;
  DynamicClass const& root = graph.Root();
  CXmlSerializationContext options;
  options.GetAdditionalRootAttributes()->Add("b", "2", "urn:attribute");
  options.GetNamespaceAliases()->Add("g", "urn:generic");
  options.GetFIContext()->SetUseGeneratedVocabulary(true);
  CXmlSerializationContext const& ctx = options;
  std::string const path = testing::TempDir() + "threads_test_";
  std::vector<std::string> texts(kThreads);
  std::vector<CElementCol const*> children(kThreads);
  InThreads([&](std::size_t thread) {
    std::string const own = path + std::to_string(thread);
    for (int round = 0; round < 5; ++round) {
      root.ToXmlFile(own.c_str(), true, true, XmlEncoding_UTF8, EOLType_LF, ctx);
      texts[thread] = FileContents(own) + root.ToXml(true, false, EOLType_CRLF, ctx) +
                      Bytes(root.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx, CompressionType_GZip)) +
                      Bytes(root.ToFastInfosetStream(FInfoDecl_None, ctx));
      int numbers = 0;
      for (int i = 0; i < graph.Items().GetCount(); ++i) {
        auto const* const item = static_cast<DynamicClass const*>(graph.Items().Item(i));
        numbers += item->m_properties.at(1).GetI4() == i ? 1 : 0;
      }
      ASSERT_EQ(graph.Items().GetCount(), numbers);
      children[thread] = graph.Leaf().GetElements();  // created on first use
    }
  });
  EXPECT_EQ(std::vector<CElementCol const*>(kThreads, children[0]), children);
  ExpectAllEqual(texts);
  EXPECT_NE(std::string::npos, texts[0].find("<text>i299</text>"));
}

/// Throws one failure, which other objects throw too.
class Failing : public DynamicClass {
 public:
  Failing(Shape const& shape, std::exception_ptr failure) : DynamicClass(shape), m_failure(std::move(failure)) {}
  void AccessProperty(int, bool, QnVariant&) override { std::rethrow_exception(m_failure); }

 private:
  std::exception_ptr m_failure;
};

TEST(Threads, ThrowOneFailure) {
  Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("e", 0)});
  Failing const object(shape, std::make_exception_ptr(CQnException("cause", CQnOverFlowException("deep"))));
  InThreads([&](std::size_t) {
    for (int round = 0; round < 200; ++round) {
      EXPECT_FAILURE(CQnValidationException, "Failed to convert the element [root] to XML\ncause\ndeep", object.Text());
    }
  });
}

// Each read has its own place for it, also if it had one before.
TEST(Threads, ReadsFailWithOneFailure) {
  Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("e", 0)});
  std::vector<std::exception_ptr> kept = {std::make_exception_ptr(CQnException("cause", CQnOverFlowException("deep")))};
  try {
    DynamicClass(shape).FromXml("<node><f/></node>");
  } catch (CQnException const&) {
    kept.push_back(std::current_exception());
  }
  try {
    CConversions::i4FromString("x", CWhitespaceUtils::WhitespaceRule_Collapse);
  } catch (CQnException const&) {
    kept.push_back(std::current_exception());
  }
  ASSERT_EQ(3U, kept.size());
  InThreads([&](std::size_t thread) {
    std::string const document = "<node>" + std::string(thread, ' ') + "<e>1</e></node>";
    for (int round = 0; round < 60; ++round) {
      Failing object(shape, kept[static_cast<std::size_t>(round) % kept.size()]);
      try {
        object.FromXml(document.c_str());
        ADD_FAILURE() << "no failure";
      } catch (CQnException const& failure) {
        ASSERT_NE(nullptr, failure.GetPlace());
        ASSERT_EQ(7 + thread, failure.GetPlace()->GetColumn());
        ASSERT_EQ("/node/e", failure.GetPlace()->GetPath());
      }
      CFailureList list;
      CXmlSerializationContext ctx;
      ctx.SetFailureSink(&list);
      object.FromXml(document.c_str(), ctx);
      ASSERT_EQ(1U, list.GetFailures().size());
      ASSERT_EQ(7 + thread, list.GetFailures()[0].GetPlace().GetColumn());
    }
  });
}

std::atomic<int> g_destroyed{0};

class Counted : public CElement {
 public:
  Counted() : CElement("counted", "") {}

 protected:
  ~Counted() override { ++g_destroyed; }
};

TEST(Threads, CountedReferences) {
  g_destroyed = 0;  // the test may run again
  for (int object = 1; object <= 20; ++object) {
    std::vector<CSmartPtr<CElement>> references(kThreads, CSmartPtr<CElement>(new Counted));
    InThreads([&](std::size_t thread) {
      CSmartPtr<CElement>& own = references[thread];
      for (int round = 0; round < 500; ++round) {
        CSmartPtr<CXmlObjectBase> const copy(own);
        QnVariant value;
        value.SetXmlObject(copy);
        ASSERT_EQ(own.Get(), value.GetXmlObject().Get());
      }
      own = nullptr;
    });
    ASSERT_EQ(object, g_destroyed);
  }
}

TEST(Threads, ValuesAndFacetsThatNobodyChanges) {
  CDecimal const decimal("-12345678901234567890.123456789");
  CBigInteger const integer("123456789012345678901234567890");
  CPrimitiveRestrictions const bounds("", -1, -1, "-1e30", "1e30", "", "", -1);
  CFastInfosetContext shared;
  shared.SetElementMaxAddLength(30);
  std::vector<std::string> texts(kThreads);
  InThreads([&](std::size_t thread) {
    CSmartPtr<CPurchaseOrderType> const order = NewOrder();
    for (int round = 0; round < 100; ++round) {
      CXmlObjectHelper::CheckRestrictionFordecimal("v", decimal, bounds);
      ASSERT_TRUE(TestRegEx("[a-z]+" + std::to_string(round), "abc" + std::to_string(round)));
      CBinaryStream stream;
      CFastInfosetWriter writer(shared, stream);
      writer.Open();
      writer.WriteStartDocument(FInfoDecl_None);
      CXmlObjectBase::ToXml_Int(order, &writer, true, "", CXmlSerializationContext::m_defaultContext, false);
      writer.WriteEndDocument();
      writer.Close();
      texts[thread] = Bytes(stream.GetBinaryStream()) + (decimal * decimal).ToString() + (integer * integer).ToString();
    }
  });
  ExpectAllEqual(texts);
}

}  // namespace
}  // namespace Quillon9
