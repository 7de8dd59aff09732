// The code of docs/text-and-locales.md.

#include <clocale>
#include <cstdio>
#include <iostream>
#include <string>

#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

/// Return the text with each byte that is not visible ASCII as hexadecimal digits.
std::string Shown(std::string const& text) {
  std::string shown;
  for (char const character : text) {
    auto const byte = static_cast<unsigned char>(character);
    char escape[8];
    std::snprintf(escape, sizeof escape, byte >= ' ' && byte < 0x7F ? "%c" : "\\x%02X", byte);
    shown += escape;
  }
  return shown;
}

CXmlSerializationContext const& DefaultContext() { return CXmlSerializationContext::m_defaultContext; }

std::string ReadText(std::string const& bytes) try {
  CXmlDocument document(DefaultContext());
  document.LoadXmlStream(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size());
  return Shown(document.GetDocumentElement()->GetText());
} catch (CQnException const& failure) {
  return failure.GetMessage();
}

std::string Written(char const* text) {
  CSmartPtr<CElement> const element(new CElement("p"));
  element->SetText(text);
  CBinaryData const bytes = element->ToXmlStream(false, false);
  return Shown({reinterpret_cast<char const*>(bytes.GetData()), bytes.GetLength()});
}

void ShowMemory(char const* title) {
  std::cout << title << ": in memory " << ReadText("<p>Z\u00FCrich, 5 \u20AC</p>") << ", written "
            << Written("Z\u00FCrich") << '\n';
}

void Memory() {
  std::cout << "[memory]\n";
  std::setlocale(LC_ALL, "C");
  ShowMemory("C");
  std::setlocale(LC_ALL, "C.UTF-8");
  ShowMemory("C.UTF-8");
  std::setlocale(LC_ALL, "C");
  ASCIIOnly(true);
  ShowMemory("ASCIIOnly");
  ASCIIOnly(false);
}

void Utf8() {
  std::cout << "[utf8]\n";
  std::setlocale(LC_ALL, "C");
  // [utf8]
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);  // in any locale
  CXmlDocument document(ctx);
  document.LoadXml("<p>Z\u00FCrich, 5 \u20AC</p>");
  std::cout << Shown(document.GetDocumentElement()->GetText()) << '\n';
  // [utf8]
}

void Input() {
  std::cout << "[input]\n";
  std::setlocale(LC_ALL, "C.UTF-8");
  std::cout << ReadText("<p>\xC3\xBC</p>") << '\n'
            << ReadText("\xEF\xBB\xBF<p>\xC3\xBC</p>") << '\n'
            << ReadText("<?xml version='1.0' encoding='ISO-8859-1'?><p>\xFC</p>") << '\n'
            << ReadText("<?xml version='1.0' encoding='US-ASCII'?><p>&#xFC;</p>") << '\n'
            << ReadText({"\xFF\xFE<\0p\0>\0\xFC\0<\0/\0p\0>\0", 18}) << '\n'
            << ReadText({"\xFE\xFF\0<\0p\0>\0\xFC\0<\0/\0p\0>", 18}) << '\n'
            << ReadText("<?xml version='1.0' encoding='windows-1252'?><p>\xFC</p>") << '\n'
            << ReadText("<p>\xFC</p>") << '\n';
}

void Wide() {
  std::cout << "[wide]\n";
  // [wide]
  std::setlocale(LC_ALL, "C.UTF-8");
  CXmlDocument document(DefaultContext());
  wchar_t const pair[] = {L'<', L'p', L'>', 0xD83D, 0xDE00, L'<', L'/', L'p', L'>', 0};
  document.LoadXml(pair);  // U+1F600, as a surrogate pair
  std::cout << Shown(document.GetDocumentElement()->GetText()) << '\n';
  document.LoadXml(L"<p>\U0001F600</p>");  // as one wide character: cut to U+F600
  std::cout << Shown(document.GetDocumentElement()->GetText()) << '\n';
  std::cout << Shown(UnicodeToMultiByte(L"\U0001F600")) << '\n';  // this keeps it
  // [wide]
}

void LineEnds() {
  std::cout << "[line-ends]\n" << ReadText("<p>a\r\nb\rc&#13;d</p>") << '\n' << Written("a\r\nb") << '\n';
}

}  // namespace

int main() {
  // [start]
  std::setlocale(LC_ALL, "C.UTF-8");  // or "", if the user's locale is a UTF-8 one; before other threads run
  // [start]
  Memory();
  Utf8();
  Input();
  Wide();
  LineEnds();
}
