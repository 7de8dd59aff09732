// Each limit: the last value that is accepted, and the next one with the failure that names the limit. And after each
// failure the same document reads a good input.

#include "quillon9/binding/limits.h"

#include <gtest/gtest.h>

#include <functional>

#include "quillon9/quillon9.h"

namespace Quillon9 {
namespace {

std::string Repeated(std::string const& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

/// Restores what a test changes.
struct Limits {
  std::uint32_t const depth = CLimits::GetMaxElementDepth();
  std::uint64_t const size = CLimits::GetMaxContentSize();
  std::uint32_t const growth = CLimits::GetMaxContentGrowth();
  std::uint32_t const decompressed = CLimits::GetMaxDecompressedSize();
  ~Limits() {
    CLimits::SetMaxElementDepth(depth);
    CLimits::SetMaxContentSize(size);
    CLimits::SetMaxContentGrowth(growth);
    CLimits::SetMaxDecompressedSize(decompressed);
  }
};

void Load(CXmlDocument& document, std::string input) {
  document.LoadXmlStream(reinterpret_cast<unsigned char const*>(input.data()), input.size());
}

std::string Outcome(std::function<void()> const& action) {
  try {
    action();
    return "";
  } catch (CQnException const& failure) {
    return failure.GetMessage();
  }
}

std::string Infoset(std::string const& octets) { return std::string("\xE0\0\0\1\0", 5) + octets; }
std::string Gzip(std::size_t size) {
  unsigned long length = size;
  auto* data = new unsigned char[size];
  std::string const text = "<a>" + std::string(size - 7, 'x') + "</a>";
  std::copy(text.begin(), text.end(), data);
  CQnZip::Compress(&data, &length, CompressionType_GZip);
  std::string const packed(reinterpret_cast<char*>(data), length);
  delete[] data;
  return packed;
}

TEST(Limits, TheLastGoodInputPassesAndTheNextOneNamesTheLimit) {
  Limits const restored;
  CLimits::SetMaxElementDepth(5);
  CLimits::SetMaxContentSize(1000);
  CLimits::SetMaxContentGrowth(0);
  CLimits::SetMaxDecompressedSize(500);
  std::string const depth = "The element nesting exceeds the limit of 5 levels";
  std::string const content = "The content of the document exceeds the limit of 1000 bytes";
  std::string const element = std::string("\x3C\0a", 3);
  std::string const nested = element + std::string(3, '\0');
  // An element or attribute of one letter counts 65.
  auto const text = [](int size) { return "<a>" + std::string(static_cast<std::size_t>(size), 'x') + "</a>"; };
  struct {
    char const* what;
    std::string good;
    std::string bad;
    std::string failure;
  } const rows[] = {
      {"depth, text", Repeated("<a>", 5) + Repeated("</a>", 5), Repeated("<a>", 6), depth},
      {"depth, Fast Infoset", Infoset(nested + std::string(1, '\0') + "\xFF\xFF\xFF"),
       Infoset(nested + std::string(2, '\0')), "Failed to parse FastInfoset. " + depth},
      {"content, text", text(935), text(936), content},
      {"content, attributes", "<a b='" + std::string(870, 'x') + "'/>", "<a b='" + std::string(871, 'x') + "'/>",
       content},
      {"content, names", "<a>" + Repeated("<bb/>", 14) + "</a>", "<a>" + Repeated("<bb/>", 15) + "</a>", content},
      {"content, namespaces", "<a xmlns='" + std::string(467, 'u') + "'/>",
       "<a xmlns='" + std::string(468, 'u') + "'/>", content},
      {"content, entities", "<!DOCTYPE a [<!ENTITY e '0123456789'>]><a>" + Repeated("&e;", 93) + "</a>",
       "<!DOCTYPE a [<!ENTITY e '0123456789'>]><a>" + Repeated("&e;", 94) + "</a>", content},
      {"decompressed", Gzip(500), Gzip(501), "The decompressed data exceeds the limit of 500 bytes"},
  };
  CXmlDocument document;
  for (auto const& row : rows) {
    EXPECT_EQ("", Outcome([&] { Load(document, row.good); })) << row.what;
    EXPECT_EQ(row.failure, Outcome([&] { Load(document, row.bad); })) << row.what;
    EXPECT_EQ("", Outcome([&] { Load(document, "<good/>"); })) << row.what;
    EXPECT_EQ("good", document.GetDocumentElement()->GetLocalName());
  }
}

TEST(Limits, ContentGrowsWithTheInput) {
  Limits const restored;
  CLimits::SetMaxContentSize(0);
  CLimits::SetMaxContentGrowth(100);
  CXmlDocument document;
  EXPECT_EQ("", Outcome([&] { Load(document, "<a>" + Repeated("<b/>", 1000) + "</a>"); }));
  CLimits::SetMaxContentGrowth(10);
  EXPECT_EQ("The content of the document exceeds the limit of 40070 bytes",
            Outcome([&] { Load(document, "<a>" + Repeated("<b/>", 1000) + "</a>"); }));
}

// A few octets each repeat a long text of a table.
TEST(Limits, BoundWhatFastInfosetReferencesRepeat) {
  Limits const restored;
  CLimits::SetMaxContentSize(100000);
  CLimits::SetMaxContentGrowth(1);
  std::string const first = std::string("\x3C\0a\x93\0\0\x02\xE5", 8) + std::string(1000, 'x');
  CXmlDocument document;
  EXPECT_EQ("", Outcome([&] { Load(document, Infoset(first + Repeated("\xA0", 98) + "\xFF")); }));
  EXPECT_EQ("The content of the document exceeds the limit of 100000 bytes",
            Outcome([&] { Load(document, Infoset(first + Repeated("\xA0", 99) + "\xFF")); }));
}

TEST(Limits, OfValuesAreFixed) {
  EXPECT_EQ("", Outcome([] { CDecimal("1e100000"); }));
  EXPECT_EQ("The exponent of a Decimal exceeds the limit of 100000 [1e100001]", Outcome([] { CDecimal("1e100001"); }));
}

}  // namespace
}  // namespace Quillon9
