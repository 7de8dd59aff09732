// Reads damaged documents into the classes that were generated for a schema set. The classes are in the namespace Bound.
// Each line of standard input is the path of a document. Each line of the output has, with tabs between them, the path,
// then line, column, path and text of the failure, or "read", and the number of failures that a sink receives.

#include <iostream>
#include <string>

#include "bound.h"

namespace {

std::string Verdict(std::string const& document) {
  try {
    Bound::ReadRoot(document);
    return "read";
  } catch (Quillon9::CQnException const& failure) {
    Quillon9::CFailurePlace const* const found = failure.GetPlace();
    Quillon9::CFailurePlace const place = found != nullptr ? *found : Quillon9::CFailurePlace();
    return std::to_string(place.GetLine()) + '\t' + std::to_string(place.GetColumn()) + '\t' + place.GetPath() + '\t' +
           failure.GetReport();
  }
}

std::size_t CountFailures(std::string const& document) {
  Quillon9::CFailureList failures;
  Quillon9::CXmlSerializationContext context;
  context.SetFailureSink(&failures);
  try {
    Bound::ReadRoot(document, context);
  } catch (Quillon9::CQnException const&) {  // the list has it
  }
  std::size_t count = 0;
  for (Quillon9::CFailure const& failure : failures.GetFailures()) {
    if (failure.GetSeverity() == Quillon9::FailureSeverity_Error) ++count;
  }
  return count;
}

}  // namespace

int main() {
  std::string document;
  while (std::getline(std::cin, document)) {
    std::cout << document << '\t' << CountFailures(document) << '\t' << Verdict(document) << std::endl;
  }
}
