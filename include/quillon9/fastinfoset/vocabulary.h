#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/export.h"

namespace Quillon9 {

/// The entries that every vocabulary starts with (Rec. ITU-T X.891, 7.2 and 9).
///@{
inline constexpr char FI_DEFAULT_PREFIX[] = "xml";
inline constexpr char FI_DEFAULT_NAMESPACE[] = "http://www.w3.org/XML/1998/namespace";
///@}
/// The built-in restricted alphabets. The exponent of the numeric one is in lower case here, so a number with `E` does
/// not fit, and a document that encodes an `E` in this alphabet is read with `e`.
///@{
inline constexpr char RESTRICTED_ALPHABET_VALUES_NUMERIC[] = "0123456789-+.e ";
inline constexpr char RESTRICTED_ALPHABET_VALUES_DATE_TIME[] = "0123456789-:TZ ";
///@}

/// Numbers strings from 1 in the order of their insertion. It is made for the lookups of a writer: entries are never
/// removed, and a lookup copies nothing. Only one thread may use it while it changes.
class QUILLON9_API CFIIndexMap {
 public:
  /// Return the index of \p text, or 0 if it is absent.
  unsigned long Find(std::string_view text) const;
  /// Give \p text the next index, unless it is already present. There may be 2^32 - 1 entries; the tables of a
  /// vocabulary stop at CFIVocabulary::kMaxEntries.
  void Insert(std::string_view text);
  /// Return the number of entries.
  std::size_t size() const { return m_size; }
  /// Return the index of the name whose key, as MakeQNameKey() builds it, is present; 0 if it is absent. A recently
  /// found name is found again without building the key.
  unsigned long FindName(std::string_view prefix, std::string_view namespaceUri, std::string_view localName);
  /// Build the key of a name in \p key: local name, a byte 1, namespace URI, a byte 1, prefix.
  static void MakeQNameKey(std::string_view prefix, std::string_view namespaceUri, std::string_view localName,
                           std::string& key);

 private:
  friend struct VocabularyAccess;

  /// A text of up to eight bytes is identified by the slot; a longer one is in m_texts.
  struct Slot {
    std::uint64_t m_word = 0;    // the bytes of a short text; the upper half of a long one's hash, and its place
    std::uint32_t m_length = 0;  // of the text
    std::uint32_t m_index = 0;   // 0: free
  };
  struct Place {
    std::uint32_t m_block;
    std::uint32_t m_offset;
  };

  static Slot MakeSlot(std::string_view text);
  static std::uint64_t HashOf(Slot const& slot);
  std::string_view TextAt(Slot const& slot) const;
  std::size_t SlotFor(std::string_view text, Slot const& wanted) const;
  void Grow();
  Place Store(std::string_view text);
  bool IsSmall() const;
  void Clear();
  void ShrinkTo(std::size_t size);
  void ForgetTextsAfter(Slot const* last, std::size_t count);

  std::size_t m_size = 0;
  std::vector<Slot> m_slots;            // a power of two of them, at most three quarters of them taken
  std::vector<Place> m_places;          // of the long texts
  std::vector<std::string> m_texts;     // blocks, which do not grow once they have been allocated
  std::vector<std::uint32_t> m_recent;  // slots of names, counted from 1, by the hash of the local name
  std::string m_key;
};

/// The numbered tables of Fast Infoset (Rec. ITU-T X.891, 8): strings, names and values that a document refers to by
/// index. Index N of a table is element N - 1 of its vector.
///
/// Writers look up values in the index maps, and readers look up indices in the vectors. AddElement(),
/// AddAttributeValue() and the other Add functions fill both. A map or vector of 2^20 entries is full and silently
/// ignores further entries. Nothing here throws anything but std::bad_alloc. Any thread may read a vocabulary that no
/// thread changes.
class QUILLON9_API CFIVocabulary {
 public:
  /// The maximum number of entries in a table.
  static constexpr std::size_t kMaxEntries = std::size_t{1} << 20;

  /// A name as three indices; 0 stands for an absent part.
  struct CQNameParts {
    unsigned long m_prefix = 0;     ///< index of the prefix
    unsigned long m_namespace = 0;  ///< index of the namespace name
    unsigned long m_localName = 0;  ///< index of the local name
  };

  /// A table of strings.
  class QUILLON9_API CFIStringTable {
   public:
    CFIStringTable();
    /// Copy the entries.
    ///@{
    CFIStringTable(CFIStringTable const&);
    CFIStringTable& operator=(CFIStringTable const&);
    ///@}
    virtual ~CFIStringTable();

    /// The entries in the order of their indices.
    ///@{
    std::vector<std::string>::const_iterator begin() const { return m_strings.begin(); }
    std::vector<std::string>::const_iterator end() const { return m_strings.end(); }
    ///@}
    /// The entries themselves. The index maps do not follow changes made through the second form.
    ///@{
    std::vector<std::string> const& GetVector() const { return m_strings; }
    std::vector<std::string>& GetVector() { return m_strings; }
    ///@}

   private:
    std::vector<std::string> m_strings;
  };

  /// A table of qualified names.
  class QUILLON9_API CFIQNameTable {
   public:
    CFIQNameTable();
    /// Copy the entries.
    ///@{
    CFIQNameTable(CFIQNameTable const&);
    CFIQNameTable& operator=(CFIQNameTable const&);
    ///@}
    virtual ~CFIQNameTable();

