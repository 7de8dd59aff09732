#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "quillon9/base/critical_section.h"
#include "quillon9/export.h"

namespace Quillon9 {

/// Holds the bytes of an xs:hexBinary or xs:base64Binary value, and serves as the library's byte buffer: a handle on a
/// reference-counted buffer with copy on write. A copy is cheap, and only a change of a shared buffer copies bytes.
///
/// A value without a holder (default-constructed, cleared, moved from) differs from a value of length 0: they do not
/// compare equal. Values in different threads may share a holder. Any number of threads may read and copy one value
/// while none changes it.
///
/// A value holds at most 4,294,967,295 bytes. Every operation that would hold more, and every one that is given a null
/// pointer with a length above 0, throws CQnException, "The data is too long [%llu bytes]" or "The data is null but its
/// length is %llu", before it allocates anything, and leaves the value unchanged unless documented otherwise. A null
/// text counts as empty.
class QUILLON9_API CBinaryData {
 public:
  /// A reference-counted buffer. Every owner of a reference may call all functions here; the count starts at 1.
  class QUILLON9_API CDataHolder {
   public:
    /// Hold \p length bytes of \p data: with \p take the buffer itself, which must come from new[], otherwise a copy in
    /// a buffer of twice the length, but at least 8,192 bytes. When this throws, \p data still belongs to the caller.
    CDataHolder(unsigned char* data, unsigned long length, bool take);
    /// Hold a copy, as the other constructor does without \p take.
    CDataHolder(unsigned char const* data, unsigned long length);
    CDataHolder(CDataHolder const&) = delete;
    CDataHolder& operator=(CDataHolder const&) = delete;

    /// The bytes, which this holder owns; invalid after the next Append().
    unsigned char* GetData() const { return m_data.get(); }
    /// The number of bytes.
    unsigned long GetLength() const { return m_length; }

    /// Take another reference.
    void AddRef();
    /// Give up one reference. With \p keepData false, giving up the last one deletes the buffer and the holder. With \p
    /// keepData true, the holder is deleted and the buffer passes to the caller, who frees it with delete[].
    /// \throws CQnException "Failed to release data. [RefCount=%d]" when \p keepData is true and other references, the
    ///         printed number, are left; the caller's reference is given up all the same.
    void Release(bool keepData);
    /// Append \p length bytes, which may lie in this buffer. A full buffer grows to twice the new length.
    /// \throws CQnException "Failed to append. [RefCount=%d]" when there is more than one reference.
    void Append(unsigned char const* data, unsigned long length);
    /// Return a holder of these bytes without other references: this one if possible, otherwise a copy, and then the
    /// reference to this one is given up. Either way the caller has one reference to the result.
    CDataHolder* GetExclusiveCopy();
    /// Make sure that the byte after the last one exists. For a holder without other references.
    void ReserveByteBehindEnd();

   private:
    ~CDataHolder() = default;
    std::unique_ptr<unsigned char[]> Reallocate(std::uint32_t capacity);
    void ClearByteBehindEnd();

    std::unique_ptr<unsigned char[]> m_data;
    std::uint32_t m_length;
    std::uint32_t m_capacity;
    std::int32_t m_refCount = 1;
    CQNCriticalSection m_lock;
  };

  /// A value without a holder: null data, length 0.
  CBinaryData();
  /// A copy of \p text without its terminating zero.
  CBinaryData(char const* text);
  /// A copy of \p length bytes of \p data or, with \p take, \p data itself. It must then come from new[], and the value
  /// always takes it: when this throws it has been deleted.
  CBinaryData(unsigned char* data, unsigned long length, bool take);
  /// Share the holder of \p other.
  CBinaryData(CBinaryData const& other);
  /// Take the holder of \p other, which is left without one.
  CBinaryData(CBinaryData&& other) noexcept;
  /// Clear(), then share the holder of \p other: assigning a value to itself empties it.
  CBinaryData& operator=(CBinaryData const& other);
  /// Release what is held and take over what \p other holds.
  CBinaryData& operator=(CBinaryData&& other) noexcept;
  virtual ~CBinaryData();

