// What threads may share, shared by eight of them at once. Made for ThreadSanitizer; without it, it still finds what
// comes out wrong.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "expect_failure.h"
#include "octets.h"
#include "orders.h"
#include "quillon9/quillon9.h"

namespace Quillon9 {
namespace {

using namespace Testing;
using Orders::CPurchaseOrderType;

constexpr std::size_t kThreads = 8;

/// Calls work(thread) in kThreads threads, which begin together.
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

/// Everything that is done with a graph of objects; what was written in the end.
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

// First, so that the tables of the classes are built by threads at the same time.
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
    own.Append("x");  // the last one to do so has the holder for itself
    own.Clear();
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