    /// The entries in the order of their indices.
    ///@{
    std::vector<CQNameParts>::const_iterator begin() const { return m_names.begin(); }
    std::vector<CQNameParts>::const_iterator end() const { return m_names.end(); }
    ///@}
    /// The same as for CFIStringTable.
    ///@{
    std::vector<CQNameParts> const& GetVector() const { return m_names; }
    std::vector<CQNameParts>& GetVector() { return m_names; }
    ///@}

   private:
    std::vector<CQNameParts> m_names;
  };

  /// Start with the built-in entries only: one prefix, one namespace name, two restricted alphabets.
  CFIVocabulary();
  /// Copy every table.
  ///@{
  CFIVocabulary(CFIVocabulary const& other);
  CFIVocabulary& operator=(CFIVocabulary const& other);
  ///@}
  virtual ~CFIVocabulary();

  /// Add a name, and the strings that it consists of where they are missing. \p prefix and \p namespaceUri may be
  /// empty. A name with the same three parts is not added twice.
  ///@{
  void AddElement(std::string const& prefix, std::string const& namespaceUri, std::string const& localName);
  void AddAttribute(std::string const& prefix, std::string const& namespaceUri, std::string const& localName);
  ///@}

  /// Add a string to the map and to the vector of its table. If the string is already present, the vector gets it a
  /// second time, while the map keeps the first index, so look it up first.
  ///@{
  void AddElementValue(std::string const& value);
  void AddAttributeValue(std::string const& value);
  void AddLocalName(std::string const& value);
  void AddNamespaceName(std::string const& value);
  void AddPrefixName(std::string const& value);
  ///@}

  /// Look up \p value. Return true and store its index in \p index if it is present; otherwise leave \p index
  /// unchanged.
  ///@{
  bool FindLocalNameIndex(std::string const& value, unsigned long& index) const;
  bool FindNamespaceNameIndex(std::string const& value, unsigned long& index) const;
  bool FindPrefixNameIndex(std::string const& value, unsigned long& index) const;
  bool FindIndex(CFIIndexMap const& map, std::string_view value, unsigned long& index) const;
  ///@}

  /// The tables, which live as long as this vocabulary. The index maps do not follow changes made through the second
  /// forms.
  ///@{
  CFIQNameTable const& GetAttributeNamesTable() const { return m_attributeNames; }
  CFIStringTable const& GetAttributeValuesTable() const { return m_attributeValues; }
  CFIQNameTable const& GetElementNamesTable() const { return m_elementNames; }
  CFIStringTable const& GetCharacterChunksTable() const { return m_characterChunks; }
  CFIStringTable const& GetLocalNamesTable() const { return m_localNames; }
  CFIStringTable const& GetNamespaceNamesTable() const { return m_namespaceNames; }
  CFIStringTable const& GetPrefixNamesTable() const { return m_prefixNames; }
  CFIQNameTable& GetAttributeNamesTable() { return m_attributeNames; }
  CFIStringTable& GetAttributeValuesTable() { return m_attributeValues; }
  CFIQNameTable& GetElementNamesTable() { return m_elementNames; }
  CFIStringTable& GetCharacterChunksTable() { return m_characterChunks; }
  CFIStringTable& GetLocalNamesTable() { return m_localNames; }
  CFIStringTable& GetNamespaceNamesTable() { return m_namespaceNames; }
  CFIStringTable& GetPrefixNamesTable() { return m_prefixNames; }
  ///@}
  /// The texts of the restricted alphabets.
  std::vector<std::string> const& GetRestrictedAlphabets() const;

  /// The maps in which a writer looks up names and values. CFIIndexMap::MakeQNameKey() builds the key of a name.
  ///@{
  CFIIndexMap& GetAttributeNameIndex() { return m_attributeNameIndex; }
  CFIIndexMap& GetAttributeValueIndex() { return m_attributeValueIndex; }
  CFIIndexMap& GetElementNameIndex() { return m_elementNameIndex; }
  CFIIndexMap& GetCharacterChunkIndex() { return m_characterChunkIndex; }
  ///@}

  /// The steps of the operations above, each for one map or one vector.
  ///@{
  void AddValueToMap(std::string_view value, CFIIndexMap& map);
  void AddValueToVector(std::string const& value, std::vector<std::string>& vector);
  void AddQNameToVector(unsigned long prefixIndex, unsigned long namespaceIndex, unsigned long localIndex,
                        std::vector<CQNameParts>& vector);
  void AddQName(std::string const& prefix, std::string const& namespaceUri, std::string const& localName,
                CFIIndexMap& map, std::vector<CQNameParts>& vector);
  ///@}

 private:
  friend struct VocabularyAccess;
  void AddToTable(std::string const& value, CFIIndexMap& map, CFIStringTable& table);
  unsigned long FindOrAdd(std::string const& value, CFIIndexMap& map, CFIStringTable& table);

  CFIIndexMap m_attributeNameIndex;
  CFIIndexMap m_attributeValueIndex;
  CFIIndexMap m_elementNameIndex;
  CFIIndexMap m_characterChunkIndex;
  CFIIndexMap m_localNameIndex;
  CFIIndexMap m_namespaceNameIndex;
  CFIIndexMap m_prefixNameIndex;
  CFIQNameTable m_attributeNames;
  CFIStringTable m_attributeValues;
  CFIQNameTable m_elementNames;
  CFIStringTable m_characterChunks;
  CFIStringTable m_localNames;
  CFIStringTable m_namespaceNames;
  CFIStringTable m_prefixNames;
};

}  // namespace Quillon9
