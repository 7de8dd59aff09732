// The code of docs/writer.md.

#include <cstddef>
#include <iostream>
#include <string>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

namespace {

/// Return the text with its line ends made visible.
std::string Shown(std::string const& text) {
  std::string shown;
  for (char const character : text) {
    if (character == '\r') {
      shown += "\\r";
    } else if (character == '\n') {
      shown += "\\n";
    } else {
      shown += character;
    }
  }
  return shown;
}

void ByHand() {
  std::cout << "[by-hand]\n";
  // [by-hand]
  CTextStream text(XmlEncoding_UTF8);
  CXmlTextWriter writer(text);
  writer.Open();
  writer.WriteStartDocument();
  writer.WriteStartElement("stock", "");
  writer.WriteAttributeString("date", "", "2026-03-14", ItemType_date);
  writer.WriteStartElement("item", "");
  writer.WriteAttributeString("count", "", CConversions::i4ToString(12), ItemType_i4);
  writer.WriteString("nuts & bolts", ItemType_string);
  writer.WriteEndElement();
  writer.WriteTextElement("remark", "", "", ItemType_string);  // start, text and end in one call
  writer.WriteEndElement();
  writer.Close();
  std::cout << text.GetText();
  // [by-hand]
}

void Namespaces() {
  std::cout << "[namespaces]\n";
  // [namespaces]
  CTextStream text;
  CXmlTextWriter writer(text);
  writer.Open();
  writer.SetDefaultNamespace("urn:example:stock");  // declared by the document element
  writer.AddNamespace("u", "urn:example:units");    // and so is this one
  writer.WriteStartElement("stock", "urn:example:stock");
  writer.WriteStartElement("mass", "urn:example:stock");
  writer.WriteAttributeString("unit", "urn:example:units", "kg", ItemType_string);
  writer.WriteString("7.5", ItemType_decimal);
  writer.WriteEndElement();
  writer.WriteTextElement("place", "urn:example:places", "Oban", ItemType_string);  // gets a generated prefix
  writer.WriteEndElement();
  writer.Close();
  std::cout << text.GetText();
  // [namespaces]
}

void Layout() {
  std::cout << "[layout]\n";
  // [layout]
  CTextStream text;
  CXmlTextWriter writer(text);
  writer.SetFormat(false);  // all on one line
  writer.SetEOLType(EOLType_CRLF);
  writer.Open();
  writer.WriteStartElement("a", "");
  writer.WriteAttributeString("b", "", "1\n2", ItemType_string);
  writer.WriteString("x\ny", ItemType_string);
  writer.WriteEndElement();
  writer.Close();
  std::cout << Shown(text.CopyText()) << '\n';  // Shown() makes line ends visible
  // [layout]
}

// [document]
// Make the same calls for every form of output.
void WriteStock(CXmlWriter& writer) {
  writer.WriteStartElement("stock", "urn:example:stock");
  for (int number = 1; number <= 40; ++number) {
    writer.WriteStartElement("item", "urn:example:stock");
    writer.WriteAttributeString("number", "", CConversions::i4ToString(number), ItemType_i4);
    writer.WriteString("nuts and bolts", ItemType_string);
    writer.WriteEndElement();
  }
  writer.WriteEndElement();
}
// [document]

// [bytes]
CBinaryData StockAsText() {
  CTextStream text(XmlEncoding_UTF8);
  CXmlTextWriter writer(text);
  writer.Open();
  writer.WriteStartDocument();  // names the encoding of the stream
  WriteStock(writer);
  writer.Close();
  return text.GetEncodedStream();
}
// [bytes]

// [infoset]
CBinaryData StockAsFastInfoset() {
  CFastInfosetContext const options;  // both outlive the writer
  CBinaryStream octets;
  CFastInfosetWriter writer(options, octets);
  writer.Open();
  writer.WriteStartDocument(FInfoDecl_None);
  WriteStock(writer);
  writer.WriteEndDocument();
  writer.Close();
  return octets.GetBinaryStream();
}
// [infoset]

std::size_t CountItems(CBinaryData const& bytes) {
  CXmlDocument document;
  document.LoadXmlStream(bytes.GetData(), bytes.GetLength());
  std::size_t count = 0;
  for (CXmlElement const& item : document.GetDocumentElement()->Children("item")) count += !item.GetText().empty();
  return count;
}

void Forms() {
  std::cout << "[forms]\n";
  // [forms]
  CBinaryData const text = StockAsText();
  CBinaryData const infoset = StockAsFastInfoset();
  CBinaryData compressed = text;
  CQnZip::CompressData(compressed, CompressionType_GZip);
  CFileBinaryStream("stock.xml.gz", XmlEncoding_UTF8, compressed).ToFile();
  std::cout << "text: " << text.GetLength() << " bytes, " << CountItems(text) << " items\n"
            << "Fast Infoset: " << infoset.GetLength() << " bytes, " << CountItems(infoset) << " items\n"
            << "gzip: " << CountItems(compressed) << " items\n";
  // [forms]
}

void Failures() {
  std::cout << "[failures]\n";
  // [failures]
  CTextStream text;
  CXmlTextWriter writer(text);
  writer.Open();
  writer.WriteStartElement("a", "");
  writer.WriteString("content", ItemType_string);
  try {
    writer.WriteAttributeString("b", "", "too late", ItemType_string);
  } catch (CQnException const& failure) {
    std::cout << failure.GetMessage() << '\n';
  }
  try {
    writer.Close();
  } catch (CQnException const& failure) {
    std::cout << failure.GetMessage() << '\n';
  }
  writer.WriteEndElement();
  try {
    writer.WriteEndElement();
  } catch (CQnException const& failure) {
    std::cout << failure.GetMessage() << '\n';
  }
  // [failures]
}

// [own]
// Prints one line for each value: its path and its text.
class CPathWriter : public CXmlWriter {
 public:
  CPathWriter() : CXmlWriter("CPathWriter") {}

