// Documents with mixed content keep where their text stands, on every road through the library.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "article.h"
#include "expect_failure.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

/// A document as it is meant to be: text is a node without a name.
struct Model {
  std::string name;
  std::string text;
  std::vector<Model> content;

  bool IsText() const { return name.empty(); }
};

/// One form for all: children in braces, text in brackets. Text is shown where the content is mixed, or has no children.
std::string Shown(Model const& model) {
  std::string shown = model.name + "{";
  for (Model const& each : model.content) shown += each.IsText() ? "[" + each.text + "]" : Shown(each);
  return shown + "}";
}

std::string Shown(CXmlElement const& element);
std::string Shown(CElement const& element);

template <class Element>
std::string ShownContent(Element const& element) {
  std::string shown = "{";
  for (auto const& item : element.Content()) {
    shown += item.IsText() ? "[" + std::string(item.GetText()) + "]" : Shown(*item.GetElement());
  }
  return shown + "}";
}

std::string Shown(CXmlElement const& element) { return element.GetLocalName() + ShownContent(element); }

std::string Shown(CElement const& element) { return element.GetName() + ShownContent(element); }

/// Of generated classes, by the interface for programs.
std::string Shown(CBoundObject const& object) {
  std::string shown = object.GetElementName() + "{";
  for (CBoundItem const& item : object.Content()) {
    if (item.IsText()) {
      shown += "[" + std::string(item.GetText()) + "]";
    } else if (auto const* const child = item.As<CBoundObject>()) {
      shown += Shown(*child);
    } else if (auto const* const element = item.As<CElement>()) {
      shown += Shown(*element);
    } else {
      shown += item.GetName() + (item.GetValue().empty() ? "{}" : "{[" + item.GetValue() + "]}");
    }
  }
  return shown + "}";
}

std::string ShownTree(CBinaryData const& bytes) {
  CXmlDocument document;
  document.LoadXmlStream(bytes.GetData(), bytes.GetLength());
  return Shown(*document.GetDocumentElement());
}

std::string Written(Model const& model) {
  std::string const tag = model.name == "other" ? "o:other" : model.name;
  std::string text = "<" + tag + (model.name == "article" ? " xmlns:o='urn:o'>" : ">");
  for (Model const& each : model.content) text += each.IsText() ? each.text : Written(each);
  return text + "</" + tag + ">";
}

/// Makes documents of article.xsd.
class Maker {
 public:
  explicit Maker(unsigned seed) : m_random(seed) {}

  Model Article() {
    Model article{"article", "", {}};
    for (int left = Upto(5); left >= 0; --left) {
      switch (Upto(3)) {
        case 0: article.content.push_back(Para("p", 3)); break;
        case 1: article.content.push_back(Item()); break;
        case 2: article.content.push_back(Card()); break;
        default: article.content.push_back(Signed());
      }
    }
    return article;
  }

 private:
  int Upto(int most) { return std::uniform_int_distribution<int>(0, most)(m_random); }
  Model Value(char const* name) { return {name, "", {{"", "7", {}}}}; }

  Model Para(char const* name, int depth) {
    Model para{name, "", {}};
    for (int left = Upto(4); left > 0; --left) {
      AddText(para);
      switch (Upto(depth > 0 ? 4 : 1)) {
        case 0: para.content.push_back(Value("code")); break;
        case 1: para.content.push_back(Value("number")); break;
        case 2: para.content.push_back(Para("other", depth - 1)); break;
        default: para.content.push_back(Para("em", depth - 1));
      }
    }
    AddText(para);
    return Settled(para);
  }

  Model Item() {
    Model item{"item", "", {}};
    AddText(item);
    if (Upto(1) == 0) Add(item, Value("title"));
    for (int left = Upto(2); left > 0; --left) Add(item, Para("note", 1));
    for (int left = Upto(3); left > 0; --left) Add(item, Value("code"));
    return Settled(item);
  }

  Model Card() {
    Model card{"card", "", {}};
    std::vector<Model> members = {Value("x"), Para("y", 1), Value("z")};
    std::shuffle(members.begin(), members.end(), m_random);
    members.resize(static_cast<std::size_t>(Upto(3)));
    AddText(card);
    for (Model const& member : members) Add(card, member);
    return Settled(card);
  }

  Model Signed() {
    Model model = Para("signed", 1);
    if (Upto(1) == 0) model.content.push_back(Value("by"));
    return Settled(model);
  }

