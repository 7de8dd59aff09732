#include <iostream>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

class CBook : public CXmlGeneratedClass {
 public:
  enum { Id, Title, Pages };
  static constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
  std::string m_id, m_title;
  std::int32_t m_pages = 0;

  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (index == Id) read ? value.SetString(m_id) : void(m_id = value.GetString());
    if (index == Title) read ? value.SetString(m_title) : void(m_title = value.GetString());
    if (index == Pages) read ? value.SetI4(m_pages) : void(m_pages = value.GetI4());
  }
  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Book", "", -1, true, false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoSeqPrimMnd title("title", "", Title, ItemType_string, nullptr, kCollapse, {});
    static CElementInfoSeqPrimMnd pages("pages", "", Pages, ItemType_i4, nullptr, kCollapse, {});
    static CElementInfo* table[] = {&title, &pages, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfoPrimitive id("id", "", Id, false, ItemType_string, nullptr, kCollapse, {}, nullptr);
    static CAttributeInfo* table[] = {&id, nullptr};
    return table;
  }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void Init() override {}  // all members are mandatory: a read sets every one
};

int main() try {
  CBook book;
  book.FromXml("<book id='b7'><title>The Sea, the Sea</title><pages>495</pages></book>");
  book.m_pages += 7;
  std::cout << book.ToXml();
  book.FromXml("<book id='b8'><title>Under the Net</title><pages>many</pages></book>");
} catch (CQnException const& failure) {
  std::cout << failure.GetFullMessage() << '\n';
}
