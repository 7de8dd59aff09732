// The code of docs/tree.md.

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

// [walk]
void Outline(CXmlElement const& element, std::size_t depth) {
  std::cout << std::string(depth * 2, ' ') << element.GetLocalName();
  for (CXmlAttribute const& attribute : element.Attributes()) {
    std::cout << ' ' << attribute.GetLocalName() << '=' << attribute.GetValue();
  }
  std::cout << '\n';
  for (CXmlElement const& child : element.Children()) Outline(child, depth + 1);
}
// [walk]

void ReadAndWalk() {
  std::cout << "[walk]\n";
  // [read]
  CXmlDocument document;
  document.Load(DOCUMENT);  // the path of the file above
  CXmlElement const& library = *document.GetDocumentElement();
  Outline(library, 0);
  // [read]
}

void Find() {
  CXmlDocument document;
  document.Load(DOCUMENT);
  std::cout << "[find]\n";
  // [find]
  CXmlElement const& library = *document.GetDocumentElement();
  for (CXmlElement const& book : library.Children("book")) {
    CXmlElement const* const title = book.Children("title").First();  // null if there is none
    CXmlAttribute const* const lent = book.FindAttribute("lent");
    std::cout << book.GetAttribute("id", "") << ' ' << (title != nullptr ? title->GetText() : "untitled")
              << (lent != nullptr ? ", lent" : "") << '\n';
  }
  // [find]
  std::cout << "[algorithms]\n";
  // [algorithms]
  auto const children = library.Children();
  std::cout << std::distance(children.begin(), children.end()) << " in all\n";
  auto const onShelf = std::find_if(children.begin(), children.end(), [](CXmlElement const& child) {
    return !child.Children("shelf", "urn:example:shelf").empty();
  });
  if (onShelf != children.end()) std::cout << onShelf->GetAttribute("id", "") << " stands on a shelf\n";
  // [algorithms]
}

void Mixed() {
  std::cout << "[mixed]\n";
  // [mixed]
  CXmlDocument document;
  document.LoadXml("<p>The <b>sea</b> is\n  <b>wide</b>.<!-- and deep --></p>");
  CXmlElement const& paragraph = *document.GetDocumentElement();
  std::cout << '[' << paragraph.GetText() << "]\n" << '[' << CWhitespaceUtils::Collapse(paragraph.GetText()) << "]\n";
  for (auto const& item : paragraph.Content()) {
    if (item.IsText()) {
      std::cout << '[' << item.GetText() << ']';
    } else {
      std::cout << '<' << item.GetElement()->GetLocalName() << '>';
    }
  }
  std::cout << '\n';
  // [mixed]
}

void Scopes() {
  std::cout << "[aliases]\n";
  // [aliases]
  CXmlDocument document;
  document.LoadXml("<a xmlns:p='urn:one'><p:b/><p:b xmlns:p='urn:two'/></a>");
  for (CXmlElement const& b : document.GetDocumentElement()->Children("b")) std::cout << b.GetNamespaceURI() << ' ';
  std::cout << document.LookupNamespaceFromAlias("p") << '\n';  // the last declaration, wherever it was
  // [aliases]
  std::cout << "[declarations]\n";
  // [declarations]
  CXmlSerializationContext ctx;
  ctx.SetSchemaType(SchemaType_DTD);
  CXmlDocument plain(ctx);
  plain.LoadXml("<a xmlns:p='urn:one'><p:b/><p:b xmlns:p='urn:two'/></a>");
  Outline(*plain.GetDocumentElement(), 0);
  // [declarations]
}

// [write]
void Write(CXmlWriter& writer, CXmlElement const& element) {
  writer.WriteStartElement(element.GetLocalName(), element.GetNamespaceURI());
  for (CXmlAttribute const& attribute : element.Attributes()) {
    writer.WriteAttributeString(attribute.GetLocalName(), attribute.GetNamespaceURI(), attribute.GetValue(),
                                ItemType_string);
  }
  std::string const text = CWhitespaceUtils::Collapse(element.GetText());
  writer.WriteString(text, ItemType_string);
  for (CXmlElement const& child : element.Children()) Write(writer, child);
  writer.WriteEndElement();
}
// [write]

void ChangeAndWrite() {
  CXmlDocument document;
  document.Load(DOCUMENT);
  // [change]
  CXmlElement& library = *document.GetDocumentElement();
  delete library.RemoveLastChildElement();  // the map, which the caller owns from here on
  CXmlElement& added = *library.CreateNewChildElement();
  added.SetElementName("book");
  added.SetNamespace("urn:example:library");
  added.AddAttribute("id", "b3", "");
  CXmlElement& title = *added.CreateNewChildElement();
  title.SetElementName("title");
  title.SetNamespace("urn:example:library");
  title.AppendText("The Bell");
  for (CXmlElement& book : library.Children("book")) book.AddAttribute("checked", "yes", "");
  // [change]
  std::cout << "[written]\n";
  // [written]
  CTextStream text;
  CXmlTextWriter writer(text);
  writer.Open();
  writer.SetDefaultNamespace("urn:example:library");
  writer.AddNamespace("s", "urn:example:shelf");
  Write(writer, library);
  writer.Close();
  std::cout << text.GetText();
  // [written]
}

void Copy() {
  CXmlDocument document;
  document.Load(DOCUMENT);
  std::cout << "[copy]\n";
  // [copy]
  CSmartPtr<CElement> const library(new CElement("library"));
  library->CopyXmlElement(document.GetDocumentElement());
  library->GetElements()->Remove(0);  // the first book
  library->FindElement("book")->FindAttribute("lent")->SetValue("2026-03-14");
  library->SetText("");  // the white space between the books
  std::cout << library->ToXml(false);
  // [copy]
}

void Detach() {
  std::cout << "[detach]\n";
  // [detach]
  std::unique_ptr<CXmlElement> last;
  {
    CXmlDocument document;
    document.Load(DOCUMENT);
    last.reset(document.GetDocumentElement()->RemoveLastChildElement());
  }
  std::cout << last->GetLocalName() << ": " << last->Children("title").First()->GetText() << '\n';
  // [detach]
}

// [filter]
int g_titles = 0;

bool CountTitles(CXmlElement* element) {  // called for each complete element, children first
  if (element->GetLocalName() == "title") ++g_titles;
  return true;  // drop it: the tree never holds more than the open elements
}
// [filter]

void Filter() {
  std::cout << "[filter]\n";
  // [filtered]
  CXmlDocument document(&CountTitles);
  document.Load(DOCUMENT);
  std::cout << g_titles << " titles, " << (document.GetDocumentElement()->Children().empty() ? "no" : "some")
            << " children left\n";
  // [filtered]
}

}  // namespace

int main() {
  ReadAndWalk();
  Find();
  Mixed();
  Scopes();
  ChangeAndWrite();
  Copy();
  Detach();
  Filter();
}
