// A program whose classes quillon9_generate() makes from schemas/letter.xsd.
#include <iostream>

#include "letters.h"

int main() {
  try {
    auto const letter =
        Post::Letters::ReadLetter(Quillon9::XmlText("<letter><to>Zo\xC3\xAB</to><to>Bob</to><text>Hi</text></letter>"));
    letter->GetTo().Add("Eve");
    letter->SetSheets(letter->GetSheets() + 6);
    auto const again = Post::Letters::ReadLetter(Quillon9::XmlText(letter->ToXml()));
    bool const works = again->GetSheets() == 8 && again->GetTo().GetCount() == 3;
    std::cout << "generated: " << (works ? "works" : "FAILED") << '\n';
    return works ? 0 : 1;
  } catch (Quillon9::CQnException const& failure) {
    std::cout << "generated: " << failure.GetFullMessage() << '\n';
    return 1;
  }
}
