#pragma once

namespace Quillon9 {

/// The kinds of value that a descriptor, a variant or a collection can hold. The numbers are fixed because generated
/// tables contain them.
enum ItemType : int {
  ItemType_invalid = 0,         ///< nothing
  ItemType_hexBinary = 1,       ///< CBinaryData
  ItemType_base64Binary = 2,    ///< CBinaryData
  ItemType_i1 = 3,              ///< signed 8-bit
  ItemType_i2 = 4,              ///< signed 16-bit
  ItemType_i4 = 5,              ///< signed 32-bit
  ItemType_i8 = 6,              ///< signed 64-bit
  ItemType_ui1 = 7,             ///< unsigned 8-bit
  ItemType_ui2 = 8,             ///< unsigned 16-bit
  ItemType_ui4 = 9,             ///< unsigned 32-bit
  ItemType_ui8 = 10,            ///< unsigned 64-bit
  ItemType_r4 = 11,             ///< 32-bit IEEE float
  ItemType_r8 = 12,             ///< 64-bit IEEE float
  ItemType_duration = 13,       ///< time span
  ItemType_yearMonth = 14,      ///< date and time value
  ItemType_monthDay = 15,       ///< date and time value
  ItemType_year = 16,           ///< unsigned 16-bit
  ItemType_month = 17,          ///< unsigned 8-bit
  ItemType_day = 18,            ///< unsigned 8-bit
  ItemType_date = 19,           ///< date and time value
  ItemType_datetime = 20,       ///< date and time value
  ItemType_time = 21,           ///< date and time value
  ItemType_char = 22,           ///< one 8-bit character
  ItemType_string = 23,         ///< text in the local code page
  ItemType_boolean = 24,        ///< bool
  ItemType_decimal = 25,        ///< decimal of any length
  ItemType_integer = 26,        ///< integer of any length
  ItemType_xmlObject = 27,      ///< counted reference to a bound object
  ItemType_xmlCollection = 28,  ///< counted reference to a collection
};

}  // namespace Quillon9