  void WriteComment(std::string const&) override {}
  void WritePI(std::string const&) override {}
  void WriteInlineSchema(std::string const&) override {}
  void WriteStartElement(std::string const& localName, std::string const& namespaceUri) override {
    if (m_context != nullptr) m_context->m_tagOpen = false;  // no more attributes
    m_context = NewContext(localName, namespaceUri);
  }
  void WriteString(std::string const& value, ItemType) override {
    if (value.empty()) return;
    RequireOpenElement();
    m_context->m_tagOpen = false;
    std::cout << Path() << " = " << value << '\n';
  }
  void WriteEndElement() override {
    RequireOpenElement();
    PopContext();
  }
  void WriteAttributeString(std::string const& localName, std::string const&, std::string const& value,
                            ItemType) override {
    RequireOpenTag();
    std::cout << Path() << '@' << localName << " = " << value << '\n';
  }
  void WriteAttributeType(std::string const&, std::string const& typeName, ItemType type) override {
    WriteAttributeString("type", SchemaInstanceNamespace(), typeName, type);
  }
  void WriteAttributeNil() override {
    WriteAttributeString("nil", SchemaInstanceNamespace(), "true", ItemType_boolean);
  }

 private:
  std::string Path() const {
    std::string path;
    for (CXmlWriterContext const* open = m_context; open != nullptr; open = open->m_parent) {
      path.insert(0, '/' + open->m_elementName);
    }
    return path;
  }
};
// [own]

void OwnWriter() {
  std::cout << "[own]\n";
  // [own-use]
  CSmartPtr<CElement> const order(new CElement("order"));
  order->GetAttributes()->Add("id", "o7");
  order->GetElements()->Add("item", "")->SetText("ink");
  CPathWriter writer;
  CXmlObjectBase::ToXml_Int(order, &writer, true, "", CXmlSerializationContext::m_defaultContext, false);
  writer.Close();
  // [own-use]
}

}  // namespace

int main() {
  ByHand();
  Namespaces();
  Layout();
  Forms();
  Failures();
  OwnWriter();
}
