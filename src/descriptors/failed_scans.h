#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "descriptors/reading_allowance.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// Remembers what the groups without a tag inside one element have found out about the children and attributes of that
/// element. One object exists while the element is read under the option that ignores unknown children, and ends with
/// that read, so nothing outlives the tree. The program must not change the tree during the read.
///
/// When a group lacks a mandatory member, the reader skips one child and tries the group again, and each member then
/// searches the remaining children again. Without a memory this is quadratic in the number of children. Two things are
/// remembered, because they depend only on names in the tree and determining them has no effect:
///
/// - for a member that takes an element by its name, the places of all children with that name. This answers every
///   search from any child, up to the end of the children;
/// - for a table of attribute descriptors, the attributes that it does not ignore.
///
/// Groups, collections and untyped members are tried every time, because trying them changes objects. So the classes
/// see the same calls as from a reader without a memory, with one exception. If a read has become costly (see
/// ReadingAllowance), a series of children whose names no member knows is passed in one step. At each of them a group
/// would only repeat the same calls with the same arguments.
class FailedScans {
 public:
  /// How a member behaves when a group tries it.
  enum class Kind : std::uint8_t {
    kNamed,     ///< takes the element under the cursor by its name, and otherwise has no effect
    kRequired,  ///< the same, and a sequence without a tag searches the following children for it
    kHeld,      ///< the same, but reads into an object that exists already and may keep what it read before
    kGroup,     ///< an object without a tag
    kOther      ///< may change objects whenever it is asked: collections, untyped content, a program's own descriptors
  };

  /// Whether a sequence without a tag searches the following children for a member of kind \p kind.
  static bool IsSought(Kind kind) { return kind == Kind::kRequired || kind == Kind::kHeld; }

  /// For the children of \p parent, which is borrowed. It is the current one of this thread until it is destroyed.
  FailedScans(CXmlElement const& parent, CXmlSerializationContext const& ctx);
  ~FailedScans() { t_current = m_outer; }
  FailedScans(FailedScans const&) = delete;
  FailedScans& operator=(FailedScans const&) = delete;

  /// The current one if it belongs to the children of \p parent and \p ctx ignores unknown elements; otherwise null.
  static FailedScans* Of(CXmlElement const* parent, CXmlSerializationContext const& ctx) {
    if (!ctx.GetIgnoreUnknownElements() || t_current == nullptr || t_current->m_parent != parent) return nullptr;
    return t_current->m_ignoresNamespaces == ctx.GetIgnoreNamespaces() ? t_current : nullptr;
  }
  /// Count the steps of reading \p element into generic content.
  static void SpendOnGeneric(CXmlElement const& element, CXmlSerializationContext const& ctx) {
    if (ctx.GetIgnoreUnknownElements() && t_current != nullptr) t_current->Spend(ReadingAllowance::SizeOf(element));
  }

  /// While a Pause exists, no FailedScans is current, because a setter may read another document during a read.
  class Pause {
   public:
    Pause() : m_outer(t_current) { t_current = nullptr; }
    ~Pause() { t_current = m_outer; }
    Pause(Pause const&) = delete;
    Pause& operator=(Pause const&) = delete;

   private:
    FailedScans* m_outer;
  };

  /// Call before \p member is tried. Returns its kind.
  Kind Note(Quillon9Data::CElementInfo const& member);
  /// Call after a member of kind \p kind has moved the cursor from \p start to \p stop. \p groups is the value of
  /// Groups() before that.
  void NoteAnswer(Kind kind, CXmlElement const* start, CXmlElement const* stop, std::uint64_t groups);
  /// Keep a list of the children that members take, for ForEachDropped(). Of this list, the current number of entries.
  ///@{
  void StartListing() { m_isListing = true; }
  std::size_t Listed() const { return m_taken.size(); }
  std::vector<CXmlElement const*> const& Taken() const { return m_taken; }
  ///@}
  /// Call after \p member of kind \p kind has moved the cursor from \p start to \p stop. \p listed is the value of
  /// Listed() before that.
  void ListTaken(Quillon9Data::CElementInfo const& member, Kind kind, CXmlSerializationContext const& ctx,
                 CXmlElement const* start, CXmlElement const* stop, std::size_t listed);
  /// A group without a tag has failed, so the entries behind the first \p listed ones are not taken after all.
  void Unlist(std::size_t listed) { m_taken.resize(listed); }
  /// Call \p tell with each child that no member took.
  template <class Tell>
  void ForEachDropped(Tell tell) const {
    auto taken = m_taken.begin();
    for (CXmlElement const* child = m_parent->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
      if (taken != m_taken.end() && *taken == child) {
        ++taken;
      } else {
        tell(*child);
      }
    }
  }
  /// The first child from \p cursor on that has the name of \p member; null for none. Call Note() for \p member first.
  CXmlElement* Find(Quillon9Data::CElementInfo const& member, CXmlSerializationContext const& ctx, CXmlElement* cursor);
  /// The child at which to retry what failed at \p cursor, which is not null; null if no child is left.
  CXmlElement* Pass(CXmlSerializationContext const& ctx, CXmlElement* cursor);

  /// The attributes that \p table does not ignore; null if that is not known yet.
  std::vector<CXmlAttribute*> const* AttributesOf(void const* table) const {
    auto const found = m_attributes.find(table);
    return found != m_attributes.end() ? &found->second : nullptr;
  }
  void NoteAttributes(void const* table, std::vector<CXmlAttribute*> attributes) {
    m_attributes.emplace(table, std::move(attributes));
  }
  /// Record that a group has done something that may differ the next time: no children are passed in one step any more.
  void NoteEffect() { m_hasEffects = true; }

  /// Count a group that the library reads; the number of these groups so far.
  ///@{
  void NoteGroup() {
    ++m_groups;
    Spend(1);
  }
  std::uint64_t Groups() const { return m_groups; }
  ///@}
  void Spend(std::size_t steps) { m_allowance.Spend(steps); }

 private:
  struct Member {
    Kind kind;
    bool isFound = false;                 ///< whether its places have been determined
    std::vector<std::uint32_t> places{};  ///< of the children with its name, in order
  };

  bool IsKnown(CXmlSerializationContext const& ctx, CXmlElement const* child) const;
  void NumberChildren();
  /// The place of \p child, or the number of children if it is not one of them.
  std::size_t PlaceOf(CXmlElement const* child) const;
  std::vector<std::uint32_t> const& PlacesOf(Quillon9Data::CElementInfo const& member,
                                             CXmlSerializationContext const& ctx);

  inline static thread_local FailedScans* t_current = nullptr;

  FailedScans* const m_outer;
  CXmlElement const* const m_parent;
  bool const m_ignoresNamespaces;
  bool m_hasEffects = false;
  bool m_isListing = false;
  std::vector<CXmlElement const*> m_taken;  // in document order
  std::uint64_t m_groups = 0;
  ReadingAllowance m_ownAllowance;  // used by the outermost one
  ReadingAllowance& m_allowance;
  std::unordered_map<Quillon9Data::CElementInfo const*, Member> m_members;
  std::unordered_map<void const*, std::vector<CXmlAttribute*>> m_attributes;
  std::vector<CXmlElement*> m_children;    // in document order; filled by the first long search
  std::vector<std::uint32_t> m_byAddress;  // their places in m_children, sorted by address
};

}  // namespace Quillon9
