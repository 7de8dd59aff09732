// What a program needs from the installed package: only the headers and one library, failures that it can catch by
// class, and classes that it can derive from.
#include <quillon9/quillon9.h>

#include <cstring>
#include <iostream>
#include <string>
#include <typeinfo>

namespace {

static_assert(QUILLON9_VERSION_MAJOR == 1, "another major version of the library");

int failures = 0;

void Expect(bool holds, char const* what) {
  if (holds) return;
  std::cout << "FAILED: " << what << '\n';
  ++failures;
}

std::string Written() {
  Quillon9::CTextStream stream;
  Quillon9::CXmlTextWriter writer(stream);
  writer.SetFormat(false);
  writer.Open();
  writer.WriteStartElement("a", "urn:x");
  writer.WriteString("1<2", Quillon9::ItemType_string);
  writer.WriteEndElement();
  writer.Close();
  return stream.GetText();
}

void CatchesByClass() {
  try {
    Quillon9::CConversions::i4FromString("x", Quillon9::CWhitespaceUtils::WhitespaceRule_Collapse);
    Expect(false, "a failure");
  } catch (Quillon9::CQnInvalidValueException const& failure) {
    Expect(dynamic_cast<Quillon9::CQnValidationException const*>(&failure) != nullptr, "the family of failures");
  } catch (...) {
    Expect(false, "the class of the failure");
  }
}

class CCountingDocument : public Quillon9::CXmlDocument {
 public:
  void Cleanup() override {
    ++m_cleanups;
    CXmlDocument::Cleanup();
  }
  int m_cleanups = 0;
};

}  // namespace

int main() {
  CCountingDocument document;
  document.LoadXml("<a xmlns='urn:x'>1&lt;2</a>");
  Expect(document.GetDocumentElement()->GetText() == "1<2", "reading");
  Expect(document.m_cleanups > 0, "a derived class");
  Expect(Written() == "<AA:a xmlns:AA=\"urn:x\">1&lt;2</AA:a>", "writing");
  CatchesByClass();
  std::cout << "consumer: " << (failures == 0 ? "works" : "FAILED") << '\n';
  return failures;
}
