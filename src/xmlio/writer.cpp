#include "quillon9/xmlio/writer.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "base/fast_paths.h"
#include "base/nesting_failure.h"
#include "base/plain_classes.h"
#include "base/text_copy.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "xmlio/mixed_texts.h"
#include "xmlio/namespace_scope.h"
#include "xmlio/writer_access.h"

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
  XmlWriterAccess::Follow(*this, *parent);
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
  XmlWriterAccess::LeaveFollowers(*this);
  XmlWriterAccess::StopFollowing(*this);
  // Iterative, because the document determines the length of the chain.
  for (CXmlWriterContext* context = m_parent; context != nullptr;) {
    CXmlWriterContext* parent = std::exchange(context->m_parent, nullptr);
    delete std::exchange(context, parent);
  }
}

void XmlWriterAccess::Reuse(Context& context, std::string const& localName, std::string const& namespaceUri,
                            Context& parent) {
  context.m_childCount = 0;
  context.m_tagOpen = true;
  context.m_attributesWritten = false;
  context.m_depth = parent.m_depth + 1;
  if (!IsSameText(context.m_namespace, namespaceUri)) {  // rare, and so is the comparison with the default that follows
    context.m_namespace = namespaceUri;
    context.m_comparedState = 0;
    context.m_numberedState = 0;
  }
  if (!IsSameText(context.m_elementName, localName)) {
    context.m_elementName = localName;
    context.m_numberedState = 0;
  }
  context.m_parent = &parent;
  Follow(context, parent);
}

std::string const* XmlWriterAccess::UriOf(Context const& context, std::string const& prefix) {
  return context.m_scopeOwner->m_scope->UriOf(prefix);
}

bool XmlWriterAccess::IsDeclared(Context const& context, std::string const& prefix) {
  return context.m_scopeOwner->m_scope->IsDeclared(prefix);
}

void XmlWriterAccess::Follow(Context& context, Context& followed) {
  context.m_followed = &followed;
  context.m_scopeOwner = followed.m_scopeOwner;
  context.m_nextFollower = followed.m_firstFollower;
  context.m_place = &followed.m_firstFollower;
  if (context.m_nextFollower != nullptr) context.m_nextFollower->m_place = &context.m_nextFollower;
  *context.m_place = &context;
}

void XmlWriterAccess::StopFollowing(Context& context) {
  if (context.m_followed == nullptr) return;
  context.m_followed = nullptr;
  *context.m_place = context.m_nextFollower;
  if (context.m_nextFollower != nullptr) context.m_nextFollower->m_place = context.m_place;
}

// The links of the followers to their parent have been cleared.
void XmlWriterAccess::LeaveFollowers(Context& context) {
  context.m_isLoose = false;  // references to the bindings end with this context
  while (context.m_firstFollower != nullptr) {
    Context& follower = *context.m_firstFollower;
    if (context.m_followed == nullptr) {
      KeepScope(follower);
    } else {
      StopFollowing(follower);
      Follow(follower, *context.m_followed);
    }
  }
}

template <class Visit>
void XmlWriterAccess::ForEachFollower(Context& context, Visit visit) {
  Context* at = context.m_firstFollower;
  while (at != nullptr) {
    Context* next = at->m_nextFollower;
    Context* around = at->m_followed;
    if (visit(*at) && at->m_firstFollower != nullptr) {
      at = at->m_firstFollower;
      continue;
    }
    for (; next == nullptr && around != &context; around = around->m_followed) next = around->m_nextFollower;
    at = next;
  }
}

// A scope that several contexts hold never changes, so it is shared, unless a caller may have a reference to one of its
// bindings.
void XmlWriterAccess::KeepScope(Context& context) {
  if (context.m_scopeOwner == &context) return;
  Context const& owner = *context.m_scopeOwner;
  context.m_scope = owner.m_isLoose
                        ? std::make_shared<CNamespaceScope>(owner.m_scope->GetDefaultNamespace(), owner.m_scope->All())
                        : owner.m_scope;
  context.m_scopeState = owner.m_isLoose ? NextState() : owner.m_scopeState;
  context.m_isLoose = false;
  context.m_inherits = false;
  context.m_scopeOwner = &context;
  StopFollowing(context);
  ForEachFollower(context, [&context](Context& follower) {
    follower.m_scopeOwner = &context;
    return true;
  });
}

