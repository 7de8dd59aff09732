#include "records/record_opening.h"

#include <utility>

#include "records/text_records.h"
#include "records/utf8_input.h"

namespace Quillon9 {

std::unique_ptr<RecordStream> OpenRecords(std::unique_ptr<OctetInput> input, std::vector<RecordPath> paths,
                                          RecordLimits const& limits, CXmlSerializationContext const& ctx,
                                          std::string const& file) {
  Utf8Document document = OpenUtf8(Decompressed(std::move(input)));
  return std::make_unique<TextRecords>(std::move(document), std::move(paths), limits, ctx, file);
}

}  // namespace Quillon9
