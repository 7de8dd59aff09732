#include "records/record_opening.h"

#include <utility>

#include "records/infoset_records.h"
#include "records/text_records.h"
#include "records/utf8_input.h"

namespace Quillon9 {

std::unique_ptr<RecordStream> OpenRecords(std::unique_ptr<OctetInput> input, std::vector<RecordPath> paths,
                                          RecordLimits const& limits, CXmlSerializationContext const& ctx,
                                          std::string const& file) {
  if (limits.start) {
    Utf8Document rest{std::move(input), limits.start->at, false};
    return std::make_unique<TextRecords>(std::move(rest), std::move(paths), limits, ctx, file, true);
  }
  PlainInput plain = Decompressed(std::move(input));
  auto peeked = std::make_unique<PeekedInput>(std::move(plain.input));
  if (InfosetSplitter::Recognises(*peeked)) {
    return std::make_unique<InfosetRecords>(std::move(peeked), std::move(paths), limits, ctx, file);
  }
  Utf8Document document = OpenUtf8(std::move(peeked));
  return std::make_unique<TextRecords>(std::move(document), std::move(paths), limits, ctx, file, !plain.isCompressed);
}

}  // namespace Quillon9
