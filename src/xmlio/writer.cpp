#include "quillon9/xmlio/writer.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "base/nesting_failure.h"
#include "base/plain_classes.h"
#include "base/text_copy.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "xmlio/namespace_scope.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kLetters = 26;
// Six letters allow 300 million prefixes, which fits in an int and exceeds any map.
constexpr std::size_t kLongestGenerated = 6;

/// Return a new number for the state of a scope, unique in the process. The first one is 1.
std::uint64_t NextState() {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

void RequireLevel(std::uint32_t enclosing, std::uint32_t limit) {
  if (enclosing >= limit) ThrowNestedTooDeep(limit);
}

/// Return the number of a generated prefix, the inverse of NsIntToString; \p limit for every other text.
std::size_t GeneratedNumber(std::string_view prefix, std::size_t limit) {
  if (prefix.size() < 2 || prefix.size() > kLongestGenerated) return limit;
  std::size_t number = 0;
  std::size_t shorter = 0;  // the number of prefixes with fewer letters
  std::size_t block = 1;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (prefix[i] < 'A' || prefix[i] > 'Z') return limit;
    number = number * kLetters + static_cast<std::size_t>(prefix[i] - 'A');
    block *= kLetters;
    if (i >= 1 && i + 1 < prefix.size()) shorter += block;
  }
  return number + shorter;
}

}  // namespace

