#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "both_readers.h"
#include "corpus/sha256.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/text/encoder.h"
#include "quillon9/xmlio/document.h"
#include "record_comparison.h"
#include "support/scoped_locale.h"

/// Real documents and the W3C conformance suite, read in place from the folder that the environment variable
/// QUILLON9_CORPUS or the build specifies. Each must give exactly the recorded tree or the recorded failure.
namespace Quillon9 {
namespace {

namespace fs = std::filesystem;
using Row = std::vector<std::string>;

fs::path CorpusFolder() {
  char const* const folder = std::getenv("QUILLON9_CORPUS");
  if (folder != nullptr) return folder;
#ifdef QUILLON9_CORPUS_DIR
  return QUILLON9_CORPUS_DIR;
#else
  return {};
#endif
}

/// Return the rows of a table of tab-separated columns without its heading.
std::vector<Row> ReadTable(fs::path const& path) {
  std::vector<Row> rows;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    Row row;
    std::istringstream columns(line);
    for (std::string column; std::getline(columns, column, '\t');) row.push_back(column);
    rows.push_back(row);
  }
  return rows;
}

void AppendCounted(std::string const& text, std::string& form) { form += std::to_string(text.size()) + ":" + text; }

void AppendForm(CXmlElement const& element, std::string& form) {
  form += '(';
  AppendCounted(element.GetNamespaceURI(), form);
  AppendCounted(element.GetLocalName(), form);
  for (CXmlAttribute const* attribute : element.GetAttributes()) {
    form += '@';
    AppendCounted(attribute->GetNamespaceURI(), form);
    AppendCounted(attribute->GetLocalName(), form);
    AppendCounted(attribute->GetValue(), form);
  }
  form += '=';
  AppendCounted(element.GetText(), form);
  for (auto const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    AppendForm(*child, form);
  }
  form += ')';
}

/// Return "accept" and the digest of the tree, or "reject" and the text of the failure.
std::string Outcome(fs::path const& path, SchemaType schemaType) {
  CXmlSerializationContext context;
  context.SetSchemaType(schemaType);
  CXmlDocument document(context);
  try {
    document.Load(path.c_str());
  } catch (CQnException const& failure) {
    return "reject " + failure.GetFullMessage();
  }
  std::string form;
  AppendForm(*document.GetDocumentElement(), form);
  return "accept " + Sha256(form);
}

struct TextModel {
  char const* name;
  char const* locale;
  bool asciiOnly;
};

/// UTF-8 reaches the tree unchanged both ways: passed through, and converted for a UTF-8 locale.
class Corpus : public testing::TestWithParam<TextModel> {
 protected:
  void SetUp() override {
    if (!fs::exists(CorpusFolder() / "manifest.tsv")) GTEST_SKIP() << "no sample documents: set QUILLON9_CORPUS";
    if (!m_locale.IsThere()) GTEST_SKIP() << "no locale " << GetParam().locale;
    ASCIIOnly(GetParam().asciiOnly);
  }
  void TearDown() override { ASCIIOnly(false); }

 private:
  Testing::ScopedLocale const m_locale{GetParam().locale};
};

TEST_P(Corpus, SampleDocumentsGiveTheRecordedTrees) {
  std::vector<Row> const rows = ReadTable(CorpusFolder() / "manifest.tsv");
  int checked = 0;
  for (Row const& row : rows) {
    if (row.at(2) == "-") continue;  // not a document
    std::string const expected = row.at(2) + " " + row.at(3);
    EXPECT_EQ(Outcome(CorpusFolder() / row.at(0), SchemaType_XSD), expected) << row.at(0);
    EXPECT_EQ(Outcome(CorpusFolder() / row.at(0), SchemaType_DTD), row.at(4) == "same" ? expected : row.at(4))
        << row.at(0) << " without namespaces";
    ++checked;
  }
  EXPECT_GT(checked, 0);
}

/// The conformance suite, unpacked for one run.
class Suite {
 public:
  Suite() {
    std::string pattern = (fs::temp_directory_path() / "quillon9-corpus-XXXXXX").string();
    m_folder = ::mkdtemp(pattern.data());
    fs::path const archive = CorpusFolder() / "xmlconf" / "xmlconf-docs.tar.xz";
    m_ready = std::system(("tar -xJf '" + archive.string() + "' -C '" + m_folder.string() + "'").c_str()) == 0;
  }
  ~Suite() { fs::remove_all(m_folder); }
  bool IsReady() const { return m_ready; }
  fs::path const& Folder() const { return m_folder; }

