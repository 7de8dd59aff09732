#pragma once

#include <string_view>

#include "fastinfoset/writer_tables.h"
#include "quillon9/fastinfoset/writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

/// The only friend of the writer: what a document that is written in parts needs.
struct InfosetWriterAccess {
  /// Let the writer keep its octets in memory instead of passing them to its stream.
  static void HoldOctets(CFastInfosetWriter& writer);
  /// What has been written since the last call of DropOctets().
  static std::string_view HeldOctets(CFastInfosetWriter const& writer);
  /// Forget these octets; the memory is used again.
  static void DropOctets(CFastInfosetWriter& writer);
  static void LimitValues(CFastInfosetWriter& writer, WriterTables::ValueLimits const& limits);

  /// The state of a writer inside of a document.
  struct Mark {
    XmlWriterAccess::Mark elements;
    WriterTables::Mark tables;
    CXmlWriter::CXmlWriterContext const* mixed;
    bool terminatorPending;
  };
  /// The present state. The start of the open element is written, so that no attribute can follow.
  static Mark GetMark(CFastInfosetWriter& writer);
  /// Take back all that has been written since \p mark, except for the octets.
  static void ReturnTo(CFastInfosetWriter& writer, Mark const& mark);
};

}  // namespace Quillon9
