#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/fwd.h"
#include "text/lost_characters.h"

namespace Quillon9 {

/// Collects what the conversions of one load of a document lose, if its context has a sink, and sends it to the sink as
/// remarks afterwards, when the places of nodes can be found. Without a sink it only keeps an outer one from hearing
/// of these losses.
class LossesOfReading final : LostCharacters::Observer {
 public:
  /// \p document is borrowed.
  explicit LossesOfReading(CXmlDocument const& document);
  /// Stop collecting, and send a remark for each different character of an element.
  void Tell();

 private:
  using Loss = std::pair<CXmlElement const*, std::uint32_t>;  // the innermost open element, or null; the character

  void OnLost(LostCharacter const& lost) override;

  CXmlDocument const& m_document;
  std::vector<Loss> m_losses;
  std::set<Loss> m_known;
  std::optional<LostCharacters::Scope> m_scope;
};

/// The same for a write. It sends nothing before the end of the write, because what a sink throws must not pass through
/// the levels of a write, which would wrap it.
class LossesOfWriting final : LostCharacters::Observer {
 public:
  /// All are borrowed. \p writer knows the open elements at each loss; null if the text is converted as a whole.
  LossesOfWriting(CXmlSerializationContext const& ctx, CXmlWriter const* writer);
  /// Stop collecting, and send a remark for each different byte of an element.
  void Tell();

 private:
  void OnLost(LostCharacter const& lost) override;

  CXmlSerializationContext const& m_ctx;
  CXmlWriter const* m_writer;
  std::vector<CFailure> m_remarks;
  std::set<std::pair<std::string, std::uint32_t>> m_known;  // path and byte
  std::optional<LostCharacters::Scope> m_scope;
};

}  // namespace Quillon9
