#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

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
  Failure(std::string const& name, std::string const& reason)
      : std::runtime_error(name + ": " + reason), m_reason(reason) {}
  /// What happened, without the name.
  std::string const& Reason() const { return m_reason; }

 private:
  std::string m_reason;
};

/// The command has failed, and has printed why.
class Reported : public std::exception {};

/// Return the name of the file \p path of the command line for messages. The name of a file may contain control
/// sequences that a terminal would obey.
inline std::string InputName(std::string const& path) { return path == "-" ? "standard input" : Escaped(path); }
inline std::string OutputName(std::string const& path) { return path == "-" ? "standard output" : Escaped(path); }

/// Return the result of \p action, whose failures become failures of \p name.
/// \throws Failure
template <class Action>
auto Named(std::string const& name, Action action) {
  try {
    return action();
  } catch (Quillon9::CQnException const& failure) {
    throw Failure(name, failure.GetFullMessage());
  } catch (std::system_error const& failure) {
    throw Failure(name, failure.code().message());
  } catch (std::bad_alloc const&) {
    throw Failure(name, "there is not enough memory for it");
  }
}

}  // namespace Quillon9Tool