  void Add(Model& to, Model const& child) {
    to.content.push_back(child);
    AddText(to);
  }
  void AddText(Model& to) {
    static char const* const kTexts[] = {"", "", " ", "\n\t", "text", " one two ", "."};
    std::string const text = kTexts[Upto(6)];
    if (!text.empty()) to.content.push_back({"", text, {}});
  }
  /// Join neighbours, and drop white space that only separates elements, which is not content.
  static Model Settled(Model const& model) {
    Model settled{model.name, "", {}};
    bool isMixed = true;
    for (Model const& each : model.content) {
      if (!each.IsText()) isMixed = false;
    }
    for (Model const& each : model.content) {
      if (each.text.find_first_not_of(" \n\t") != std::string::npos) isMixed = true;
    }
    for (Model const& each : model.content) {
      if (!each.IsText()) {
        settled.content.push_back(each);
      } else if (isMixed) {
        if (settled.content.empty() || !settled.content.back().IsText()) settled.content.push_back({"", "", {}});
        settled.content.back().text += each.text;
      }
    }
    return settled;
  }

  std::mt19937 m_random;
};

Article::CPara& Fill(Article::CPara& para, Model const& model) {
  for (Model const& each : model.content) {
    if (each.IsText()) {
      para.AppendText(each.text);
    } else if (each.name == "em") {
      Fill(para.GetChoice().Add().CreateEm(), each);
    } else if (each.name == "code") {
      para.GetChoice().Add().SetCode(each.content[0].text);
    } else if (each.name == "number") {
      para.GetChoice().Add().SetNumber(7);
    }
  }
  return para;
}

bool HasGenericPart(Model const& model) {
  for (Model const& each : model.content) {
    if (each.name == "other" || HasGenericPart(each)) return true;
  }
  return false;
}

}  // namespace

TEST(BoundMixedContent, ComesBackOnEveryRoad) {
  CXmlSerializationContext keeping;
  keeping.SetKeepMixedContent(true);
  for (unsigned seed = 0; seed < 300; ++seed) {
    Model const model = Maker(seed).Article();
    std::string const expected = Shown(model);
    std::string const text = Written(model);
    SCOPED_TRACE(text);
    CXmlDocument document;
    document.LoadXml(text.c_str());
    ASSERT_EQ(expected, Shown(*document.GetDocumentElement()));

    auto const article = Article::ReadArticle(XmlText(text));
    ASSERT_EQ(expected, Shown(*article));
    for (bool const format : {false, true}) {
      CBinaryData const written = article->ToXmlStream(true, format, XmlEncoding_UTF8);
      ASSERT_EQ(expected, ShownTree(written)) << format;
      ASSERT_EQ(expected, Shown(*Article::ReadArticle(written))) << format;
    }
    CBinaryData const infoset = article->ToFastInfosetStream();
    ASSERT_EQ(expected, ShownTree(infoset));
    ASSERT_EQ(expected, Shown(*Article::ReadArticle(infoset)));

    CSmartPtr<CElement> const element(new CElement("none"));
    element->CopyXmlElement(document.GetDocumentElement(), keeping);
    for (CSmartPtr<CElement> const& generic :
         {element, element->Clone(), CSmartPtr<CElement>(new CElement(article.Get(), nullptr))}) {
      ASSERT_EQ(expected, Shown(*generic));
      ASSERT_EQ(expected, ShownTree(generic->ToXmlStream(true, true, XmlEncoding_UTF8)));
      ASSERT_EQ(expected, ShownTree(generic->ToFastInfosetStream()));
    }
    for (Model const& part : model.content) {
      if (part.name != "p" || HasGenericPart(part)) continue;
      CSmartPtr<Article::CPara> const built = Article::CPara::CreateInstance("p");
      ASSERT_EQ(Shown(part), Shown(Fill(*built, part)));
    }
  }
}

TEST(BoundMixedContent, IsWalkedAndBuilt) {
  std::ostringstream out;
  // [mixed]
  auto const article =
      Article::ReadArticle(XmlText("<article><p>Press <em>Start</em>, then <code>F1</code>.</p></article>"));
  Article::CPara& para = *article->GetChoice()[0].GetP();
  for (CBoundItem const& item : para.Content()) {
    if (item.IsText()) {
      out << item.GetText();
    } else if (auto const* const emphasis = item.As<Article::CPara>()) {
      out << '*' << emphasis->GetText() << '*';
    } else {
      out << item.GetName() << ' ' << item.GetValue();
    }
  }
  para.AppendText(" Or press ");
  para.GetChoice().Add().SetCode("F2");
  para.AppendText(".");
  // [mixed]
  EXPECT_EQ("Press *Start*, then code F1.", out.str());
  EXPECT_EQ("<article>\n\t<p>Press <em>Start</em>, then <code>F1</code>. Or press <code>F2</code>.</p>\n</article>\n",
            article->ToXml(false));
}

