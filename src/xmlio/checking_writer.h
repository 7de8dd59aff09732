#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

class CheckingWriter;

/// Receives the failures that a CheckingWriter finds, in the order in which a write would meet them.
class CheckReceiver {
 public:
  /// The place is that of writer.GetPath(). Return whether to go on.
  virtual bool OnFailure(CQnException& failure, CheckingWriter const& writer) = 0;

 protected:
  ~CheckReceiver() = default;
};

/// A writer that writes nothing. Objects that are written to it go on after a failure, so that it finds all of them. It
/// knows the path of the open element with the numbers of its siblings: for these, a graph is walked twice, and the first
/// walk notes which elements have siblings of their name.
class CheckingWriter : public CXmlWriter {
 public:
  /// What is looked for.
  enum class Scope {
    kWriting,            ///< what a write of text fails on
    kWritingAndReading,  ///< also what a reader of that text refuses
    kCharacters,         ///< what a write loses because it is not part of a character of the code page
    kEncoding            ///< what a write by another writer fails on
  };

  /// For the second walk, \p first is the first one. All arguments are borrowed.
  CheckingWriter(Scope scope, CheckReceiver& receiver, CheckingWriter const* first);
  ~CheckingWriter() override;

  /// Pass everything on to \p encoder until the first failure, so that its failures are found too.
  void SetEncoder(CXmlWriter* encoder) { m_encoder = encoder; }

  /// The one that is at work on this thread, or null. Objects below the drivers do not know their writer.
  static CheckingWriter* Current() { return t_current; }

  /// While a Pause exists, none is current: an object that is checked may write another one.
  class Pause {
   public:
    Pause() : m_outer(t_current) { t_current = nullptr; }
    ~Pause() { t_current = m_outer; }
    Pause(Pause const&) = delete;
    Pause& operator=(Pause const&) = delete;

   private:
    CheckingWriter* m_outer;
  };

  bool WritesText() const { return m_scope != Scope::kEncoding; }
  /// Whether to look for what a reader refuses.
  bool JudgesReading() const { return m_scope == Scope::kWritingAndReading; }
  /// The number of elements that were started so far.
  std::size_t GetStarted() const { return m_started; }
  /// The number of open elements.
  std::size_t GetLevel() const { return m_level; }

  /// The number of open elements when the innermost object began, whose members are being written.
  ///@{
  std::size_t GetHolderLevel() const { return m_holderLevel; }
  class Holder {
   public:
    explicit Holder(CheckingWriter& writer) : m_writer(writer), m_outer(writer.m_holderLevel) {}
    ~Holder() { m_writer.m_holderLevel = m_outer; }
    Holder(Holder const&) = delete;
    Holder& operator=(Holder const&) = delete;
    /// The members follow.
    void Begin() { m_writer.m_holderLevel = m_writer.m_level; }

   private:
    CheckingWriter& m_writer;
    std::size_t m_outer;
  };
  ///@}

  /// Send \p failure to the receiver, unless a failure before it ended the walk. False if the caller must throw it
  /// again. \p attribute is the name of that attribute of the open element, or null for the element.
  bool GoesOn(CQnException& failure, char const* attribute = nullptr);
  /// The same, and close the elements inside the first \p level ones.
  bool GoesOnFrom(std::size_t level, CQnException& failure);
  /// The same for a failure at the element \p name of the innermost object, which is started if none is.
  bool GoesOnAt(std::string const& name, std::string const& ns, CQnException& failure);
  /// The same for a collection whose count is wrong, which asks more than once.
  bool GoesOnAfterCount(void const* collection, CQnException& failure);

  /// The path of the open element, or of the attribute that failed: local names, and a number from 1 where there are
  /// siblings of that name. Empty if no element is open.
  std::string GetPath() const;

  void WriteComment(std::string const& text) override;
  void WritePI(std::string const& text) override;
  void WriteInlineSchema(std::string const& text) override;
  void AddNamespace(std::string const& alias, std::string const& uri) override;
  void SetDefaultNamespace(std::string const& uri) override;
  void WriteStartElement(std::string const& localName, std::string const& namespaceUri) override;
  void WriteString(std::string const& value, ItemType type) override;
  void WriteEndElement() override;
  void WriteAttributeString(std::string const& localName, std::string const& namespaceUri, std::string const& value,
                            ItemType type) override;
  void WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) override;
  void WriteAttributeNil() override;
  bool DeclarePrefix(std::string const& prefix, std::string const& uri) override;

 private:
  /// The children of one name.
  struct Children {
    std::size_t count = 0;
    std::size_t first = 0;  // the number of the first of them among all elements
  };
  struct Level {
    std::string name;
    std::size_t number = 0;   // among all elements, from 0
    std::size_t sibling = 1;  // among those of its name
    std::map<std::string, Children> children;
  };

  void Enter(std::string const& name);
  void Leave();
  bool HasSiblings(Level const& level) const;
  void RequireCharacters(std::string_view text, char const* attribute);
  void RequireText(std::string_view text, ItemType type, char const* attribute);

  Scope m_scope;
  CheckReceiver& m_receiver;
  CheckingWriter const* m_first;
  CXmlWriter* m_encoder = nullptr;
  std::vector<Level> m_levels;  // the first m_level ones are open; the others are kept for their memory
  std::size_t m_level = 0;
  std::size_t m_holderLevel = 0;
  std::size_t m_started = 0;
  std::vector<bool> m_hasSiblings;  // of each element, in the first walk
  char const* m_attribute = nullptr;
  void const* m_countedCollection = nullptr;
  std::size_t m_countedAt = 0;
  bool m_isStopped = false;
  CheckingWriter* m_outer;

  static inline thread_local CheckingWriter* t_current = nullptr;
};

}  // namespace Quillon9
