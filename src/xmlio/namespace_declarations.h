#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "quillon9/xmlio/element.h"

namespace Quillon9 {

/// The namespace declarations of a document, and which of them are in scope at an element (Namespaces in XML 1.0, W3C,
/// section 6.1). Most documents bind each prefix once, on the document element, and the answer is then known without a
/// look at the tree.
class NamespaceDeclarations {
 public:
  enum class Kind {
    Declaration,
    Name  ///< only the first element of a name is known to have the prefix, so it counts anywhere unless it is ambiguous
  };

  /// Note a declaration on the next child of \p parent, which follows \p before, or on the document element if
  /// \p parent is null. Neither is looked at. Returns \p uri as it is kept.
  std::string const& Add(CXmlElement const* parent, CXmlElement const* before, std::string_view prefix,
                         std::string_view uri, Kind kind);
  /// The URI to which \p prefix (empty for the default namespace) is bound at \p element of the tree \p root; null if
  /// it is not declared. Valid until the next declaration.
  std::string const* Find(CXmlElement const* root, CXmlElement const& element, std::string_view prefix) const;

  /// The prefixes, each with its URI, that the document element declares, and those that have one meaning in the whole
  /// document, in the order of the document.
  std::vector<std::pair<std::string, std::string>> ForDocumentElement() const;

 private:
  using Bindings = std::map<std::pair<std::string, std::string>, bool>;  // prefix and URI; whether only inside the root
  using Binding = Bindings::value_type;

  struct Declaration {
    CXmlElement const* parent;
    CXmlElement const* before;
    Binding* binding;
  };
  /// What is declared on one element, and the scope around that.
  struct Scope {
    Scope const* outer;
    std::vector<Binding const*> bindings;
  };

  bool IsUnique(Bindings::const_iterator binding) const;
  void MakeIndex(CXmlElement const* root) const;

  Bindings m_bindings;
  std::vector<Declaration> m_declarations;
  mutable std::vector<std::unique_ptr<Scope>> m_scopes;
  mutable std::unordered_map<CXmlElement const*, Scope const*> m_index;  // elements with declarations in scope
  mutable CXmlElement const* m_indexed = nullptr;                        // the root when the index was made
};

}  // namespace Quillon9
