// Programs of an old schema must not destroy documents of a newer one.

#include <gtest/gtest.h>

#include <string>

#include "article.h"
#include "constructs.h"
#include "quillon9/quillon9.h"
#include "support/newer_documents.h"

namespace Quillon9 {
namespace {

using namespace Testing;

CXmlSerializationContext Keeping(bool isKept = true) {
  CXmlSerializationContext ctx;
  ctx.SetIgnoreUnknownElements(true);
  ctx.SetIgnoreUnknownAttributes(true);
  ctx.SetKeepUnknown(isKept);
  return ctx;
}

constexpr char kNamespaces[] =
    " xmlns='urn:t' xmlns:o='urn:o' xmlns:x='urn:x' xmlns:xlink='http://www.w3.org/1999/xlink'"
    " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'";

/// Reads a document as a program does, or the failure.
struct Read {
  template <class ReadRoot>
  Read(ReadRoot readRoot, CXmlSource const& source, CXmlSerializationContext const& ctx) {
    try {
      object = readRoot(source, ctx);
    } catch (CQnException const& caught) {
      failure = caught.GetFullMessage();
    }
  }

  CSmartPtr<CXmlObjectBase> object;
  std::string failure;
};

/// How many of \p rounds documents that are newer than \p document can be read at all; each of these must come back.
template <class ReadRoot>
int CountThatComeBack(ReadRoot readRoot, std::string const& document, unsigned seed, int rounds) {
  CXmlSerializationContext const keeping = Keeping();
  Newer newer(seed);
  int count = 0;
  for (int i = 0; i < rounds; ++i) {
    std::string const text = newer.Make(document);
    Read const dropped(readRoot, XmlText(text), Keeping(false));
    Read const kept(readRoot, XmlText(text), keeping);
    EXPECT_EQ(kept.failure, dropped.failure) << text;
    if (!kept.object || !dropped.object) continue;
    ++count;
    try {
      bool const isFormatted = newer.Chance(2);
      std::string const written = kept.object->ToXml(newer.Chance(2), isFormatted, EOLType_LF, keeping);
      EXPECT_EQ(VisibleDifference(text, written), "") << text << '\n' << written;
      CBinaryData const infoset = kept.object->ToFastInfosetStream(FInfoDecl_None, keeping);
      Read const again(readRoot, infoset, keeping);
      EXPECT_EQ(again.object ? VisibleDifference(text, again.object->ToXml(false)) : again.failure, "") << text;
      CFailureList failures;
      CXmlSerializationContext telling = Keeping();
      telling.SetFailureSink(&failures);
      Read const told(readRoot, XmlText(text), telling);
      EXPECT_EQ(told.object ? VisibleDifference(text, told.object->ToXml(false, false)) : told.failure, "") << text;
    } catch (CQnException const& failure) {
      ADD_FAILURE() << text << failure.GetFullMessage();
    }
  }
  return count;
}

TEST(UnknownContent, DocumentsOfANewerSchemaComeBack) {
  char const* const documents[] = {
      "<r1><a/><b/><a/><a/><b/></r1>",
      "<r2><a>1</a><b>2</b><b>3</b><a>4</a></r2>",
      "<r3><a>1</a><a>2</a><a>2</a><c>3</c><a>1</a><a>2</a><b>3</b></r3>",
      "<r4><a>1</a><a>2</a><a>3</a><a>4</a><a>5</a><a>6</a><a>7</a></r4>",
      "<r6><a>1</a><a>1</a><a>1</a><z>1</z></r6>",
      "<r7><b>1</b><a>1</a><a>1</a><b>1</b></r7>",
      "<any4><a>1<x:b/>2</a><a/><b xsi:type='Base'><a>1</a></b></any4>",
      "<narrow q='1'><a>1</a><a>1</a></narrow>",
      "<base xsi:type='Wide'><c>1</c></base>",
      "<holder><one xsi:type='Wide'><c>1</c></one></holder>",
      "<holder><many/><many xsi:type='ClosedWide'><b>1</b></many></holder>",
      "<heads><plain>1</plain><defaulted>x</defaulted><fixedOne>f</fixedOne><o:far>1</o:far></heads>",
      "<heads><blockedRes q='1'><a>1</a></blockedRes><blockingExt/></heads>",
      "<w1><x:q><r/></x:q><o:far>f</o:far><a>1</a></w1>",
      "<w3><a>1</a><narrow q='1'><a>1</a></narrow><base/></w3>",
      "<w4 x:k='1' o:attr='5'><a>1</a><x:b/><a>2</a></w4>",
      "<allMore p='1' q='2' r='3'><y>1</y><x>2</x></allMore>",
      "<nils><l>1 2</l><l xsi:nil='true'/><l/><v xsi:nil='1'/><v>1</v><o xsi:nil='true' p='1'/><o/></nils>",
      "<sizes size='2'><s>1</s><s>2</s></sizes>",
  };
  constexpr int kRounds = 30;
  int count = 0;
  for (std::string document : documents) {
    document.insert(document.find_first_of(" />", 1), kNamespaces);
    count += CountThatComeBack([](auto const& source, auto const& ctx) { return Constructs::ReadRoot(source, ctx); },
                               document, 7, kRounds);
  }
  EXPECT_GT(count, kRounds * 15);  // the others lack something in front of what is unknown
}

TEST(UnknownContent, MixedContentOfANewerSchemaComesBack) {
  std::string const document =
      "<article><p>The <em>big <em>blue</em> one</em> sea, <code>x &lt; 1</code> and <number>5</number>.</p>"
      "<item>one<title>t</title>two<note>n<em>m</em></note>three<code>c</code><code>d</code></item>"
      "<card>a<x>1</x>b<z>2</z>c</card><signed>by<em>e</em>me<by>you</by>!</signed><p>alone</p></article>";
  constexpr int kRounds = 200;
  EXPECT_EQ(CountThatComeBack([](auto const& source, auto const& ctx) { return Article::ReadArticle(source, ctx); },
                              document, 8, kRounds),
            kRounds);
}

TEST(UnknownContent, ThingsKeepTheirPlacesWhenTheProgramChangesTheObject) {
  CXmlSerializationContext const ctx = Keeping();
  auto const article = Article::ReadArticle(
      XmlText("<article v='2'><!--1--><card><x>1</x><!--2--><z>3</z><new/></card><later/><!--3--></article>"), ctx);
  auto const written = [&] { return article->ToXml(false, false); };
  EXPECT_EQ(written(),
            "<article v=\"2\"><!--1--><card><x>1</x><!--2--><z>3</z><new/></card><later/><!--3--></article>");
  article->GetChoice().begin()->GetCard()->SetX(std::nullopt);
  EXPECT_EQ(written(), "<article v=\"2\"><!--1--><card><z>3</z><!--2--><new/></card><later/><!--3--></article>");
  CUnknownContent& unknown = *article->GetUnknownContent();
  ASSERT_EQ(unknown.GetItems().size(), 3u);
  EXPECT_EQ(unknown.GetItems()[1].element->GetName(), "later");
  unknown.GetItems().erase(unknown.GetItems().begin());
  unknown.GetAttributes()->Clear();
  EXPECT_EQ(written(), "<article><card><z>3</z><!--2--><new/></card><later/><!--3--></article>");
  article->DropUnknownContent();
  EXPECT_EQ(article->GetUnknownContent(), nullptr);
  EXPECT_EQ(written(), "<article><card><z>3</z><!--2--><new/></card></article>");
}

}  // namespace
}  // namespace Quillon9
