#include "quillon9/values/binary_data.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <functional>
#include <utility>

#include "base/failure_detail.h"
#include "base/text_arguments.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/base64.h"

namespace Quillon9 {

namespace {

// Values also serve as output buffers, so many small appends must not reallocate.
constexpr std::uint32_t kMinCapacity = 8192;
constexpr unsigned long kMaxBase64Length = (INT_MAX - 1) / 2;
constexpr unsigned char kZeroByte = 0;
constexpr char kHexDigits[] = "0123456789ABCDEF";

// The value of a hexadecimal digit, -1 for every other byte.
constexpr std::array<signed char, 256> MakeHexTable() {
  std::array<signed char, 256> table{};
  for (auto& entry : table) entry = -1;
  for (std::size_t i = 0; i < 10; ++i) table['0' + i] = static_cast<signed char>(i);
  for (std::size_t i = 0; i < 6; ++i) table['A' + i] = table['a' + i] = static_cast<signed char>(10 + i);
  return table;
}
constexpr std::array<signed char, 256> kHexTable = MakeHexTable();

std::uint32_t CheckedLength(std::uint64_t length) {
  if (length > UINT32_MAX) {
    throw OfKind(FailureKind_BadValue, CQnException(FormatString("The data is too long [%llu bytes]",
                                                                 static_cast<unsigned long long>(length))));
  }
  return static_cast<std::uint32_t>(length);
}

std::uint32_t CheckedLength(unsigned char const* data, std::uint64_t length) {
  if (data == nullptr && length != 0) {
    throw CQnException(
        FormatString("The data is null but its length is %llu", static_cast<unsigned long long>(length)));
  }
  return CheckedLength(length);
}

std::uint32_t CapacityFor(std::uint32_t length) {
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(std::uint64_t{length} * 2, UINT32_MAX));
}

std::unique_ptr<unsigned char[]> NewBuffer(std::size_t size) {
  return std::unique_ptr<unsigned char[]>(new unsigned char[size]);  // not zero-filled, unlike make_unique
}

void CopyBytes(unsigned char* to, unsigned char const* from, std::size_t length) {
  if (length != 0) std::memmove(to, from, length);
}

unsigned char const* Bytes(char const* text) { return reinterpret_cast<unsigned char const*>(text); }

unsigned char HexNibble(char c) {
  signed char const value = kHexTable[static_cast<unsigned char>(c)];
  if (value < 0) throw OfKind(FailureKind_BadValue, CQnException(FormatString("Invalid char in hex string [%c]", c)));
  return static_cast<unsigned char>(value);
}

}  // namespace

// ---- CDataHolder

CBinaryData::CDataHolder::CDataHolder(unsigned char* data, unsigned long length, bool take)
    : m_length(CheckedLength(data, length)),
      m_capacity(take ? m_length : std::max(CapacityFor(m_length), kMinCapacity)) {
  if (take) {
    m_data.reset(data);
    return;
  }
  m_data = NewBuffer(m_capacity);
  CopyBytes(m_data.get(), data, m_length);
  ClearByteBehindEnd();
}

CBinaryData::CDataHolder::CDataHolder(unsigned char const* data, unsigned long length)
    : CDataHolder(const_cast<unsigned char*>(data), length, false) {}  // a copying holder only reads them

void CBinaryData::CDataHolder::AddRef() {
  CQNCriticalSectionLock const lock(m_lock);
  ++m_refCount;
}

void CBinaryData::CDataHolder::Release(bool keepData) {
  std::int32_t left = 0;
  {
    CQNCriticalSectionLock const lock(m_lock);
    left = --m_refCount;
  }
  if (left > 0) {
    if (keepData) throw CQnException(FormatString("Failed to release data. [RefCount=%d]", left));
    return;
  }
  if (keepData) static_cast<void>(m_data.release());
  delete this;
}

void CBinaryData::CDataHolder::Append(unsigned char const* data, unsigned long length) {
  CQNCriticalSectionLock const lock(m_lock);
  if (m_refCount >= 2) throw CQnException(FormatString("Failed to append. [RefCount=%d]", m_refCount));
  std::uint32_t const added = CheckedLength(data, length);
  std::uint32_t const newLength = CheckedLength(std::uint64_t{m_length} + added);
  std::unique_ptr<unsigned char[]> old;  // keeps bytes alive that come from this very buffer
  if (newLength > m_capacity) old = Reallocate(CapacityFor(newLength));
  CopyBytes(m_data.get() + m_length, data, added);
  m_length = newLength;
  ClearByteBehindEnd();
}

