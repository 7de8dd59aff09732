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

/// The same for a write. Where in the graph the lost bytes are is found only if there are any, by walking over it again.
class LossesOfWriting final : LostCharacters::Observer {
 public:
  /// \p ctx is borrowed.
  explicit LossesOfWriting(CXmlSerializationContext const& ctx);
  /// Stop collecting, and send a remark for each different byte of an element or attribute of \p object, which was
  /// written. What the sink throws must not pass through the levels of a write, which would wrap it.
  void Tell(CXmlObjectBase const& object);

 private:
  void OnLost(LostCharacter const& lost) override;

  CXmlSerializationContext const& m_ctx;
  std::set<std::uint32_t> m_bytes;
  std::optional<LostCharacters::Scope> m_scope;
};

}  // namespace Quillon9
