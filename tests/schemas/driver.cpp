// Reads documents into the classes that were generated for a schema set, and writes them again. The classes are in the
// namespace Bound. Each line of standard input has three paths, with tabs between them: the document, where it is
// written, and where it is written after what was written has been read. Each line of the output is a verdict.

#include <iostream>
#include <string>

#include "bound.h"

namespace {

std::string Verdict(std::string const& document, std::string const& written, std::string const& again) {
  char const* step = "read";
  try {
    auto const object = Bound::ReadRoot(document);
    step = "write";
    object->ToXmlFile(written.c_str());
    step = "read again";
    auto const copy = Bound::ReadRoot(written);
    step = "write again";
    copy->ToXmlFile(again.c_str());
    return "read and written";
  } catch (Quillon9::CQnException const& failure) {
    std::string text = failure.GetFullMessage();
    for (char& character : text) {
      if (character == '\n' || character == '\t') character = ' ';
    }
    return std::string(step) + ": " + text;
  }
}

}  // namespace

int main() {
  std::string document;
  std::string written;
  std::string again;
  while (std::getline(std::cin, document, '\t') && std::getline(std::cin, written, '\t') &&
         std::getline(std::cin, again)) {
    std::cout << document << '\t' << Verdict(document, written, again) << std::endl;
  }
}
