#include <iostream>

#include <quillon9/quillon9.h>

int main() {
  Quillon9::CXmlDocument document;
  document.LoadXml("<greeting>Quillon9 works</greeting>");
  std::cout << document.GetDocumentElement()->GetText() << '\n';
}
