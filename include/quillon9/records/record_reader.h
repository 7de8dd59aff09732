#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "quillon9/base/failures.h"
#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/generated/bound_object.h"
#include "quillon9/generated/class_tables.h"
#include "quillon9/records/record_source.h"

namespace Quillon9 {

namespace detail {

/// Makes an object of a class for an element.
using RecordMaker = CSmartPtr<CXmlObjectBase> (*)(CXmlElement const& element);

/// A new object of a generated class with these tables, or of the derived one that xsi:type names.
QUILLON9_API CSmartPtr<CXmlObjectBase> MakeBoundRecord(CClassTables const& tables, CXmlElement const& element);

/// A new object of \p Class for the record \p element.
template <class Class>
CSmartPtr<CXmlObjectBase> MakeRecord(CXmlElement const& element) {
  if constexpr (std::is_base_of_v<CBoundObject, Class>) {
    return MakeBoundRecord(Class::s_class, element);
  } else {
    static_cast<void>(element);
    return new Class();
  }
}

/// Gets the object of a record.
using RecordTask = std::function<void(CSmartPtr<CXmlObjectBase> const& object)>;

/// Whether \p Class holds its text in UTF-8, as generated classes do.
template <class Class>
constexpr bool HoldsUtf8() {
  return std::is_base_of_v<CBoundObject, Class>;
}

}  // namespace detail

/// How CXmlRecordReader::ForEachRecord() calls its function.
enum RecordOrder {
  RecordOrder_Any = 0,      ///< from several threads at once, as soon as a record has been read
  RecordOrder_Document = 1  ///< from several threads, but one call after the other, in the order of the document
};

/// Reads a long document record by record: `while (auto order = reader.Next<Orders::COrder>())`. Its memory is that of
/// the largest record, or of a block of about 64 KiB of small ones, whatever the length of the document.
///
/// A record is an element that a path selects. It is read as if it were a document of its own, with the namespaces and
/// entities in scope. A record inside of a record is a part of it. A record that cannot be read is passed over: Next()
/// throws, and the next call goes on with the record after it. A document that is not well-formed ends the read: from
/// then on, every call throws that failure.
///
/// A reader belongs to one thread at a time.
class QUILLON9_API CXmlRecordReader {
 public:
  /// Read from \p source under a copy of \p ctx. Its failure sink is borrowed, and is called by one thread at a time.
  explicit CXmlRecordReader(CRecordSource source,
                            CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext);
  ~CXmlRecordReader();
  CXmlRecordReader(CXmlRecordReader const&) = delete;
  CXmlRecordReader& operator=(CXmlRecordReader const&) = delete;

  /// Say which elements are records. \p path consists of steps: `/orders/order`, where `*` stands for any name, and `//`
  /// for any number of elements in between. A name without a prefix is that of an element in any namespace; a prefix
  /// stands for the namespace that it has among the aliases of the context, and `{uri}name` says the namespace, where
  /// `{}` is none. Several calls select the elements of all their paths.
  /// \throws CQnInvalidParamException "The path [%s] is not a path of elements: %s"; CQnInvalidStateException "The read
  ///         has begun" after the first record has been read.
  void SelectRecords(std::string const& path);
  /// Call \p handler for the elements of \p path, which are no records, where they stand between the records: for the
  /// header of a list, for example. The handler may call Read() for an object. It gets the element with its content.
  /// What goes on with the read throws CQnInvalidStateException "A handler of the reader cannot go on with the read" in it.
  /// \throws as SelectRecords().
  void OnElement(std::string const& path, std::function<void(CXmlRecordReader&)> handler);
  /// A record of more than \p bytes is a failure, and passed over; 256 MiB unless this is called, and less than 4 GiB.
  void SetMaxRecordSize(std::size_t bytes);

  /// Begin at a record in the middle of the document, instead of at its start. \p point is what GetResumePoint() of
  /// another reader of the same document said there. The source must be a file or bytes in memory, not compressed.
  /// \throws CQnInvalidParamException "The text [%s] does not describe the place of a record"; as SelectRecords(). The
  ///         first call that reads throws CQnInvalidStateException "The input cannot be read from a place in the middle".
  void SetStart(std::string const& point);
  /// End in front of the first record that begins at the byte \p offset of the document or after it. What follows is not
  /// read. So a document can be cut at any offsets: a record belongs to the piece in which it begins.
  /// \throws as SelectRecords().
  void SetEnd(std::uint64_t offset);

