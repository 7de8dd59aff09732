#pragma once

#include <cstdint>

namespace Quillon9 {

/// The built-in types of XML Schema whose values are texts that not every text is (W3C XML Schema Part 2, 3.2.17 to
/// 3.3.11).
enum class SchemaForm : std::uint8_t {
  Any,       ///< every text
  Language,  ///< xs:language
  NMToken,   ///< xs:NMTOKEN
  Name,      ///< xs:Name
  NCName,    ///< xs:NCName, xs:ID, xs:IDREF and xs:ENTITY
  AnyURI,    ///< xs:anyURI
  QName      ///< xs:QName and xs:NOTATION, without looking at the prefix
};

}  // namespace Quillon9
