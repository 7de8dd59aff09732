// The code of docs/options.md.

#include <iostream>
#include <string>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

namespace {

constexpr char kNamespace[] = "urn:example:note";
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

class CNote : public CXmlGeneratedClass {
 public:
  enum { Lang, Title, Line };
  std::string m_lang, m_title;
  CSmartPtr<CstringCol> m_lines;

  CNote() : m_lines(new CstringCol("line", kNamespace, 0, 2, "", -1, -1, "", "", "", "", -1, kCollapse, nullptr)) {
    Init();
    SetElementName("note");
  }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (index == Lang) read ? value.SetString(m_lang) : void(m_lang = value.GetString());
    if (index == Title) read ? value.SetString(m_title) : void(m_title = value.GetString());
    if (index == Line && read) value.SetXmlCollection(m_lines);
  }
  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Note", kNamespace, -1, true,
                                   false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoSeqPrimMnd title("title", kNamespace, Title, ItemType_string, nullptr, kCollapse, {});
    static CElementInfoSeqPrimCol line("line", kNamespace, Line);
    static CElementInfo* table[] = {&title, &line, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfoPrimitive lang("lang", "", Lang, true, ItemType_string, nullptr, kCollapse, {}, "en");
    static CAttributeInfo* table[] = {&lang, nullptr};
    return table;
  }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNamespace; }
  std::string GetNamespace() const override { return kNamespace; }
  void Init() override {
    m_lang = "en";
    m_title.clear();
    m_lines->Clear();
  }
};

void Lenient() {
  std::cout << "[lenient]\n";
  // [lenient]
  char const* const text =
      "<note version='2' lang='de'><title>Milk</title><line>1</line><line>2</line><line>3</line><more/></note>";
  CXmlSerializationContext ctx;
  ctx.SetIgnoreNamespaces(true);               // the document has no namespaces
  ctx.SetIgnoreUnknownAttributes(true);        // for the attribute version
  ctx.SetIgnoreUnknownElements(true);          // for the element more
  ctx.SetIgnoreInvalidCollectionCounts(true);  // for the third line
  CNote note;
  note.FromXml(text, ctx);
  std::cout << note.m_title << ' ' << note.m_lines->GetCount() << '\n';
  // [lenient]
}

void Keep() {
  std::cout << "[keep]\n";
  // [keep]
  char const* const text =
      "<note xmlns='urn:example:note' version='2'><title>Milk</title><!--or cream--><due>today</due></note>";
  CXmlSerializationContext ctx;
  ctx.SetIgnoreUnknownAttributes(true);  // for the attribute version
  ctx.SetIgnoreUnknownElements(true);    // for the element due
  ctx.SetKeepUnknown(true);
  CNote note;
  note.FromXml(text, ctx);
  note.m_title = "Cream";
  ctx.SetDefaultNamespaceURI("urn:example:note");
  std::cout << note.ToXml(false, true, EOLType_LF, ctx);
  for (CUnknownItem const& item : note.GetUnknownContent()->GetItems()) {
    std::cout << (item.element ? item.element->GetName() : item.text) << '\n';
  }
  // [keep]
}

void Form() {
  std::cout << "[form]\n";
  // [form]
  char const* const text =
      "<?xml version='1.0'?>\n<note\n  xmlns='urn:example:note' lang='en'>\n  <title>Milk</title>\n</note>\n";
  CXmlSerializationContext ctx;
  ctx.SetKeepForm(true);
  ctx.SetKeepPrefixes(true);
  ctx.SetKeepUnknown(true);
  CNote note;
  note.FromXml(text, ctx);
  note.m_title = "Cream";
  std::cout << note.ToXml(true, true, EOLType_LF, ctx);
  // [form]
}

void Root() {
  std::cout << "[root]\n";
  // [root]
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI("urn:example:note");
  ctx.GetNamespaceAliases()->Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
  ctx.SetInLineSchema("xsi:schemaLocation=\"urn:example:note note.xsd\"");
  ctx.GetAdditionalRootAttributes()->Add("revision", "7");
  ctx.GetProcessingInstructions().push_back("<?xml-stylesheet href=\"note.css\"?>");
  ctx.SetNoOptionalAttributeDefaultOutput(true);  // lang, which is en
  CNote note;
  note.m_title = "Milk";
  std::cout << note.ToXml(true, true, EOLType_LF, ctx) << '\n';
  // [root]
  std::cout << "[plain]\n" << note.ToXml() << '\n';
}

}  // namespace

int main() {
  Lenient();
  Keep();
  Form();
  Root();
}
