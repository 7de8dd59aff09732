#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "quillon9/fwd.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

class CNamespaceScope;
class CheckingWriter;

/// The only friend of CXmlWriter, its open elements and the text writer: what the library does with them and other writers must not, and
/// what it does so often that it has to be inline.
struct XmlWriterAccess {
  using Context = CXmlWriter::CXmlWriterContext;

  /// The element that was started last, or null.
  static Context const* StartedElement(CXmlWriter const& writer) { return writer.StartedElement(); }

  /// Whether \p prefix can still be bound to \p uri on the document element, which has not started.
  static bool IsFreeForDocument(CXmlWriter const& writer, std::string const& prefix, std::string const& uri);

  /// \name What writing objects remembers in the writer
  ///@{
  static PlainClasses& PlainTypes(CXmlWriter& writer) { return *writer.m_plainClasses; }
  /// The last namespace that was passed on, kept for its memory.
  static std::string& NamespaceText(CXmlWriter& writer) { return writer.m_namespaceText; }
  ///@}

  /// \name A writer that writes nothing and goes on after failures
  ///@{
  /// \p writer as such a one; null if it is another.
  static CheckingWriter* Checking(CXmlWriter const& writer) { return writer.m_checking; }
  static void SetChecking(CheckingWriter& writer);
  ///@}

  /// \name Mixed content
  ///@{
  static bool IsMixed(Context const& context) { return context.m_isMixed; }
  static void SetMixed(Context& context, bool isMixed) { context.m_isMixed = isMixed; }
  static Context* OpenElement(CXmlWriter& writer) { return writer.m_context; }
  static MixedTexts*& Texts(CXmlWriter& writer) { return writer.m_mixedTexts; }
  ///@}

  /// \name Taking back what was written into the open element
  ///@{
  /// What the open element, or the document, has had so far.
  struct Mark {
    Context* open = nullptr;
    unsigned long childCount = 0;
    bool isTagOpen = false;
    std::map<std::string, std::string> namespaces;  ///< of the document element, if it has not been started
    std::string defaultNamespace;                   ///< the same
  };
  static Mark GetMark(CXmlWriter const& writer);
  /// Leave the elements that were started since \p mark, as if they had never been. The output is the caller's.
  static void ReturnTo(CXmlWriter& writer, Mark const& mark);

  struct TextMark {
    Mark elements;
    bool format = true;
    Context const* preserved = nullptr;
  };
  static TextMark GetMark(CXmlTextWriter const& writer);
  static void ReturnTo(CXmlTextWriter& writer, TextMark const& mark);
  ///@}

  /// Check that the element may have children.
  /// \throws CQnException as CXmlWriter::WriteStartElement() otherwise.
  static void RequireRoomForChild(Context const& open) {
    if (open.m_isDeepest) RequireRoomBelowDeepest(open);
  }

  /// Remember whether the element may have children under the \p limit of levels.
  static void SetLimit(Context& context, std::uint32_t limit) { context.m_isDeepest = context.m_depth + 1 >= limit; }

  /// \name Numbers of names
  ///@{
  /// Return a number for the default namespace and the bindings in force. Within the process, equal numbers other than
  /// 0 mean equal bindings. 0 if a caller of GetNamespaceMapValue() may change them unnoticed.
  static std::uint64_t ScopeState(Context const& context) {
    return context.m_scopeOwner->m_isLoose ? 0 : context.m_scopeOwner->m_scopeState;
  }
  /// Return the number that a format gave to the name of the element; 0 if there is none or the bindings have changed
  /// since. The next element that reuses this context keeps it if it has the same name.
  static unsigned long NameNumber(Context const& context) {
    bool const isKnown = context.m_numberedState != 0 && context.m_numberedState == ScopeState(context);
    return isKnown ? context.m_nameNumber : 0;
  }
  static void SetNameNumber(Context& context, unsigned long number) {
    context.m_nameNumber = number;
    context.m_numberedState = number != 0 ? ScopeState(context) : 0;
  }
  ///@}

  /// \name Namespace scopes
  /// A context without its own bindings follows the enclosing one and is in the list of its followers, so that a change
  /// reaches it at once. The owner of the scope is the context at the end of that chain, which follows none: for a
  /// context with its own bindings, the context itself.
  ///@{
  static void Follow(Context& context, Context& followed);
  /// What \p prefix stands for inside the element; null for nothing.
  static std::string const* UriOf(Context const& context, std::string const& prefix);
  /// Whether the document declares \p prefix, rather than only names that have it.
  static bool IsDeclared(Context const& context, std::string const& prefix);
  static void StopFollowing(Context& context);
  /// Let the followers of a context that is being destroyed keep their bindings. Allocates nothing.
  static void LeaveFollowers(Context& context);
  /// Visit the followers, and recursively the followers of those for which the visit returns true. A visited follower
  /// may leave the list.
  template <class Visit>
  static void ForEachFollower(Context& context, Visit visit);
  static bool IsLinked(Context const& context) {
    return context.m_followed != nullptr && context.m_followed == context.m_parent;
  }
  /// Make the context the owner of a scope with the bindings in force.
  static void KeepScope(Context& context);
  /// Return a scope that only this context holds and that is about to change.
  static CNamespaceScope& ScopeToChange(Context& context);
  ///@}

  /// Return a spare context of the writer, with at least one open element, or a new one, for an element inside the open
  /// one.
  static Context* NewChild(CXmlWriter& writer, std::string const& localName, std::string const& namespaceUri);
  /// Let the context of an element that ended serve a later one, or delete it.
  static void Release(CXmlWriter& writer, Context* context);

 private:
  static void RequireRoomBelowDeepest(Context const& open);
  static void Reuse(Context& context, std::string const& localName, std::string const& namespaceUri, Context& parent);
};

}  // namespace Quillon9