CXmlWriter::CXmlWriterContext::CXmlWriterContext(std::string const& localName, std::string const& namespaceUri,
                                                 CXmlWriterContext* parent)
    : m_depth(parent->m_depth + 1),
      m_namespace(namespaceUri),
      m_elementName(localName),
      m_parent(parent),
      m_inherits(true) {
  Follow(*parent);
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(std::string const& localName, std::string const& namespaceUri,
                                                 std::string const& defaultNamespace,
                                                 std::map<std::string, std::string> const& map,
                                                 CXmlWriterContext* parent)
    : m_namespace(namespaceUri),
      m_elementName(localName),
      m_parent(parent),
      m_inherits(false),
      m_scopeOwner(this),
      m_scope(std::make_shared<CNamespaceScope>(defaultNamespace, map)),
      m_scopeState(NextState()) {}

CXmlWriter::CXmlWriterContext::~CXmlWriterContext() {
  LeaveFollowers();
  StopFollowing();
  // Iterative, because the document determines the length of the chain.
  for (CXmlWriterContext* context = m_parent; context != nullptr;) {
    CXmlWriterContext* parent = std::exchange(context->m_parent, nullptr);
    delete std::exchange(context, parent);
  }
}

void CXmlWriter::CXmlWriterContext::Reuse(std::string const& localName, std::string const& namespaceUri,
                                          CXmlWriterContext* parent) {
  m_childCount = 0;
  m_tagOpen = true;
  m_attributesWritten = false;
  m_depth = parent->m_depth + 1;
  if (!IsSameText(m_namespace, namespaceUri)) {  // rare, and so is the comparison with the default that follows
    m_namespace = namespaceUri;
    m_comparedState = 0;
    m_numberedState = 0;
  }
  if (!IsSameText(m_elementName, localName)) {
    m_elementName = localName;
    m_numberedState = 0;
  }
  m_parent = parent;
  Follow(*parent);
}

void CXmlWriter::CXmlWriterContext::Follow(CXmlWriterContext& context) {
  m_followed = &context;
  m_scopeOwner = context.m_scopeOwner;
  m_nextFollower = context.m_firstFollower;
  m_place = &context.m_firstFollower;
  if (m_nextFollower != nullptr) m_nextFollower->m_place = &m_nextFollower;
  *m_place = this;
}

void CXmlWriter::CXmlWriterContext::StopFollowing() {
  if (m_followed == nullptr) return;
  m_followed = nullptr;
  *m_place = m_nextFollower;
  if (m_nextFollower != nullptr) m_nextFollower->m_place = m_place;
}

// Their links to this context, which is being destroyed, have been cleared. Allocates nothing.
void CXmlWriter::CXmlWriterContext::LeaveFollowers() {
  m_isLoose = false;  // references to the bindings end with this context
  while (m_firstFollower != nullptr) {
    CXmlWriterContext& follower = *m_firstFollower;
    if (m_followed == nullptr) {
      follower.KeepScope();
    } else {
      follower.StopFollowing();
      follower.Follow(*m_followed);
    }
  }
}

// Visit the followers, and recursively the followers of those for which the visit returns true. A visited follower may
// leave the list.
template <class Visit>
void CXmlWriter::CXmlWriterContext::ForEachFollower(Visit visit) {
  CXmlWriterContext* at = m_firstFollower;
  while (at != nullptr) {
    CXmlWriterContext* next = at->m_nextFollower;
    CXmlWriterContext* around = at->m_followed;
    if (visit(*at) && at->m_firstFollower != nullptr) {
      at = at->m_firstFollower;
      continue;
    }
    for (; next == nullptr && around != this; around = around->m_followed) next = around->m_nextFollower;
    at = next;
  }
}

// Become the owner of a scope with the bindings in force. A scope that several contexts hold never changes, so it is
// shared, unless a caller may have a reference to one of its bindings.
void CXmlWriter::CXmlWriterContext::KeepScope() {
  if (m_scopeOwner == this) return;
  CXmlWriterContext const& owner = *m_scopeOwner;
  m_scope = owner.m_isLoose
                ? std::make_shared<CNamespaceScope>(owner.m_scope->GetDefaultNamespace(), owner.m_scope->All())
                : owner.m_scope;
  m_scopeState = owner.m_isLoose ? NextState() : owner.m_scopeState;
  m_isLoose = false;
  m_inherits = false;
  m_scopeOwner = this;
  StopFollowing();
  ForEachFollower([this](CXmlWriterContext& follower) {
    follower.m_scopeOwner = this;
    return true;
  });
}

// Return a scope that only this context holds and that is about to change. Followers whose link was cleared since they
// began to follow keep the bindings in force.
CNamespaceScope& CXmlWriter::CXmlWriterContext::ScopeToChange() {
  ForEachFollower([](CXmlWriterContext& follower) {
    bool const isLinked = follower.IsLinked();
    if (!isLinked) follower.KeepScope();
    return isLinked;
  });
  KeepScope();
  if (m_scope.use_count() > 1) m_scope = std::make_shared<CNamespaceScope>(m_scope);
  m_scopeState = NextState();  // first: the change may be followed by a failure
  return *m_scope;
}

// Cached from the start of the element for its end, and for the next element that reuses this context.
void CXmlWriter::CXmlWriterContext::CompareWithDefault() const {
  m_needsNoPrefix = m_namespace.empty() || IsSameText(m_namespace, GetDefaultNamespace());
  m_comparedState = m_scopeOwner->m_scopeState;
}

std::string const& CXmlWriter::CXmlWriterContext::GetDefaultNamespace() const {
  return m_scopeOwner->m_scope->GetDefaultNamespace();
}

std::map<std::string, std::string> const& CXmlWriter::CXmlWriterContext::GetNamespaceMap() const {
  return m_scopeOwner->m_scope->All();
}

std::string const* CXmlWriter::CXmlWriterContext::FindPrefix(std::string const& uri) const {
  return m_scopeOwner->m_scope->Find(uri);
}

std::string& CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(std::string const& uri) {
  CXmlWriterContext* owner = this;
  while (owner->IsLinked()) owner = owner->m_followed;
  CNamespaceScope& scope = owner->ScopeToChange();
  owner->m_isLoose = true;
  return scope.At(uri);
}

void CXmlWriter::CXmlWriterContext::SetDefaultNamespace(std::string const& uri) {
  ScopeToChange().SetDefaultNamespace(uri);
}

void CXmlWriter::CXmlWriterContext::SetNamespaceMapValue(std::string const& uri, std::string const& prefix) {
  ScopeToChange().Bind(uri, prefix);
}

std::string const& CXmlWriter::CXmlWriterContext::BindToGenerated(std::string const& uri) {
  return ScopeToChange().BindToGenerated(uri);
}

CXmlWriter::CXmlWriter(char const* /*className*/) : m_plainClasses(std::make_unique<PlainClasses>()) {
  CXmlWriter::AddNamespace("xml", XML_NAMESPACE);
}

CXmlWriter::~CXmlWriter() {
  delete m_context;
  delete m_spare;
}

void CXmlWriter::Open() {}

void CXmlWriter::Close() {
  if (m_context != nullptr) throw CQnException("An Element has not been closed.");
}

void CXmlWriter::SetDefaultNamespace(std::string const& uri) {
  if (m_context != nullptr) {
    m_context->SetDefaultNamespace(uri);
  } else {
    m_defaultNamespace = uri;
  }
}

void CXmlWriter::AddNamespace(std::string const& alias, std::string const& uri) {
  if (m_context != nullptr) {
    m_context->SetNamespaceMapValue(uri, alias);
  } else {
    m_namespaceMap[uri] = alias;
  }
}

void CXmlWriter::WriteTextElement(std::string const& localName, std::string const& namespaceUri, std::string_view value,
                                  ItemType type, std::uint64_t /*member*/) {
  WriteStartElement(localName, namespaceUri);
  WriteString(std::string(value), type);
  WriteEndElement();
}

std::string CXmlWriter::GetUniquePrefix(std::map<std::string, std::string> const& map) {
  // Far fewer than half of the numbers are reserved, so one of these is free.
  std::vector<bool> taken(map.size() * 2 + 1);
  for (auto const& binding : map) {
    std::size_t const number = GeneratedNumber(binding.second, taken.size());
    if (number < taken.size()) taken[number] = true;
  }
  for (std::size_t number = 0;; ++number) {
    if (number < taken.size() && taken[number]) continue;
    std::string prefix = NsIntToString(static_cast<int>(number));
    if (!IsReservedPrefix(prefix)) return prefix;
  }
}

std::string CXmlWriter::NsIntToString(int number) {
  if (number < 0) throw CQnException(FormatString("The prefix number [%d] is negative", number));
  std::size_t rest = static_cast<std::size_t>(number);
  std::size_t length = 2;
  for (std::size_t count = kLetters * kLetters; rest >= count; count *= kLetters) {
    rest -= count;
    ++length;
  }
  std::string prefix(length, 'A');
  for (std::size_t i = length; i-- > 0; rest /= kLetters) {
    prefix[i] = static_cast<char>('A' + static_cast<int>(rest % kLetters));
  }
  return prefix;
}

CXmlWriter::CXmlWriterContext* CXmlWriter::NewContext(std::string const& localName, std::string const& namespaceUri) {
  std::uint32_t const limit = CLimits::GetMaxElementDepth();
  RequireLevel(m_context == nullptr ? 0 : m_context->m_depth + 1, limit);
  if (m_context != nullptr && m_spare != nullptr) {
    CXmlWriterContext* const context = m_spare;
    CXmlWriterContext* const others = context->m_parent;
    context->Reuse(localName, namespaceUri, m_context);
    context->m_isDeepest = context->m_depth + 1 >= limit;
    m_spare = others;
    return context;
  }
  auto* const context = m_context != nullptr ? new CXmlWriterContext(localName, namespaceUri, m_context)
                                             : new CXmlWriterContext(localName, namespaceUri, m_defaultNamespace,
                                                                     m_namespaceMap, nullptr);
  context->m_isDeepest = context->m_depth + 1 >= limit;
  return context;
}

// An element that bound nothing leaves its context to the next one, which saves much of the time of writing.
void CXmlWriter::PopContext() {
  CXmlWriterContext* const context = std::exchange(m_context, m_context->m_parent);
  if (context->m_followed != nullptr && context->m_firstFollower == nullptr) {
    context->StopFollowing();
    context->m_parent = std::exchange(m_spare, context);
    return;
  }
  context->m_parent = nullptr;
  delete context;
}

void CXmlWriter::RequireOpenTag() const {
  if (m_context == nullptr || !m_context->m_tagOpen) throw CQnException("Attributes must be added before elements");
}

void CXmlWriter::RequireOpenElement() const {
  if (m_context == nullptr) throw CQnException("There is no open element to end");
}

void CXmlWriter::RequireRoomBelowDeepest() const {
  RequireLevel(m_context->m_depth + 1, CLimits::GetMaxElementDepth());
}

std::string const& CXmlWriter::FindOrBindPrefix(CXmlWriterContext& context, std::string const& uri, bool& isNew) {
  std::string const* const found = context.FindPrefix(uri);
  isNew = found == nullptr;
  return isNew ? context.BindToGenerated(uri) : *found;
}

std::string const& CXmlWriter::SchemaInstanceNamespace() {
  static auto const& uri = *new std::string("http://www.w3.org/2001/XMLSchema-instance");
  return uri;
}

}  // namespace Quillon9