CBinaryData::CDataHolder* CBinaryData::CDataHolder::GetExclusiveCopy() {
  CDataHolder* copy = nullptr;
  {
    CQNCriticalSectionLock const lock(m_lock);
    if (m_refCount <= 1) return this;
    copy = new CDataHolder(m_data.get(), m_length);
  }
  Release(false);  // takes the lock itself, and may delete this if the others have released it meanwhile
  return copy;
}

void CBinaryData::CDataHolder::ReserveByteBehindEnd() {
  if (m_length < m_capacity) return;
  Reallocate(CapacityFor(CheckedLength(std::uint64_t{m_length} + 1)));
  ClearByteBehindEnd();
}

// Returns the old buffer.
std::unique_ptr<unsigned char[]> CBinaryData::CDataHolder::Reallocate(std::uint32_t capacity) {
  std::unique_ptr<unsigned char[]> grown = NewBuffer(capacity);
  CopyBytes(grown.get(), m_data.get(), m_length);
  m_capacity = capacity;
  return std::exchange(m_data, std::move(grown));
}

// operator[] exposes the byte after the last one: it must not be left over from other memory.
void CBinaryData::CDataHolder::ClearByteBehindEnd() {
  if (m_length < m_capacity) m_data[m_length] = 0;
}

// ---- Making and sharing values

CBinaryData::CBinaryData() = default;

CBinaryData::CBinaryData(char const* text) { SetBuffer(text); }

CBinaryData::CBinaryData(unsigned char* data, unsigned long length, bool take) {
  if (take) {
    Adopt(std::unique_ptr<unsigned char[]>(data), length);
  } else {
    SetBuffer(data, length);
  }
}

CBinaryData::CBinaryData(CBinaryData const& other) : m_holder(other.m_holder) {
  if (m_holder != nullptr) m_holder->AddRef();
}

CBinaryData::CBinaryData(CBinaryData&& other) noexcept : m_holder(std::exchange(other.m_holder, nullptr)) {}

CBinaryData& CBinaryData::operator=(CBinaryData const& other) {
  Clear();
  m_holder = other.m_holder;
  if (m_holder != nullptr) m_holder->AddRef();
  return *this;
}

CBinaryData& CBinaryData::operator=(CBinaryData&& other) noexcept {
  CDataHolder* const taken = std::exchange(other.m_holder, nullptr);
  Clear();
  m_holder = taken;
  return *this;
}

CBinaryData::~CBinaryData() { Clear(); }

void CBinaryData::Clear() {
  if (m_holder != nullptr) std::exchange(m_holder, nullptr)->Release(false);
}

void CBinaryData::Adopt(std::unique_ptr<unsigned char[]> bytes, unsigned long length) {
  auto* const holder = new CDataHolder(bytes.get(), length, true);
  static_cast<void>(bytes.release());
  Clear();
  m_holder = holder;
}

void CBinaryData::MakeExclusive() { m_holder = m_holder->GetExclusiveCopy(); }

// ---- Bytes

void CBinaryData::CheckIndex(unsigned long index) const {
  if (m_holder != nullptr && index <= m_holder->GetLength()) return;
  throw CQnException(FormatString("Index Out of range [%d]", static_cast<int>(index)));
}

unsigned char const& CBinaryData::operator[](unsigned long index) const {
  CheckIndex(index);
  return index < m_holder->GetLength() ? m_holder->GetData()[index] : kZeroByte;
}

unsigned char& CBinaryData::operator[](unsigned long index) {
  CheckIndex(index);
  MakeExclusive();
  if (index == m_holder->GetLength()) m_holder->ReserveByteBehindEnd();
  return m_holder->GetData()[index];
}

