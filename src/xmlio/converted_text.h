#pragma once

#include <string>
#include <string_view>

#include "quillon9/xmlio/element.h"
#include "text/utf8_to_local.h"
#include "values/rules_in_use.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

/// Append \p utf8 to the text of \p target, converted by \p toLocal and, unless the rules of XML Schema are in use,
/// without its carriage returns. Those are from references: parsers turn line ends into line feeds.
inline void AppendConverted(CXmlElement& target, CUtf8ToLocal const& toLocal, std::string_view utf8) {
  // Most text is plain ASCII, which is detected while it is copied.
  if (toLocal.KeepsAscii() && XmlNodeAccess::AppendPlainText(target, utf8)) return;
  if (toLocal.IsSameExcludingCR(utf8)) return XmlNodeAccess::AppendText(target, utf8);
  std::string local;
  if (RulesInUse::AreSchema()) {
    toLocal.Append(local, utf8);
  } else {
    toLocal.AppendExcludingCR(local, utf8);
  }
  XmlNodeAccess::AppendText(target, local);
}

}  // namespace Quillon9
