#pragma once

#include <memory>
#include <string>
#include <vector>

#include "quillon9/binding/serialization_context.h"
#include "records/octet_input.h"
#include "records/record_path.h"
#include "records/record_stream.h"

namespace Quillon9 {

/// The elements of a document that \p paths select. \p input delivers the document, which may be compressed, and whose
/// form is found from its start. \p ctx and \p file, the path of the file or an empty text, are borrowed, and outlive
/// the batches of the stream.
/// \throws as OpenUtf8() does; what \p input throws.
std::unique_ptr<RecordStream> OpenRecords(std::unique_ptr<OctetInput> input, std::vector<RecordPath> paths,
                                          RecordLimits const& limits, CXmlSerializationContext const& ctx,
                                          std::string const& file);

}  // namespace Quillon9
