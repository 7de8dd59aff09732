#pragma once

#include <cstddef>

#include "reading_schema.h"

namespace Reading {

enum class Compared {
  kEverything,  ///< values, failures, and the order of all calls
  kResults      ///< values and failures
};

/// Reads the documents with the library and with the model, and ends the process where they differ.
void RunCase(Case const& tried, Compared compared = Compared::kEverything);

/// Reads each document without a sink, with one that ends the read at the first failure, and with one that goes on, and
/// ends the process where the second differs from the first, or the third hides a failure, invents one, or changes what
/// is read from a document without failures.
void RunWithSinks(Case const& tried);

/// Reads one document with the library and returns the number of steps that it took.
std::size_t StepsOf(Schema const& schema, std::string const& ignoring, std::string const& document);

}  // namespace Reading
