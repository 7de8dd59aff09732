#include <iostream>

#include "books.h"

int main() try {
  auto const shelf = Books::ReadShelf("shelf.xml");
  for (Books::CBook& book : shelf->GetBook()) {
    std::cout << book.GetTitle() << " (" << book.GetLang() << "): " << book.GetPages() << " pages\n";
    book.SetPages(book.GetPages() + 8);
  }
  Books::CBook& added = shelf->GetBook().Add();
  added.SetTitle("Das Schloß");
  added.SetPages(416);
  std::cout << shelf->ToXml();
  Books::ReadShelf(Quillon9::XmlText("<shelf><book><title>Solaris</title></book></shelf>"));
} catch (Quillon9::CQnException const& failure) {
  std::cout << failure.GetReport() << '\n';
}
