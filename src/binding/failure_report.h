#pragma once

#include <cstdint>
#include <exception>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <typeinfo>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// After how many errors a read or check under \p ctx ends, and how many remarks it sends.
inline std::uint64_t MostFailures(CXmlSerializationContext const& ctx) {
  return ctx.GetMaxFailures() != 0 ? ctx.GetMaxFailures() : std::numeric_limits<std::uint64_t>::max();
}

/// A node of a tree where something is wrong.
struct FailurePoint {
  CXmlElement const* element;
  CXmlAttribute const* attribute = nullptr;  ///< of the element; null for the element itself
  bool isAtEnd = false;                      ///< the end tag of the element

  /// \p cursor, which is a child of \p parent, or the end tag of \p parent if there is no child left.
  static FailurePoint At(CXmlElement const* parent, CXmlElement const* cursor) {
    return cursor != nullptr ? FailurePoint{cursor} : FailurePoint{parent, nullptr, true};
  }
};

/// Finds the places of nodes in the input of a read.
class PlaceFinder {
 public:
  /// The place of \p point, or what is known of it. If its element is null, that is the file at most.
  virtual CFailurePlace Find(FailurePoint const& point) = 0;
  /// Whether it knows where in the input \p element is. That may have been deleted with a tree of the program, which a
  /// class of the program has read within the read of its document.
  virtual bool HasPositionsOf(CXmlElement const* element) = 0;

 protected:
  ~PlaceFinder() = default;
};

/// The failures of one read or check: notes where they are, sends them to the sink of the context, and decides whether to go on. It
/// lives on the stack of the operation of the caller, and is the current one of its thread meanwhile.
///
/// Reading code passes a failure to Note() or GoesOn() in a catch block at the innermost place that knows the node, and
/// throws it again unless the answer is true. So a read without failures does nothing for this.
class FailureReport {
 public:
  /// \p ctx and \p places are borrowed.
  FailureReport(CXmlSerializationContext const& ctx, PlaceFinder& places);
  ~FailureReport() { t_current = m_outer; }
  FailureReport(FailureReport const&) = delete;
  FailureReport& operator=(FailureReport const&) = delete;

  /// Note that \p failure is at \p point, unless a place nearer to its cause was noted before.
  static void Note(CQnException& failure, FailurePoint const& point);
  /// The same for throw statements.
  template <class Exception>
  static Exception Noted(FailurePoint const& point, Exception failure) {
    Note(failure, point);
    return failure;
  }
  /// Note(), and send \p failure to the sink of \p ctx if there is one and it does not know it yet. True if the read is
  /// to go on as if the faulty part were not there; false if the caller must throw the failure again.
  static bool GoesOn(CXmlSerializationContext const& ctx, CQnException& failure, FailurePoint const& point);
  /// The element that was noted for \p failure in the current read; null if none was.
  static CXmlElement const* ElementOf(CQnException const& failure);
  /// A failure cost \p collection an item. So it is no fault of the document if there are too few.
  ///@{
  static void NoteLoss(CXmlSerializationContext const& ctx, CXmlCollectionBase const& collection);
  static bool HasLost(CXmlSerializationContext const& ctx, CXmlCollectionBase const& collection);
  ///@}
  /// Send a remark to the sink of \p ctx, if there is one.
  static void Remark(CXmlSerializationContext const& ctx, FailureKind kind, FailurePoint const& point,
                     std::string const& text);

  /// For the operation of the caller: find the place of \p failure, which ends it, and send it to the sink unless the
  /// sink knows it.
  /// \throws what the sink throws, or has thrown before.
  void Complete(CQnException& failure);

 private:
  /// The current one, if it belongs to a read with the sink of \p ctx.
  static FailureReport* Of(CXmlSerializationContext const& ctx);
  CFailurePlace PlaceOf(FailurePoint const& point) const;
  bool IsNew(FailurePoint const& point, std::string const& text);
  CFailureDetail& DetailFor(CQnException const& failure);
  void FindPlace(CQnException& failure);
  bool Tell(CQnException& failure);
  bool Send(CFailure const& failure);

  static inline thread_local FailureReport* t_current = nullptr;

  IFailureSink* m_sink;
  PlaceFinder& m_places;
  std::uint64_t m_most;
  std::uint64_t m_errors = 0;
  std::uint64_t m_remarks = 0;
  // What was known when it began, and about the last failure that the program brought along: of the class and text.
  std::uint64_t m_start;
  std::optional<CFailureDetail> m_foreign;
  std::type_info const* m_foreignClass = nullptr;
  std::string m_foreignText;
  std::exception_ptr m_thrown;  // by the sink, which is not called any more
  // The failures that the sink knows, by their node, attribute, end tag and text: a group that is tried again fails again.
  std::set<std::tuple<void const*, void const*, bool, std::size_t>> m_told;
  std::set<void const*> m_losers;  // collections
  FailureReport* m_outer;
};

}  // namespace Quillon9
