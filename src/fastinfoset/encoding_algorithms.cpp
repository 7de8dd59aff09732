#include "quillon9/fastinfoset/encoding_algorithms.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fastinfoset/algorithms.h"
#include "fastinfoset/constants.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/base64.h"
#include "quillon9/values/conversions.h"
#include "values/rules_in_use.h"

namespace Quillon9 {

namespace {

constexpr auto kAsItStands = CWhitespaceUtils::WhitespaceRule_None;
constexpr char kTrue = 0x38;  // three unused bits, the value, padding
constexpr char kFalse = 0x30;
constexpr unsigned long kUuidSize = 16;
constexpr unsigned long kMaxBase64Length = (INT_MAX - 1) / 2;

template <class To, class From>
To BitsOf(From value) {
  static_assert(sizeof(To) == sizeof(From));
  To bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

template <class Unsigned>
void AppendBigEndian(std::string& target, Unsigned value) {
  for (std::size_t left = sizeof value; left-- > 0;) {
    target += static_cast<char>(static_cast<unsigned char>(value >> (left * 8)));
  }
}

template <class Unsigned>
Unsigned ReadBigEndian(unsigned char const* data) {
  Unsigned value = 0;
  for (std::size_t i = 0; i < sizeof value; ++i) value = static_cast<Unsigned>(value << 8 | data[i]);
  return value;
}

void AppendBytes(std::string& target, CBinaryData const& bytes) {
  if (bytes.GetLength() != 0) target.append(reinterpret_cast<char const*>(bytes.GetData()), bytes.GetLength());
}

void AppendHex(std::string& target, char const* text) {
  CBinaryData bytes;
  bytes.SetAsHexString(text);
  AppendBytes(target, bytes);
}

[[noreturn]] void ThrowWrongSize(char const* name) {
  throw CQnException(FormatString("Invalid value for %s byte encoding.", name));
}

// Refuse what the reader would refuse.
void AppendUuid(std::string& target, char const* text) {
  CBinaryData bytes;
  bytes.SetAsHexString(text);
  if (bytes.GetLength() % kUuidSize != 0) ThrowWrongSize("UUID");
  AppendBytes(target, bytes);
}

void AppendBase64(std::string& target, char const* text) {
  CBinaryData bytes;
  bytes.SetAsBase64(text);
  AppendBytes(target, bytes);
}

std::string Base64Text(unsigned char const* data, unsigned long length) {
  if (length > kMaxBase64Length) {
    throw CQnException(FormatString("The data is too long for base64 [%lu bytes]", length));
  }
  std::string text = CBase64().Encode(data, static_cast<int>(length));
  if (RulesInUse::AreSchema()) text.append((4 - text.size() % 4) % 4, '=');
  return text;
}

[[noreturn]] void ThrowUnknown() { throw CQnException("Unknown byte encoding."); }

// Return the texts of the elements of `size` octets, separated by single spaces.
template <class ToText>
std::string Join(unsigned char const* data, unsigned long length, unsigned long size, char const* name, ToText toText) {
  if (length % size != 0) ThrowWrongSize(name);
  std::string result = toText(data);
  for (unsigned long at = size; at < length; at += size) {
    result += ' ';
    result += toText(data + at);
  }
  return result;
}

/// The format in which no bit of a number is lost, where that matters.
char const* NumberFormat() { return RulesInUse::AreSchema() ? kShortestFormat : nullptr; }

// By the classic rules, all four octets are assumed to equal the first one: documents have always been read like this.
std::string FloatText(unsigned char const* data) {
  if (RulesInUse::AreSchema()) {
    return CConversions::r4ToString(BitsOf<float>(ReadBigEndian<std::uint32_t>(data)), kShortestFormat);
  }
  return CConversions::r4ToString(BitsOf<float>(std::uint32_t{data[0]} * 0x01010101U));
}

// The high half of the first octet holds the number of unused bits at the end of the last octet.
std::string BooleansText(unsigned char const* data, unsigned long length) {
  int const unused = data[0] >> 4;
  int highest = 3;
  std::string result;
  for (unsigned long at = 0; at < length; ++at, highest = 7) {
    if (at != 0) result += ' ';
    int const lowest = at + 1 == length ? unused : 0;
    for (int bit = highest; bit >= lowest; --bit) result += CConversions::booleanToString((data[at] >> bit & 1) != 0);
  }
  return result;
}

}  // namespace

void AppendEncoded(unsigned long algorithm, char const* text, std::string& target) {
  if (text == nullptr) text = "";
  switch (algorithm) {
    case fi::kHexadecimal: return AppendHex(target, text);
    case fi::kUuid: return AppendUuid(target, text);
    case fi::kBase64: return AppendBase64(target, text);
    case fi::kShort:
      return AppendBigEndian(target, static_cast<std::uint16_t>(CConversions::i2FromString(text, kAsItStands)));
    case fi::kInt:
      return AppendBigEndian(target, static_cast<std::uint32_t>(CConversions::i4FromString(text, kAsItStands)));
    case fi::kLong:
      return AppendBigEndian(target, static_cast<std::uint64_t>(CConversions::i8FromString(text, kAsItStands)));
    case fi::kBoolean: target += CConversions::booleanFromString(text, kAsItStands) ? kTrue : kFalse; return;
    case fi::kFloat:
      return AppendBigEndian(target, BitsOf<std::uint32_t>(CConversions::r4FromString(text, kAsItStands)));
    case fi::kDouble:
      return AppendBigEndian(target, BitsOf<std::uint64_t>(CConversions::r8FromString(text, kAsItStands)));
    case fi::kCdata: return AppendBytes(target, CEncoder::LocalCodePageToUtf8Binary(text));
    default: ThrowUnknown();
  }
}

std::string DecodedText(unsigned long algorithm, unsigned char const* data, unsigned long length) {
  if (length == 0) return std::string();
  switch (algorithm) {
    case fi::kHexadecimal: return CBinaryData::GetAsHexString(data, length);
    case fi::kBase64: return Base64Text(data, length);
    case fi::kShort:
      return Join(data, length, 2, "SHORT", [](unsigned char const* at) {
        return CConversions::i2ToString(static_cast<std::int16_t>(ReadBigEndian<std::uint16_t>(at)));
      });
    case fi::kInt:
      return Join(data, length, 4, "INT", [](unsigned char const* at) {
        return CConversions::i4ToString(static_cast<std::int32_t>(ReadBigEndian<std::uint32_t>(at)));
      });
    case fi::kLong:
      return Join(data, length, 8, "LONG", [](unsigned char const* at) {
        return CConversions::i8ToString(static_cast<std::int64_t>(ReadBigEndian<std::uint64_t>(at)));
      });
    case fi::kBoolean: return BooleansText(data, length);
    case fi::kFloat: return Join(data, length, 4, "FLOAT", FloatText);
    case fi::kDouble:
      return Join(data, length, 8, "DOUBLE", [](unsigned char const* at) {
        return CConversions::r8ToString(BitsOf<double>(ReadBigEndian<std::uint64_t>(at)), NumberFormat());
      });
    case fi::kUuid:
      return Join(data, length, kUuidSize, "UUID",
                  [](unsigned char const* at) { return CBinaryData::GetAsHexString(at, kUuidSize); });
    default: ThrowUnknown();
  }
}

CFastInfosetBinaryData::CFastInfosetBinaryData() = default;
CFastInfosetBinaryData::CFastInfosetBinaryData(char const* text) : CBinaryData(text) {}
CFastInfosetBinaryData::CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool take)
    : CBinaryData(data, length, take) {}
CFastInfosetBinaryData::CFastInfosetBinaryData(CBinaryData const& other) : CBinaryData(other) {}
CFastInfosetBinaryData::~CFastInfosetBinaryData() = default;

void CFastInfosetBinaryData::SetAsEncodedString(unsigned long algorithm, char const* text) {
  CBinaryData const old(*this);  // the text may point into it
  Clear();
  std::string octets;
  AppendEncoded(algorithm, text, octets);
  SetBuffer(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
}

std::string CFastInfosetBinaryData::GetAsString(unsigned long algorithm) const {
  return DecodedText(algorithm, GetData(), GetLength());
}

}  // namespace Quillon9
