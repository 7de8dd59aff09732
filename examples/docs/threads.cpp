// The code of docs/threads.md.

#include <cstddef>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Quillon9Data;

namespace {

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

class CJob : public CXmlGeneratedClass {
 public:
  enum { Number };
  std::int32_t m_number = 0;

  CJob() { SetElementName("job"); }
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (index == Number) read ? value.SetI4(m_number) : void(m_number = value.GetI4());
  }
  CParentElementInfo* GetClassInfo() const override {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Job", "", -1, true, false);
    return &info;
  }
  CElementInfo** GetClassElementInfo() const override {
    static CElementInfoSeqPrimMnd number("number", "", Number, ItemType_i4, nullptr, kCollapse, {});
    static CElementInfo* table[] = {&number, nullptr};
    return table;
  }
  CAttributeInfo** GetClassAttributeInfo() const override {
    static CAttributeInfo* table[] = {nullptr};
    return table;
  }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  void Init() override {}
};

// [shared-context]
CXmlSerializationContext MakeOptions() {
  CXmlSerializationContext ctx;
  ctx.SetIgnoreUnknownElements(true);
  ctx.GetAdditionalRootAttributes()->Add("version", "1");
  return ctx;
}

std::vector<std::string> WriteAll(std::size_t count) {
  CXmlSerializationContext const options = MakeOptions();  // const: no thread changes it from here on
  std::vector<std::string> texts(count);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < count; ++i) {
    threads.emplace_back([&options, &text = texts[i], i] {
      CJob job;  // an object graph for each thread
      job.FromXml(("<job><number>" + std::to_string(i) + "</number><later/></job>").c_str(), options);
      text = job.ToXml(false, false, EOLType_LF, options);
    });
  }
  for (std::thread& thread : threads) thread.join();
  return texts;
}
// [shared-context]

}  // namespace

int main() {
  for (std::string const& text : WriteAll(4)) std::cout << text << '\n';
}
