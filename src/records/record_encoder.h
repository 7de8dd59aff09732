#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "quillon9/binding/object_base.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// How the text of records is laid out.
struct RecordLayout {
  bool hasHeader = true;
  bool isFormatted = true;
  EOLType eol = EOLType_LF;
};

/// A writer in one of the forms of documents, whose output stays in memory until it is taken, so that the output of a
/// record that fails can be taken back.
class RecordEncoder {
 public:
  /// About the size of a block of output.
  static constexpr std::size_t kBlock = 0x10000;

  virtual ~RecordEncoder();
  virtual CXmlWriter& Writer() = 0;
  /// Write what stands in front of the document element.
  virtual void Begin() = 0;
  /// Write what follows it.
  virtual void End() = 0;
  /// Append the output to \p octets, in UTF-8 where it is text. If this fails, nothing is appended.
  /// \throws CQnInvalidValueException "The text is not well-formed UTF-8 after [%s]".
  virtual void MoveTo(std::string& octets) = 0;
  /// Note the state inside of the open element, which gets no attributes any more, and do what MoveTo() does.
  virtual void SetMark(std::string& octets) = 0;
  /// Take back everything since the last mark. Nothing may have been moved since.
  virtual void ReturnToMark() = 0;
  /// Give \p failure, which the write of \p object has thrown, its place. Throws nothing.
  virtual void AddPlace(CQnException& failure, CXmlObjectBase const& object,
                        CXmlSerializationContext const& ctx) const noexcept = 0;
};

/// An encoder for XML text.
std::unique_ptr<RecordEncoder> EncoderOfText(RecordLayout const& layout);
/// One for Fast Infoset, with the options of \p ctx. The tables of values stay small, so that its memory does not grow
/// with the document.
std::unique_ptr<RecordEncoder> EncoderOfInfoset(FInfoDecl decl, CXmlSerializationContext const& ctx);

}  // namespace Quillon9