 private:
  fs::path m_folder;
  bool m_ready;
};

std::string ExpectedOutcome(Row const& row, fs::path const& path) {
  // The suite describes the parser, which an empty file does not reach.
  if (!fs::is_empty(path)) return row.at(8) + " " + row.at(9);
  return "reject Failed to read the contents of the file [" + path.string() + "] Error [No data available]";
}

TEST_P(Corpus, ConformanceSuiteGivesTheRecordedOutcomes) {
  Suite const suite;
  ASSERT_TRUE(suite.IsReady()) << "tar could not unpack the suite";
  std::map<std::string, std::pair<int, int>> counts;  // by class: rows that agree, rows
  for (Row const& row : ReadTable(CorpusFolder() / "xmlconf" / "expected.tsv")) {
    fs::path const path = suite.Folder() / row.at(1);
    std::string const outcome = Outcome(path, row.at(2) == "plain" ? SchemaType_DTD : SchemaType_XSD);
    std::string const expected = ExpectedOutcome(row, path);
    // Outside the class "strict" the suite leaves the answer open or requires what the parser does not do: only the
    // verdict has to match.
    std::size_t const length = row.at(7) == "strict" ? std::string::npos : row.at(8).size();
    EXPECT_EQ(outcome.substr(0, length), expected.substr(0, length)) << row.at(0) << ": " << outcome;
    auto& [agreeing, all] = counts[row.at(7)];
    if (outcome == expected) ++agreeing;
    ++all;
  }
  EXPECT_GT(counts["strict"].second, 0);
  for (auto const& [rowClass, count] : counts) {
    std::cout << rowClass << ": " << count.first << " of " << count.second << " agree\n";
  }
}

std::string BytesOf(fs::path const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// \p text with one place changed at random, in a way that documents are changed: bytes are lost, repeated or replaced.
std::string Damaged(std::string text, std::mt19937& random) {
  constexpr std::string_view kBytes("<>&'\"/=!?:;-[] \t\r\n\0\x01xa\x80\xC3\xEF\xFF", 27);
  std::size_t const at = random() % text.size();
  std::size_t const length = 1 + random() % 12;
  switch (random() % 4) {
    case 0: text.erase(at, length); break;
    case 1: text.insert(at, text.substr(random() % text.size(), length)); break;
    case 2: text.insert(at, 1, kBytes[random() % kBytes.size()]); break;
    case 3: text[at] = kBytes[random() % kBytes.size()]; break;
  }
  return text;
}

/// The fast reader takes each document in UTF-8, because none declares anything in its document type, and damaged ones
/// only where the parser reads the same.
TEST_P(Corpus, DocumentsAndDamagedOnesAreReadAlikeByBothReaders) {
  constexpr int kTries = 40;
  constexpr std::size_t kLongest = 20000;
  std::mt19937 random(1);
  int taken = 0;
  for (Row const& row : ReadTable(CorpusFolder() / "manifest.tsv")) {
    if (row.at(2) != "accept") continue;
    std::string const text = BytesOf(CorpusFolder() / row.at(0));
    bool const isPlain = text.find('\0') == std::string::npos;
    Testing::BothReaders const whole = Testing::ReadByBoth(text);
    EXPECT_EQ(whole.difference, "") << row.at(0);
    EXPECT_EQ(whole.isTaken, isPlain) << row.at(0);
    for (int i = 0; i < kTries && text.size() <= kLongest; ++i) {
      std::string const damaged = Damaged(text, random);
      Testing::BothReaders const result = Testing::ReadByBoth(damaged);
      EXPECT_EQ(result.difference, "") << row.at(0) << '\n' << damaged;
      taken += result.isTaken ? 1 : 0;
    }
  }
  EXPECT_GT(taken, 100);
}

TEST_P(Corpus, RecordsOfEachNameAreTheElementsOfAWholeRead) {
  CXmlSerializationContext const context = Testing::Utf8Context();
  constexpr std::size_t kWhole = 1 << 20;
  constexpr std::size_t kLongest = 20000;
  int compared = 0;
  for (Row const& row : ReadTable(CorpusFolder() / "manifest.tsv")) {
    if (row.at(2) != "accept") continue;
    std::string const octets = BytesOf(CorpusFolder() / row.at(0));
    CXmlDocument whole(context);
    whole.LoadXmlStream(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
    std::set<std::string> names;
    Testing::CollectNames(*whole.GetDocumentElement(), names);
    for (std::string const& name : names) {
      EXPECT_EQ(Testing::DifferenceOfRecords(whole, octets, name, kWhole, kWhole), "") << row.at(0);
      ++compared;
      if (octets.size() > kLongest) continue;
      EXPECT_EQ(Testing::DifferenceOfRecords(whole, octets, name, 7, 1), "") << row.at(0);
    }
  }
  EXPECT_GT(compared, 500);
}

INSTANTIATE_TEST_SUITE_P(TextModels, Corpus,
                         testing::Values(TextModel{"AsciiOnly", "C", true}, TextModel{"Utf8Locale", "C.UTF-8", false}),
                         [](auto const& model) { return std::string(model.param.name); });

}  // namespace
}  // namespace Quillon9
