#pragma once

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "dump.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "records/octet_input.h"
#include "records/record_opening.h"
#include "records/record_stream.h"

namespace Quillon9::Testing {

/// What a read of records gives: their trees, and the failure that ended it.
struct RecordsRead {
  std::vector<std::string> records;
  std::string failure;
};

/// Delivers octets in pieces.
inline std::unique_ptr<OctetInput> InPieces(std::string const& octets, std::size_t pieceSize) {
  return InputOfFunction([&octets, pieceSize, at = std::size_t{0}](char* to, std::size_t size) mutable {
    std::size_t const count = std::min({size, pieceSize, octets.size() - at});
    octets.copy(to, count, at);
    at += count;
    return count;
  });
}

inline std::string TextOf(CQnException const& failure) {
  CFailurePlace const* const place = failure.GetPlace();
  std::string text = failure.GetMessage();
  if (place != nullptr) text += " (" + std::to_string(place->GetLine()) + ")";
  return text;
}

/// A context whose trees hold all characters.
inline CXmlSerializationContext Utf8Context() {
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  return ctx;
}

/// The outermost elements \p name of a document, read as records.
inline RecordsRead ReadAsRecords(std::string const& octets, std::string const& name, std::size_t pieceSize,
                                 std::size_t batchSize) {
  CXmlSerializationContext const ctx = Utf8Context();
  RecordsRead result;
  std::string const file;
  RecordLimits limits;
  limits.batchSize = batchSize;
  std::unique_ptr<RecordBatch> batch;
  try {
    auto const stream = OpenRecords(InPieces(octets, pieceSize), {RecordPath("//" + name, *ctx.GetNamespaceAliases())},
                                    limits, ctx, file);
    while ((batch = stream->Next(Utf8Text::Use::kYes)) != nullptr) {
      for (std::size_t i = 0; i < batch->Size(); ++i) {
        result.records.push_back(Dump(*batch->Load(i, Utf8Text::Use::kYes)));
      }
    }
  } catch (CQnException const& failure) {
    result.failure = TextOf(failure);
  }
  return result;
}

/// The names of the elements in the tree of \p element, as steps of paths.
inline void CollectNames(CXmlElement const& element, std::set<std::string>& names) {
  names.insert("{" + element.GetNamespaceURI() + "}" + element.GetLocalName());
  for (auto const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    CollectNames(*child, names);
  }
}

/// The trees of the outermost elements \p name below \p element.
inline void CollectRecords(CXmlElement const& element, std::string const& name, std::vector<std::string>& records) {
  if ("{" + element.GetNamespaceURI() + "}" + element.GetLocalName() == name) {
    records.push_back(Dump(element));
    return;
  }
  for (auto const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    CollectRecords(*child, name, records);
  }
}

/// How the records \p name of a document differ from the same elements of a whole read; empty if they do not.
inline std::string DifferenceOfRecords(CXmlDocument const& whole, std::string const& octets, std::string const& name,
                                       std::size_t pieceSize, std::size_t batchSize) {
  std::vector<std::string> expected;
  CollectRecords(*whole.GetDocumentElement(), name, expected);
  RecordsRead const read = ReadAsRecords(octets, name, pieceSize, batchSize);
  if (!read.failure.empty()) return name + " fails: " + read.failure;
  for (std::size_t i = 0; i < std::min(expected.size(), read.records.size()); ++i) {
    if (read.records[i] != expected[i]) return name + ": [" + read.records[i] + "] instead of [" + expected[i] + "]";
  }
  if (read.records.size() == expected.size()) return {};
  return name + ": " + std::to_string(read.records.size()) + " instead of " + std::to_string(expected.size());
}

}  // namespace Quillon9::Testing
