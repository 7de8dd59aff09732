#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "quillon9/quillon9.h"
#include "utf8.h"

namespace Quillon9Tool {

/// The command line asks for something that does not exist; what() says what.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A file or document that cannot be read or written; what() begins with its name.
class Failure : public std::runtime_error {
 public:
  Failure(std::string const& name, std::string const& reason, std::string report = {})
      : std::runtime_error(name + ": " + reason), m_reason(reason), m_report(std::move(report)) {}
  /// What happened, without the name.
  std::string const& Reason() const { return m_reason; }
  /// The failure with its place in the document, in the form of a compiler; empty if there is none.
  std::string const& Report() const { return m_report; }

 private:
  std::string m_reason;
  std::string m_report;
};

/// The command has failed, and has printed why.
class Reported : public std::exception {};

/// Return the name of the file \p path of the command line for messages. The name of a file may contain control
/// sequences that a terminal would obey.
inline std::string InputName(std::string const& path) { return path == "-" ? "standard input" : Escaped(path); }
inline std::string OutputName(std::string const& path) { return path == "-" ? "standard output" : Escaped(path); }

/// The report on \p failure, with \p name as the name of the file; empty unless a document is not well-formed.
inline std::string ReportOn(Quillon9::CQnException const& failure, std::string const& name) {
  if (failure.GetPlace() == nullptr || failure.GetKind() != Quillon9::FailureKind_Parse) return {};
  Quillon9::CFailurePlace place = *failure.GetPlace();
  place.SetFile(name);
  Quillon9::CQnException const* cause = &failure;
  while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
  return Quillon9::CFailure(failure.GetKind(), Quillon9::FailureSeverity_Error, place, cause->GetMessage()).GetReport();
}

/// Return the result of \p action, whose failures become failures of \p name.
/// \throws Failure
template <class Action>
auto Named(std::string const& name, Action action) {
  try {
    return action();
  } catch (Quillon9::CQnException const& failure) {
    throw Failure(name, failure.GetFullMessage(), ReportOn(failure, name));
  } catch (std::system_error const& failure) {
    throw Failure(name, failure.code().message());
  } catch (std::bad_alloc const&) {
    throw Failure(name, "there is not enough memory for it");
  }
}

}  // namespace Quillon9Tool
