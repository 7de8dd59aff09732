#pragma once

#include <vector>

#include "fastinfoset/octet_source.h"
#include "records/octet_input.h"

namespace Quillon9 {

/// The part of a document of any length that its reader needs at the moment.
class OctetWindow final : public OctetSupply {
 public:
  /// \p input is borrowed.
  explicit OctetWindow(OctetInput& input) : m_input(input) {}

  Octets Supply(std::uint8_t const* position, std::size_t left, std::uint64_t count) override;

 private:
  OctetInput& m_input;
  std::vector<std::uint8_t> m_octets;
  bool m_isAtEnd = false;
};

}  // namespace Quillon9
