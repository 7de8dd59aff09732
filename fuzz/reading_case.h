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

/// Reads one document with the library and returns the number of steps that it took.
std::size_t StepsOf(Schema const& schema, std::string const& ignoring, std::string const& document);

}  // namespace Reading