  /// Read the next record into a new object of \p Class; null after the last one. For a generated class, the object may
  /// be of a derived class that xsi:type names.
  /// \throws what CXmlObjectBase::FromXmlElement() throws for the record, with its place in the whole document; what
  ///         loading a document throws, and every further call then, too.
  template <class Class>
  CSmartPtr<Class> Next() {
    if (!Advance(detail::HoldsUtf8<Class>())) return nullptr;
    return Read<Class>();
  }
  /// Read all records that are left in \p threads threads of their own, one for each processor if it is 0, and call
  /// `function(CSmartPtr<Class>)` for each of them in these threads. The calling thread divides the document, and waits
  /// while the others have enough to do. It calls the handlers of OnElement(), which can be before or after the calls for
  /// the records around them. Return the number of records.
  ///
  /// The first failure stops the read, after the calls that are running: with RecordOrder_Document, it is the first one of
  /// the document, and \p function has been called for all records in front of it. Then every further call of the reader
  /// throws it.
  /// \throws as Next(); what \p function and the handlers throw; std::system_error if no thread can be started.
  template <class Class, class Function>
  std::uint64_t ForEachRecord(unsigned threads, Function function, RecordOrder order = RecordOrder_Any) {
    auto const task = [&function](CSmartPtr<CXmlObjectBase> const& object) {
      function(CSmartPtr<Class>(static_cast<Class*>(object.Get())));
    };
    return ForEach(threads, order, detail::HoldsUtf8<Class>(), &detail::MakeRecord<Class>, task);
  }
  /// Pass over the next record. False if there is none.
  bool Skip() { return Advance(false); }
  /// Go to the next record without reading it into an object; false if there is none. GetElement() is the record then.
  bool Advance() { return Advance(false); }
  /// Read the present element into a new object.
  /// \throws as Next(); CQnInvalidStateException "There is no record".
  template <class Class>
  CSmartPtr<Class> Read() {
    return static_cast<Class*>(ReadPresent(&detail::MakeRecord<Class>).Get());
  }
  /// Read the present element into \p object.
  /// \throws as Read().
  void ReadInto(CXmlObjectBase& object);

  /// The present record as a tree; null in front of the first one and after the last one. It lives until the next call
  /// that goes on or reads.
  CXmlElement const* GetElement() const;
  /// The elements around the present record, from the root on, for their names and attributes; none where there is no
  /// record. They live as long as the tree of the record, and have no other children than some records.
  std::vector<CXmlElement const*> GetAncestors() const;
  /// Which of the calls of SelectRecords() the present record matches, from 0.
  std::size_t GetSelection() const;
  /// Whether there are no more records: after the last one, and after a failure that has ended the read.
  bool IsAtEnd() const;
  /// How many records there have been so far, including those that could not be read. Text that is not well-formed is no
  /// record.
  std::uint64_t GetCount() const;
  /// Where the present record begins.
  CFailurePlace GetPlace() const;
  /// A word that describes the place of the present record with the start tags of the elements around it, for
  /// SetStart(). It consists of ASCII characters without white space and quotation marks.
  /// \throws CQnInvalidStateException "There is no record"; "A read can begin in the middle of uncompressed text in UTF-8
  ///         only".
  std::string GetResumePoint() const;
  /// How many bytes of the input have been read.
  std::uint64_t GetInputOffset() const;

  /// The records of a class, for range-for: `for (auto& order : reader.Records<Orders::COrder>())`. Goes through the
  /// document once.
  template <class Class>
  class Range {
   public:
    /// Moves on when it is incremented.
    class iterator {
     public:
      /// For algorithms that go through records once.
      using iterator_category = std::input_iterator_tag;
      /// The object of a record.
      using value_type = CSmartPtr<Class>;
      /// Not used.
      using difference_type = std::ptrdiff_t;
      /// To the record.
      using pointer = CSmartPtr<Class>*;
      /// To the record.
      using reference = CSmartPtr<Class>&;

      /// The end.
      iterator() = default;
      /// The next record of \p reader.
      explicit iterator(CXmlRecordReader& reader) : m_reader(&reader) { ++*this; }
      /// The record.
      reference operator*() { return m_record; }
      /// Go to the next record.
      /// \throws as Next().
      iterator& operator++() {
        m_record = m_reader->Next<Class>();
        if (!m_record) m_reader = nullptr;
        return *this;
      }
      /// Whether both are at the end, or at the present record of one reader.
      bool operator==(iterator const& other) const { return m_reader == other.m_reader; }
      /// The opposite.
      bool operator!=(iterator const& other) const { return m_reader != other.m_reader; }

     private:
      CXmlRecordReader* m_reader = nullptr;
      CSmartPtr<Class> m_record;
    };

    /// The records of \p reader, which is borrowed.
    explicit Range(CXmlRecordReader& reader) : m_reader(reader) {}
    /// The next record. Reads it.
    iterator begin() const { return iterator(m_reader); }
    /// Past the last record.
    iterator end() const { return {}; }

   private:
    CXmlRecordReader& m_reader;
  };
  /// The records that are left, as objects of \p Class.
  template <class Class>
  Range<Class> Records() {
    return Range<Class>(*this);
  }

 private:
  class Work;

  std::uint64_t ForEach(unsigned threads, RecordOrder order, bool holdsUtf8, detail::RecordMaker make,
                        detail::RecordTask const& task);
  bool Advance(bool holdsUtf8);
  CSmartPtr<CXmlObjectBase> ReadPresent(detail::RecordMaker make);

  std::unique_ptr<Work> m_work;
};

}  // namespace Quillon9