// Followers whose link was cleared since they began to follow keep the bindings in force.
CNamespaceScope& XmlWriterAccess::ScopeToChange(Context& context) {
  ForEachFollower(context, [](Context& follower) {
    bool const isLinked = IsLinked(follower);
    if (!isLinked) KeepScope(follower);
    return isLinked;
  });
  KeepScope(context);
  if (context.m_scope.use_count() > 1) context.m_scope = std::make_shared<CNamespaceScope>(context.m_scope);
  context.m_scopeState = NextState();  // first: the change may be followed by a failure
  return *context.m_scope;
}

// Remembered from the start of the element for its end, and for the next element that reuses this context. Where the
// answers are verified, the state is stored inverted, so that NeedsNoPrefix() calls this function each time.
void CXmlWriter::CXmlWriterContext::CompareWithDefault() const {
  bool const needsNoPrefix = m_namespace.empty() || IsSameText(m_namespace, GetDefaultNamespace());
  std::uint64_t const state = m_scopeOwner->m_scopeState;
  kRememberedComparison.Verify([&] { return m_comparedState != ~state || m_needsNoPrefix == needsNoPrefix; });
  m_needsNoPrefix = needsNoPrefix;
  if constexpr (kRememberedComparison.IsOn()) m_comparedState = kChecksCaches ? ~state : state;
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
  while (XmlWriterAccess::IsLinked(*owner)) owner = owner->m_followed;
  CNamespaceScope& scope = XmlWriterAccess::ScopeToChange(*owner);
  owner->m_isLoose = true;
  return scope.At(uri);
}

void CXmlWriter::CXmlWriterContext::SetDefaultNamespace(std::string const& uri) {
  XmlWriterAccess::ScopeToChange(*this).SetDefaultNamespace(uri);
}

void CXmlWriter::CXmlWriterContext::SetNamespaceMapValue(std::string const& uri, std::string const& prefix) {
  XmlWriterAccess::ScopeToChange(*this).Bind(uri, prefix);
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
  auto* const context = m_context != nullptr ? XmlWriterAccess::NewChild(*this, localName, namespaceUri)
                                             : new CXmlWriterContext(localName, namespaceUri, m_defaultNamespace,
                                                                     m_namespaceMap, nullptr);
  XmlWriterAccess::SetLimit(*context, limit);
  return context;
}

void CXmlWriter::WriteTextBeforeChild() {
  if (m_context != nullptr && XmlWriterAccess::IsMixed(*m_context)) m_mixedTexts->BeforeChild();
}

void CXmlWriter::PreserveSpace() {}

void CXmlWriter::WriteMarkup(CMarkup const& /*markup*/) {}

void CXmlWriter::PopContext() { XmlWriterAccess::Release(*this, std::exchange(m_context, m_context->m_parent)); }

XmlWriterAccess::Context* XmlWriterAccess::NewChild(CXmlWriter& writer, std::string const& localName,
                                                    std::string const& namespaceUri) {
  Context* const context = writer.m_spare;
  if (context == nullptr) return new Context(localName, namespaceUri, writer.m_context);
  Context* const others = context->m_parent;
  Reuse(*context, localName, namespaceUri, *writer.m_context);
  writer.m_spare = others;
  return context;
}

// An element that bound nothing leaves its context to the next one, which saves much of the time of writing.
void XmlWriterAccess::Release(CXmlWriter& writer, Context* context) {
  if (kSpareContexts.IsOn() && context->m_followed != nullptr && context->m_firstFollower == nullptr) {
    StopFollowing(*context);
    context->m_parent = std::exchange(writer.m_spare, context);
    return;
  }
  context->m_parent = nullptr;
  delete context;
}

XmlWriterAccess::Mark XmlWriterAccess::GetMark(CXmlWriter const& writer) {
  Context* const open = writer.m_context;
  if (open == nullptr) return {nullptr, 0, false, writer.m_namespaceMap, writer.m_defaultNamespace};
  return {open, open->m_childCount, open->m_tagOpen, {}, {}};
}

