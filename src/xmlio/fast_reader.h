#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/xmlio/document.h"
#include "xmlio/character_reference.h"
#include "xmlio/fast_names.h"

namespace Quillon9 {

/// Builds the tree of a document from plain XML text without the parser, which takes most of the time of a read.
///
/// Plain text is UTF-8 without the declarations of a document type. At anything that is not certainly right, the reader gives
/// up and leaves nothing behind; the parser then reads the input from its beginning. So all failures are the parser's,
/// and a tree of this reader equals the parser's.
class FastReader {
 public:
  /// Read the input of \p document, which has no tree yet, and return true. Return false, with the document as it was,
  /// if the parser has to read it: also where the document has a filter, knows no namespaces or needs text converted.
  /// \throws std::bad_alloc, after which part of the tree may be there.
  static bool Read(CXmlDocument& document);

 private:
  struct Attribute {
    FastName* name;
    std::string_view value;  // in the input
    bool isPlain;            // as it is in the tree
  };
  /// What the end of an element undoes.
  struct Binding {
    FastName* prefix;
    std::string const* outer;  // what the prefix was bound to
    std::size_t depth;         // how many elements are open around the one with the declaration
  };

  FastReader(CXmlDocument& document, bool takesAll);

  bool ReadAll();
  // Each of these reads what begins at its argument and returns its end, or null to give up.
  char const* ReadProlog(char const* at);
  char const* ReadContent(char const* at);
  char const* ReadText(char const* at);
  char const* ReadOtherText(char const* start, char const* at);
  char const* ReadBeyondAscii(char const* at) const;
  char const* ReadReference(char const* at);
  bool IsTaken(CharacterReference const& reference) const;
  char const* ReadMiscellaneous(char const* at);
  char const* ReadMarkup(char const* at);
  char const* ReadComment(char const* at);
  char const* ReadInstruction(char const* at);
  char const* ReadCData(char const* at);
  char const* ReadStartTag(char const* at);
  char const* ReadAttributes(char const* at);
  char const* ReadAttribute(char const* at);
  char const* ReadValue(char const* at, char quote, bool& isPlain) const;
  char const* ReadEndTag(char const* at);

  bool Open(FastName& name);
  void Close();
  bool AddAttributes(CXmlElement& element);
  void AppendText(char const* start, char const* end);
  void AppendCharacter(std::string_view character);
  CXmlName const* SharedName(FastName& name);
  CXmlName const* SharedAttributeName(FastName& name);
  bool Declare(FastName& prefix, std::string_view uri);
  bool KeepMarkup(std::string_view target, std::string_view text);
  std::string_view Normalized(Attribute const& attribute);

  CXmlDocument& m_document;
  bool const m_takesAll;  // also characters beyond ASCII
  bool const m_keepsMarkup;
  char const* m_end;  // of the input, behind its last '>': each other byte is followed by one more
  FastNames m_names;
  std::vector<FastName*> m_open;
  std::vector<Binding> m_bindings;
  std::vector<Attribute> m_attributes;      // of the present start tag
  std::vector<CXmlName const*> m_prefixed;  // those of them that have a prefix
  std::uint32_t m_tag = 0;                  // the number of the present start tag with attributes
  std::string m_value;
};

}  // namespace Quillon9
