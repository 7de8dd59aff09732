#pragma once

#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "xmlio/checking_writer.h"

namespace Quillon9 {

/// The first of the two walks over a graph of objects, as a write would go. It counts siblings, which the paths of the
/// second walk need.
class CheckWalk final : CheckReceiver {
 public:
  /// Walk over the graph of \p object, to its end or, unless \p goesOn, to the first failure. All arguments are borrowed.
  CheckWalk(CXmlObjectBase const& object, CXmlSerializationContext const& ctx, CheckingWriter::Scope scope,
            bool goesOn = true)
      : m_object(object), m_ctx(ctx), m_scope(scope), m_goesOn(goesOn), m_writer(scope, *this, nullptr) {
    Run(m_writer);
  }

  bool HasFailures() const { return m_hasFailures; }
  /// Walk again, and send the failures to \p receiver. \p encoder may be null; see CheckingWriter::SetEncoder().
  void SendTo(CheckReceiver& receiver, CXmlWriter* encoder = nullptr) {
    CheckingWriter writer(m_scope, receiver, &m_writer);
    writer.SetEncoder(encoder);
    Run(writer);
  }

 private:
  bool OnFailure(CQnException&, CheckingWriter const&) override {
    m_hasFailures = true;
    return m_goesOn;
  }
  void Run(CheckingWriter& writer) const {
    try {
      std::string const targetNamespace = m_object.GetTargetNamespace();
      CXmlObjectBase::ToXml_Int(&m_object, &writer, true, targetNamespace.c_str(), m_ctx, false);
      writer.Close();
    } catch (CQnException& failure) {
      writer.GoesOn(failure);
    }
  }

  CXmlObjectBase const& m_object;
  CXmlSerializationContext const& m_ctx;
  CheckingWriter::Scope m_scope;
  bool m_goesOn;
  bool m_hasFailures = false;
  CheckingWriter m_writer;
};

}  // namespace Quillon9