// Spare contexts may remember what no longer holds.
void XmlWriterAccess::ReturnTo(CXmlWriter& writer, Mark const& mark) {
  while (writer.m_context != mark.open) {
    Context* const left = std::exchange(writer.m_context, writer.m_context->m_parent);
    left->m_parent = nullptr;
    delete left;
  }
  delete std::exchange(writer.m_spare, nullptr);
  if (mark.open == nullptr) {
    writer.m_namespaceMap = mark.namespaces;
    writer.m_defaultNamespace = mark.defaultNamespace;
    return;
  }
  mark.open->m_childCount = mark.childCount;
  mark.open->m_tagOpen = mark.isTagOpen;
}

void CXmlWriter::RequireOpenTag() const {
  if (m_context == nullptr || !m_context->m_tagOpen) throw CQnException("Attributes must be added before elements");
}

void CXmlWriter::RequireOpenElement() const {
  if (m_context == nullptr) throw CQnException("There is no open element to end");
}

void XmlWriterAccess::RequireRoomBelowDeepest(Context const& open) {
  RequireLevel(open.m_depth + 1, CLimits::GetMaxElementDepth());
}

std::string const& CXmlWriter::FindOrBindPrefix(CXmlWriterContext& context, std::string const& uri, bool& isNew) {
  std::string const* const found = context.FindPrefix(uri);
  isNew = found == nullptr;
  return isNew ? XmlWriterAccess::ScopeToChange(context).BindToGenerated(uri) : *found;
}

namespace {

/// Whether \p prefix may be declared in any document. Letters beyond ASCII are not tried.
bool IsPlainPrefix(std::string_view prefix) {
  auto const isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  auto const isInside = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; };
  if (prefix.empty() || !isLetter(prefix[0])) return false;
  auto const lower = [&](std::size_t i) { return static_cast<char>(prefix[i] | 0x20); };
  if (prefix.size() >= 3 && lower(0) == 'x' && lower(1) == 'm' && lower(2) == 'l') return false;
  return std::all_of(prefix.begin(), prefix.end(), isInside);
}

}  // namespace

bool XmlWriterAccess::IsFreeForDocument(CXmlWriter const& writer, std::string const& prefix, std::string const& uri) {
  if (writer.m_context != nullptr || !IsPlainPrefix(prefix)) return false;
  auto const& bindings = writer.m_namespaceMap;
  return std::none_of(bindings.begin(), bindings.end(),
                      [&](auto const& binding) { return binding.first == uri || binding.second == prefix; });
}

bool CXmlWriter::BindPrefix(CXmlWriterContext& context, std::string const& prefix, std::string const& uri,
                            bool& isNew) {
  isNew = false;
  std::string const* const bound = XmlWriterAccess::UriOf(context, prefix);
  if (bound != nullptr) return *bound == uri;
  if (uri.empty() || uri == XML_NAMESPACE || !IsPlainPrefix(prefix)) return false;
  XmlWriterAccess::ScopeToChange(context).AddAlias(prefix, uri);
  isNew = true;
  return true;
}

CXmlWriter::CXmlWriterContext* CXmlWriter::StartedElement() const { return m_context; }

bool CXmlWriter::DeclarePrefix(std::string const& prefix, std::string const& uri) {
  CXmlWriterContext* const started = StartedElement();
  if (started == nullptr || !started->m_tagOpen) throw CQnException("Attributes must be added before elements");
  bool isNew = false;
  return BindPrefix(*started, prefix, uri, isNew);
}

std::string CXmlWriter::PrefixForValues(std::string const& uri, std::string const& preferred) {
  CXmlWriterContext* const started = StartedElement();
  std::string const* const bound = started != nullptr ? started->FindPrefix(uri) : nullptr;
  if (bound != nullptr) {
    std::string prefix = *bound;
    if (started->m_tagOpen) DeclarePrefix(prefix, uri);
    return prefix;
  }
  if (DeclarePrefix(preferred, uri)) return preferred;
  std::string prefix;
  for (int number = 0; prefix.empty(); ++number) {
    prefix = NsIntToString(number);
    bool const isFree = started == nullptr || XmlWriterAccess::UriOf(*started, prefix) == nullptr;
    if (!isFree || IsReservedPrefix(prefix)) prefix.clear();
  }
  if (DeclarePrefix(prefix, uri)) return prefix;
  throw CQnException("Attributes must be added before elements");
}

std::string const& CXmlWriter::SchemaInstanceNamespace() {
  static auto const& uri = *new std::string("http://www.w3.org/2001/XMLSchema-instance");
  return uri;
}

}  // namespace Quillon9