  /// The bytes; null without a holder. They may be shared: write through operator[] or Append(). The address is valid
  /// until the next change of this value.
  unsigned char* GetData() const { return m_holder != nullptr ? m_holder->GetData() : nullptr; }
  /// The number of bytes.
  unsigned long GetLength() const { return m_holder != nullptr ? m_holder->GetLength() : 0; }

  /// The byte at \p index. An index equal to the length is accepted too: the const form returns a zero byte that
  /// belongs to no value.
  /// \throws CQnException "Index Out of range [%d]" above the length, and always without a holder.
  unsigned char const& operator[](unsigned long index) const;
  /// The byte at \p index for writing, in a buffer that no other value shares. There is a byte at the length too, which
  /// does not count as part of the value.
  /// \throws CQnException "Index Out of range [%d]" above the length, and always without a holder.
  unsigned char& operator[](unsigned long index);

  /// Append bytes, which may be this value's own. A value without a holder gets one, even for no bytes.
  ///@{
  void Append(unsigned char const* data, unsigned long length);
  void Append(CBinaryData const& other);
  ///@}
  /// Append \p text without its terminating zero.
  void Append(char const* text);
  /// Append \p text up to its first zero byte.
  void Append(std::string const& text);
  /// Append one byte.
  ///@{
  void Append(char byte);
  void Append(unsigned char byte);
  ///@}

  /// Give up the holder: null data, length 0.
  void Clear();
  /// Replace the present bytes by a copy of \p length bytes of \p data.
  void SetBuffer(unsigned char const* data, unsigned long length);
  /// Replace the present bytes by a copy of \p text without its terminating zero.
  void SetBuffer(char const* text);
  /// Hand over the bytes, copied when they are shared, and Clear(). Call GetLength() first. Null without a holder.
  /// \returns a buffer that the caller owns and frees with delete[].
  unsigned char* ReleaseData();

  /// Decode base64 (RFC 4648) as CBase64::Decode() does: bad text gives a value of length 0, not an exception.
  void SetAsBase64(char const* text);
  /// The base64 text that CBase64::Encode() produces; empty without a holder.
  /// \throws CQnException "The data is too long for base64 [%llu bytes]" above 1,073,741,823 bytes.
  std::string GetAsBase64() const;

  /// Decode hexadecimal digits of either case, two a byte. Nothing is skipped.
  /// \throws CQnException "Invalid char in hex string [%c]"; for an odd number of digits the text ends at the opening
  ///         bracket. The value is then left cleared.
  void SetAsHexString(char const* text);
  /// Two upper-case hexadecimal digits for each byte; empty without a holder.
  std::string GetAsHexString() const;
  /// Two upper-case hexadecimal digits for each of \p length bytes; empty when \p data is null.
  static std::string GetAsHexString(unsigned char const* data, unsigned long length);
  /// Decode \p text as SetAsHexString() does into a new buffer of strlen(text) / 2 + 1 bytes.
  /// \param out receives the buffer, which the caller frees with delete[]; untouched after a failure.
  /// \returns the number of bytes.
  /// \throws CQnException "Invalid char in hex string [%c]".
  static unsigned long ConvertToHexData(char const* text, unsigned char** out);

  /// Compare the bytes. A value without a holder equals only another one without.
  ///@{
  bool operator==(CBinaryData const& other) const;
  bool operator!=(CBinaryData const& other) const { return !(*this == other); }
  ///@}

 private:
  void Adopt(std::unique_ptr<unsigned char[]> bytes, unsigned long length);
  void CheckIndex(unsigned long index) const;
  void MakeExclusive();

  CDataHolder* m_holder = nullptr;
};

}  // namespace Quillon9
