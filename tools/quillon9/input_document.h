#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "losses.h"
#include "progress.h"
#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// A document as the library reads it, in any form: XML text or Fast Infoset, compressed or not.
class InputDocument {
 public:
  /// Read the file \p path (`-` is standard input). \p progress, if it is not null, shows how much has been read.
  /// \throws Failure
  explicit InputDocument(std::string const& path, Progress* progress = nullptr);
  InputDocument(InputDocument const&) = delete;
  InputDocument& operator=(InputDocument const&) = delete;

  bool IsFastInfoset() const { return m_isFastInfoset; }
  Losses const& GetLosses() const { return m_losses; }
  Quillon9::CXmlElement const& GetRoot() const { return *m_document->GetDocumentElement(); }
  /// Return the prefixes of the document, each with a namespace that it stands for, empty for none.
  std::map<std::string, std::string> const& GetPrefixes() const { return m_prefixes; }

 private:
  void PrepareForInfoset(std::string_view octets);

  bool m_isFastInfoset = false;
  Losses m_losses;
  Quillon9::CXmlSerializationContext m_context;
  std::optional<Quillon9::CXmlDocument> m_document;  // refers to the context
  std::map<std::string, std::string> m_prefixes;
};

}  // namespace Quillon9Tool
