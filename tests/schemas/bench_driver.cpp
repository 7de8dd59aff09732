// Measures how long the classes of a set take to read its documents and to write them again, in memory. What makes the
// classes supplies Copy(). Each line of standard input has the name of a document element and the path of a document,
// with a tab between them. The output is a line with the number of the documents that are read and written, and the
// milliseconds of processor time of the fastest round.

#include <algorithm>
#include <ctime>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

/// Read the document \p text, whose element is \p root in the form {namespace}name, and write it to \p out.
void Copy(std::string const& root, std::string const& text, std::ostream& out);

namespace {

struct Document {
  std::string root;
  std::string text;
};

bool CanBeCopied(Document const& document) {
  try {
    std::ostringstream out;
    Copy(document.root, document.text, out);
    return !out.str().empty();
  } catch (std::exception const& failure) {
    std::cerr << failure.what() << '\n';
  } catch (...) {
    std::cerr << "refused\n";
  }
  return false;
}

double MillisecondsOfARound(std::vector<Document> const& documents) {
  std::clock_t const start = std::clock();  // of the processor, since the machine may have other work to do
  for (Document const& document : documents) {
    std::ostringstream out;
    Copy(document.root, document.text, out);
  }
  return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

}  // namespace

int main() {
  constexpr int kRounds = 15;
  std::vector<Document> documents;
  std::string root;
  std::string path;
  while (std::getline(std::cin, root, '\t') && std::getline(std::cin, path)) {
    std::ifstream file(path, std::ios::binary);
    documents.push_back({root, {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}});
  }
  auto const isRefused = [](Document const& document) { return !CanBeCopied(document); };
  documents.erase(std::remove_if(documents.begin(), documents.end(), isRefused), documents.end());
  double fastest = MillisecondsOfARound(documents);
  for (int round = 1; round < kRounds; ++round) fastest = std::min(fastest, MillisecondsOfARound(documents));
  std::cout << documents.size() << ' ' << fastest << '\n';
}