TEST(BoundMixedContent, ProgramsBuildAndChangeIt) {
  CSmartPtr<Article::CPara> const para = Article::CPara::CreateInstance("p");
  para->SetText("0");
  para->GetChoice().Add().SetCode("a");
  EXPECT_EQ("<p>\n\t<code>a</code>\n</p>\n", (para->SetText(""), para->ToXml(false)));
  EXPECT_EQ("<p><code>a</code>0</p>\n", (para->SetText("0"), para->ToXml(false))) << "text adds no layout";
  para->AppendText("1");
  para->GetChoice().Add().SetNumber(2);
  para->AppendText("3");
  EXPECT_EQ("<p><code>a</code>01<number>2</number>3</p>\n", para->ToXml(false));
  EXPECT_EQ("013", para->GetText());
  para->GetChoice().Add().CreateEm().AppendText("4");
  EXPECT_EQ("<p><code>a</code>01<number>2</number>3<em>4</em></p>\n", para->ToXml(false));
  para->GetChoice().erase(para->GetChoice().begin());
  EXPECT_EQ("<p><number>2</number>01<em>4</em>3</p>\n", para->ToXml(false)) << "by the number of elements in front";
  CBoundContent const content = para->Content();
  ASSERT_EQ(4U, content.size());
  EXPECT_EQ("number", content[0].GetName());
  EXPECT_EQ(&para->GetChoice()[0], content[0].GetHolder());
  EXPECT_EQ("4", content[2].As<Article::CPara>()->GetText());
  EXPECT_EQ(nullptr, content[2].As<CElement>());
  para->GetChoice().Clear();
  EXPECT_EQ("<p>013</p>\n", para->ToXml(false));
  para->FromXml("<p>5</p>");
  EXPECT_EQ("5", para->GetText());
  para->GetChoice().Add().SetCode("b");
  EXPECT_EQ("<p>5<code>b</code></p>\n", para->ToXml(false)) << "text of a document without elements";
  para->AppendText("6");
  EXPECT_EQ("<p>5<code>b</code>6</p>\n", para->ToXml(false));
}

TEST(BoundMixedContent, ValuesAreShownAsTheyAreWritten) {
  auto const article = Article::ReadArticle(XmlText("<article><p>a<three>007</three></p></article>"));
  EXPECT_EQ(Shown(*article), "article{p{[a]three{[007]}}}");
}

TEST(BoundMixedContent, ElementsThatAReadLeavesOutDoNotMoveText) {
  CXmlSerializationContext ctx;
  ctx.SetIgnoreUnknownElements(true);
  auto const article = Article::ReadArticle(
      XmlText("<article><card><x>t</x>1<none/>2<z>7</z>3</card><item><title/>4<code>c</code><none/>5</item></article>"),
      ctx);
  EXPECT_EQ("article{card{x{[t]}[12]z{[7]}[3]}item{title{}[4]code{[c]}[5]}}", Shown(*article));
}

TEST(GenericMixedContent, ChildrenMayBeAddedAndRemoved) {
  CElement& p = *new CElement("p");
  CSmartPtr<CElement> const held(&p);
  p.SetText("0");
  p.GetElements()->Add("a", "");
  EXPECT_EQ("p{a{}[0]}", Shown(p));
  EXPECT_FALSE(p.IsMixed());
  p.AppendText("1");
  p.GetElements()->Add("b", "");
  p.AppendText("2");
  p.GetElements()->Add("c", "");
  EXPECT_EQ("p{a{}[01]b{}[2]c{}}", Shown(p));
  EXPECT_EQ("<p><a/>01<b/>2<c/></p>\n", p.ToXml(false));
  CSmartPtr<CElement> const moved = p.GetElements()->Item(0);
  p.GetElements()->Remove(0);
  p.GetElements()->Add(moved.Get());
  EXPECT_EQ("p{[01]b{}[2]c{}a{}}", Shown(p));
  p.AppendText("3");
  p.GetElements()->Remove(0);
  EXPECT_EQ("p{[012]c{}a{}[3]}", Shown(p));
  p.GetElements()->Clear();
  EXPECT_EQ("p{[0123]}", Shown(p));
  p.GetElements()->Add("d", "");
  p.SetText("4");
  EXPECT_EQ("<p>\n\t<d/>\n4</p>\n", p.ToXml(false)) << "after the children, as without places";
  CSmartPtr<CElement> const copy(new CElement(&p, nullptr));
  EXPECT_EQ("<p>\n\t<d/>\n4</p>\n", copy->ToXml(false));
  EXPECT_FALSE(copy->IsMixed());
}

TEST(GenericMixedContent, TextFollowsTheChildrenUnlessTheContextKeepsIt) {
  CXmlDocument document;
  document.LoadXml("<p>1<a/>2</p>");
  CSmartPtr<CElement> const element(new CElement("none"));
  element->CopyXmlElement(document.GetDocumentElement());
  EXPECT_EQ("<p><a/>12</p>", element->ToXml(false, false));
  EXPECT_EQ("p{a{}[12]}", Shown(*element));
}