void CBinaryData::Append(unsigned char const* data, unsigned long length) {
  if (m_holder == nullptr) {
    m_holder = new CDataHolder(data, length);
    return;
  }
  CheckedLength(std::uint64_t{GetLength()} + CheckedLength(data, length));
  // If the bytes are this value's own, they move with it when it leaves a shared holder, which another thread may then
  // delete.
  unsigned char const* const begin = GetData();
  bool const isOwn = !std::less<>()(data, begin) && std::less<>()(data, begin + GetLength());
  auto const offset = isOwn ? data - begin : 0;
  MakeExclusive();
  m_holder->Append(isOwn ? GetData() + offset : data, length);
}

void CBinaryData::Append(CBinaryData const& other) { Append(other.GetData(), other.GetLength()); }

void CBinaryData::Append(char const* text) { Append(Bytes(OrEmpty(text)), std::strlen(OrEmpty(text))); }

void CBinaryData::Append(std::string const& text) { Append(text.c_str()); }

void CBinaryData::Append(char byte) { Append(static_cast<unsigned char>(byte)); }

void CBinaryData::Append(unsigned char byte) { Append(&byte, 1); }

void CBinaryData::SetBuffer(unsigned char const* data, unsigned long length) {
  auto* const holder = new CDataHolder(data, length);  // before Clear(): the bytes may be this value's own
  Clear();
  m_holder = holder;
}

void CBinaryData::SetBuffer(char const* text) { SetBuffer(Bytes(OrEmpty(text)), std::strlen(OrEmpty(text))); }

unsigned char* CBinaryData::ReleaseData() {
  if (m_holder == nullptr) return nullptr;
  MakeExclusive();
  unsigned char* const data = GetData();
  std::exchange(m_holder, nullptr)->Release(true);
  return data;
}

bool CBinaryData::operator==(CBinaryData const& other) const {
  if (m_holder == nullptr || other.m_holder == nullptr) return m_holder == other.m_holder;
  if (GetLength() != other.GetLength()) return false;
  return GetLength() == 0 || std::memcmp(GetData(), other.GetData(), GetLength()) == 0;
}

// ---- Text forms

void CBinaryData::SetAsBase64(char const* text) {
  CBinaryData const old(std::move(*this));  // cleared but alive, because the text may be part of it
  std::unique_ptr<unsigned char[]> bytes = NewBuffer(std::strlen(OrEmpty(text)) + 1);
  int const length = CBase64().Decode(text, bytes.get());
  Adopt(std::move(bytes), static_cast<unsigned long>(length));
}

std::string CBinaryData::GetAsBase64() const {
  if (GetLength() > kMaxBase64Length) {
    throw OfKind(FailureKind_BadValue,
                 CQnException(FormatString("The data is too long for base64 [%lu bytes]", GetLength())));
  }
  return CBase64().Encode(GetData(), static_cast<int>(GetLength()));
}

void CBinaryData::SetAsHexString(char const* text) {
  CBinaryData const old(std::move(*this));  // cleared but alive, because the text may be part of it
  unsigned char* bytes = nullptr;
  unsigned long const length = ConvertToHexData(text, &bytes);
  Adopt(std::unique_ptr<unsigned char[]>(bytes), length);
}

std::string CBinaryData::GetAsHexString() const { return GetAsHexString(GetData(), GetLength()); }

std::string CBinaryData::GetAsHexString(unsigned char const* data, unsigned long length) {
  if (data == nullptr) return std::string();
  std::string text(std::size_t{CheckedLength(length)} * 2, '\0');
  char* out = text.data();
  for (unsigned char const* at = data; at != data + length; ++at) {
    *out++ = kHexDigits[*at >> 4];
    *out++ = kHexDigits[*at & 15];
  }
  return text;
}

unsigned long CBinaryData::ConvertToHexData(char const* text, unsigned char** out) {
  char const* at = OrEmpty(text);
  unsigned long const length = CheckedLength(std::strlen(at) / 2);
  std::unique_ptr<unsigned char[]> bytes = NewBuffer(std::size_t{length} + 1);
  unsigned char* byte = bytes.get();
  while (*at != '\0') {
    unsigned char const high = HexNibble(*at++);
    *byte++ = static_cast<unsigned char>(high << 4 | HexNibble(*at++));  // an odd length fails on the zero byte
  }
  *out = bytes.release();
  return length;
}

}  // namespace Quillon9
