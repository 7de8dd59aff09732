// Does one operation of the orders benchmark a number of times and nothing else, so that a tool that counts
// instructions sees the cost of one more round. `scripts/count-instructions` runs it.
//
//   orders_rounds OPERATION CLASSES SETTING LAYOUT ROUNDS
//
//   OPERATION  expat, tree, read, write, finf_read or finf_write
//   CLASSES    hand, generated, classic (generated, by the classic rules of values) or generic; expat and tree use
//              none
//   SETTING    posix or utf8
//   LAYOUT     compact or indented
//
// Prints the number of octets of the 1 MB document that each round processes.

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "orders/operations.h"

namespace {

using namespace Orders;

Operation const* FindOperation(char const* name) {
  for (Operation const* const operation :
       {&kRawExpat, &kLoadTree, &kReadObjects, &kWriteObjects, &kReadInfoset, &kWriteInfoset}) {
    if (std::strcmp(operation->name, name) == 0) return operation;
  }
  return nullptr;
}

Classes const& FindClasses(char const* name) {
  for (Classes const* const classes : {&kGenerated, &kClassic, &kGeneric}) {
    if (std::strcmp(name, classes->name) == 0) return *classes;
  }
  return kByHand;
}

bool SelectSetting(char const* name) {
  bool const isPosix = std::strcmp(name, "posix") == 0;
  Quillon9::ASCIIOnly(isPosix);
  return std::setlocale(LC_ALL, isPosix ? "C" : "C.UTF-8") != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  Operation const* const operation = argc == 6 ? FindOperation(argv[1]) : nullptr;
  if (operation == nullptr || !SelectSetting(argv[3])) {
    std::fprintf(stderr, "usage: %s OPERATION hand|generated|classic|generic posix|utf8 compact|indented ROUNDS\n",
                 argv[0]);
    return 2;
  }
  try {
    Workload load(1000000, std::strcmp(argv[4], "indented") == 0, FindClasses(argv[2]));
    if (operation->needsInfoset) load.WriteInfoset();
    if (operation->writes) load.ReadObjects();
    for (long round = std::strtol(argv[5], nullptr, 10); round > 0; --round) operation->run(load);
    std::printf("%zu\n", load.document.text.size());
  } catch (Quillon9::CQnException const& failure) {
    std::fprintf(stderr, "%s\n", failure.GetFullMessage().c_str());
    return 1;
  }
  return 0;
}
