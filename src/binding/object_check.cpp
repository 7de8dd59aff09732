// A walk over a graph of objects as a write would make it, which writes nothing: the check of an object, and the search
// for the place of a failure that ended a write.

#include <exception>
#include <string>
#include <typeinfo>
#include <utility>

#include "base/failure_detail.h"
#include "binding/check_walk.h"
#include "binding/failure_report.h"
#include "binding/text_scope.h"
#include "binding/write_failure.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "text/utf8_text.h"
#include "xmlio/checking_writer.h"

namespace Quillon9 {

namespace {

using Scope = CheckingWriter::Scope;

/// Sends the failures to a sink. What the sink throws ends the walk and is kept, because classes wrap failures.
class Telling : public CheckReceiver {
 public:
  Telling(IFailureSink& sink, std::uint64_t most) : m_sink(sink), m_left(most) {}

  bool OnFailure(CQnException& failure, CheckingWriter const& writer) override {
    CFailurePlace place;
    place.SetPath(writer.GetPath());
    CFailure const told(failure.GetKind(), FailureSeverity_Error, std::move(place), CauseOf(failure).GetMessage());
    try {
      return m_sink.OnFailure(told) && --m_left != 0;
    } catch (...) {
      m_thrown = std::current_exception();
      return false;
    }
  }
  void Rethrow() const {
    if (m_thrown != nullptr) std::rethrow_exception(m_thrown);
  }

 private:
  IFailureSink& m_sink;
  std::uint64_t m_left;
  std::exception_ptr m_thrown;
};

/// Ends the walk at the failure with a given cause.
class Finding : public CheckReceiver {
 public:
  explicit Finding(CQnException& failure) : m_failure(failure), m_cause(CauseOf(failure)) {}

  bool OnFailure(CQnException& found, CheckingWriter const& writer) override {
    if (!IsSame(CauseOf(found))) return true;
    CFailureDetail detail;
    detail.kind = m_failure.GetKind() != FailureKind_Other ? m_failure.GetKind() : found.GetKind();
    detail.place.SetPath(writer.GetPath());
    detail.hasPlace = !detail.place.GetPath().empty();
    FailureAccess::SetDetail(m_failure, FailureAccess::NewDetail(detail));
    return false;
  }

 private:
  // A text that is not well-formed is shown with what precedes it, which is the whole document where text is written.
  bool IsSame(CQnException const& found) const {
    if (typeid(found) != typeid(m_cause)) return false;
    std::string const& text = m_cause.GetMessage();
    return found.GetMessage() == text || (Utf8Text::IsIllFormed(text) && Utf8Text::IsIllFormed(found.GetMessage()));
  }

  CQnException& m_failure;
  CQnException const& m_cause;
};

void Find(CQnException& failure, CXmlObjectBase const& object, CXmlSerializationContext const& ctx, Scope scope,
          CXmlWriter* encoder) noexcept {
  try {
    if (failure.GetPlace() != nullptr) return;
    TextScope const use(object, ctx);
    Finding finding(failure);
    CheckWalk(object, ctx, scope).SendTo(finding, encoder);
  } catch (...) {  // the failure that ended the write counts
  }
}

}  // namespace

void WriteFailure::AddPlace(CQnException& failure, CXmlObjectBase const& object,
                            CXmlSerializationContext const& ctx) noexcept {
  Find(failure, object, ctx, Scope::kWriting, nullptr);
}

void WriteFailure::AddPlace(CQnException& failure, CXmlObjectBase const& object, CXmlSerializationContext const& ctx,
                            CXmlWriter& encoder) noexcept {
  Find(failure, object, ctx, Scope::kEncoding, &encoder);
}

bool CXmlObjectBase::Check(CXmlSerializationContext const& ctx, IFailureSink* sink) const {
  TextScope const use(*this, ctx);
  CheckWalk walk(*this, ctx, Scope::kWritingAndReading, sink != nullptr);
  if (!walk.HasFailures()) return true;
  if (sink == nullptr) return false;
  Telling telling(*sink, MostFailures(ctx));
  walk.SendTo(telling);
  telling.Rethrow();
  return false;
}

}  // namespace Quillon9
