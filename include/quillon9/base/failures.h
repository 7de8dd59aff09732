#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "quillon9/export.h"

namespace Quillon9 {

/// What kind of fault a failure or a remark is about.
enum FailureKind {
  FailureKind_Other = 0,                 ///< none of the kinds below, for instance what a setter of the program threw
  FailureKind_Input = 1,                 ///< there is no input, or a file or compressed data cannot be read
  FailureKind_Parse = 2,                 ///< the input is not a well-formed document
  FailureKind_Limit = 3,                 ///< a limit on size, depth or work; always ends the read
  FailureKind_BadValue = 4,              ///< a text is not a value of its type
  FailureKind_BrokenFacet = 5,           ///< a value breaks a facet of its type
  FailureKind_FixedValue = 6,            ///< a value is not the fixed one
  FailureKind_MissingElement = 7,        ///< a mandatory element is absent, or its member is not set
  FailureKind_MissingAttribute = 8,      ///< a required attribute is absent, or its member is not set
  FailureKind_UnexpectedElement = 9,     ///< no member takes an element
  FailureKind_UnexpectedAttribute = 10,  ///< no descriptor takes an attribute
  FailureKind_Count = 11,                ///< a collection holds too many or too few items
  FailureKind_EmptyChoice = 12,          ///< nothing of a choice is there, or set
  FailureKind_Namespace = 13,            ///< a wildcard does not allow a namespace
  FailureKind_Factory = 14,              ///< a class or its factory provides no object
  FailureKind_Nil = 15,                  ///< xsi:nil has a value that it must not have
  FailureKind_DroppedElement = 16,       ///< a remark: an option let the reader skip an element
  FailureKind_DroppedAttribute = 17,     ///< a remark: an option let the reader skip an attribute
  FailureKind_DroppedText = 18,          ///< a remark: text where the class has no member for text
  FailureKind_LostCharacter = 19,        ///< a remark: a character became "?" because the target encoding lacks it
  FailureKind_NoRecord = 20              ///< a remark: a document has no record
};

/// Whether something went wrong, or was only lost.
enum FailureSeverity {
  FailureSeverity_Error = 0,  ///< without a sink, the read would end here
  FailureSeverity_Remark = 1  ///< the read would succeed, and something of the document would be lost
};

/// Where in a document or in a graph of objects a failure is.
///
/// A value without identity: copying copies it. Any number of threads may read one that does not change.
class QUILLON9_API CFailurePlace {
 public:
  /// No part is known.
  CFailurePlace();
  /// Copies or takes over all parts.
  ///@{
  CFailurePlace(CFailurePlace const& other);
  CFailurePlace(CFailurePlace&& other) noexcept;
  CFailurePlace& operator=(CFailurePlace const& other);
  CFailurePlace& operator=(CFailurePlace&& other) noexcept;
  ///@}
  ~CFailurePlace();

  /// The line in the text of the document, from 1; 0 if there is none, as in Fast Infoset and in a graph of objects.
  /// CR LF, CR and LF end a line.
  ///@{
  std::uint64_t GetLine() const { return m_line; }
  void SetLine(std::uint64_t line) { m_line = line; }
  ///@}
  /// The character within the line, from 1; 0 if there is none. A tab counts as one character, as does a character of
  /// several bytes; a byte order mark does not count.
  ///@{
  std::uint64_t GetColumn() const { return m_column; }
  void SetColumn(std::uint64_t column) { m_column = column; }
  ///@}
  /// The number of bytes in front of the place, counted in the input after decompression; -1 if there is none.
  ///@{
  std::int64_t GetOffset() const { return m_offset; }
  void SetOffset(std::int64_t offset) { m_offset = offset; }
  ///@}
  /// The path from the root, for example `/purchaseOrder/items/item[3]/@partNum`: names with their prefixes as the
  /// document spells them, and a number from 1 for an element that has siblings of its name. Empty if unknown. A path
  /// or a name that is too long is cut, with "..." in place of what is left out.
  ///@{
  std::string const& GetPath() const { return m_path; }
  void SetPath(std::string path);
  ///@}
  /// The path of the file as it was passed to the read; empty if the input was not a file.
  ///@{
  std::string const& GetFile() const { return m_file; }
  void SetFile(std::string file);
  ///@}

 private:
  std::uint64_t m_line = 0;
  std::uint64_t m_column = 0;
  std::int64_t m_offset = -1;
  std::string m_path;
  std::string m_file;
};

/// One failure or remark, as a sink receives it. Copying copies it; it refers to nothing of the read that made it.
class QUILLON9_API CFailure {
 public:
  /// If \p text is longer than 4096 bytes, it is cut to that length, with "..." at the end.
  CFailure(FailureKind kind, FailureSeverity severity, CFailurePlace place, std::string const& text);
  /// Copies or takes over all parts.
  ///@{
  CFailure(CFailure const& other);
  CFailure(CFailure&& other) noexcept;
  CFailure& operator=(CFailure const& other);
  CFailure& operator=(CFailure&& other) noexcept;
  ///@}
  ~CFailure();

  /// What kind of fault it is about, whether it is one, and where it is.
  ///@{
  FailureKind GetKind() const { return m_kind; }
  FailureSeverity GetSeverity() const { return m_severity; }
  CFailurePlace const& GetPlace() const { return m_place; }
  ///@}
  /// What is wrong. For an error, the message of the exception that ends the read if there is no sink.
  std::string const& GetText() const { return m_text; }
  /// One line in the form of a compiler, without a line feed: `orders.xml:12:7: error: /order/item[3]: ...`. Parts that
  /// are not known are left out; where there is no line, `@` and the offset take its place. A remark has `remark` in
  /// place of `error`. The text is cut to 1024 bytes. Control characters, and bytes that are part of no character, are
  /// written as escape sequences such as `\n`, `\x1B` and `\u{2028}`.
  std::string GetReport() const;

 private:
  FailureKind m_kind;
  FailureSeverity m_severity;
  CFailurePlace m_place;
  std::string m_text;
};

/// Receives the failures of one read or check, in the order in which they are found.
class QUILLON9_API IFailureSink {
 public:
  /// Return true to go on. False ends a read with the exception that it would throw without a sink, and ends a check.
  /// For a remark, the answer has no effect. An exception that this function throws ends the read or check and reaches
  /// its caller unchanged.
  virtual bool OnFailure(CFailure const& failure) = 0;

 protected:
  ~IFailureSink() = default;
};

/// A sink that keeps what it receives. For one thread.
class QUILLON9_API CFailureList : public IFailureSink {
 public:
  /// Stops the read at error number \p most, and keeps at most as many errors and as many remarks.
  explicit CFailureList(std::size_t most = 100);
  CFailureList(CFailureList const&) = delete;
  CFailureList& operator=(CFailureList const&) = delete;
  virtual ~CFailureList();

  bool OnFailure(CFailure const& failure) override;

  /// Whether an error was received.
  bool HasErrors() const { return m_errors != 0; }
  /// The failures and remarks in the order of their arrival.
  std::vector<CFailure> const& GetFailures() const { return m_failures; }
  /// All reports, each followed by a line feed.
  std::string GetReport() const;
  /// Forget everything, so that the list can serve another read.
  void Clear();

 private:
  std::size_t m_most;
  std::size_t m_errors = 0;
  std::size_t m_remarks = 0;
  std::vector<CFailure> m_failures;
};

}  // namespace Quillon9
