#pragma once

#include <atomic>
#include <cstdarg>
#include <string>

#include "quillon9/export.h"

namespace Quillon9 {

/// Root of all failures that the library reports: thrown by value, caught by reference. Used as it is for I/O,
/// parser and format errors, broken facets and logic errors.
///
/// A failure carries a text and, when it was made from another failure on its way up, that failure as inner
/// exception: a nested read or write gives a chain that leads from the document element down to the fault.
///
/// Copies of a failure share its chain, which nobody can change and which lives as long as one of them. So a copy costs
/// the same however long the chain is, and copies may go to different threads; one exception object may be read by any
/// number of threads while none changes it.
class QUILLON9_API CQnException {
 public:
  /// An empty text, no inner exception.
  CQnException();
  /// A text, no inner exception.
  explicit CQnException(std::string message);
  /// Keeps a copy of \p inner, made with Clone(), so \p inner may go out of scope.
  CQnException(std::string message, CQnException const& inner);
  /// Copies the text and shares the inner chain. The new object has the class named here, whatever \p other is.
  CQnException(CQnException const& other);
  /// Takes the text and the inner chain over.
  CQnException(CQnException&& other) noexcept;
  /// Copy the text of \p other and share its inner chain. Neither changes when an allocation fails.
  CQnException& operator=(CQnException const& other);
  virtual ~CQnException();

  /// A new heap object of the same dynamic class, which shares the inner chain. The caller owns it. Derived classes
  /// override it, so that a failure keeps its class when it becomes an inner exception.
  virtual CQnException* Clone() const;

  /// The text of this failure alone, without those of its inner exceptions.
  std::string const& GetMessage() const { return m_message; }
  /// The failure that caused this one, or null. It lives as long as this object or a copy of it.
  CQnException const* GetInnerException() const { return m_inner; }
  /// This text and the texts of all inner exceptions, outermost first, joined by line feeds.
  std::string GetFullMessage() const;

 private:
  static CQnException* Share(CQnException* inner) noexcept;
  void ReleaseInner() noexcept;

  std::string m_message;
  CQnException* m_inner = nullptr;   // owned together with the other failures that have it as inner exception
  std::atomic<unsigned> m_outer{0};  // how many failures have this one as inner exception
};

/// A decimal value does not fit.
class QUILLON9_API CQnOverFlowException : public CQnException {
 public:
  /// As CQnException's constructors; a failure of any class gives its text and shares its inner chain.
  ///@{
  CQnOverFlowException();
  explicit CQnOverFlowException(std::string message);
  CQnOverFlowException(std::string message, CQnException const& inner);
  CQnOverFlowException(CQnException const& other);
  CQnOverFlowException(CQnOverFlowException const& other) = default;
  CQnOverFlowException(CQnOverFlowException&& other) noexcept = default;
  CQnOverFlowException& operator=(CQnOverFlowException const& other) = default;
  ///@}
  ~CQnOverFlowException() override;
  CQnException* Clone() const override;
};

/// A bad argument to a public operation: index out of range, null where a value is required, a wrong object.
class QUILLON9_API CQnInvalidParamException : public CQnException {
 public:
  /// As CQnException's constructors; a failure of any class gives its text and shares its inner chain.
  ///@{
  CQnInvalidParamException();
  explicit CQnInvalidParamException(std::string message);
  CQnInvalidParamException(std::string message, CQnException const& inner);
  CQnInvalidParamException(CQnException const& other);
  CQnInvalidParamException(CQnInvalidParamException const& other) = default;
  CQnInvalidParamException(CQnInvalidParamException&& other) noexcept = default;
  CQnInvalidParamException& operator=(CQnInvalidParamException const& other) = default;
  ///@}
  ~CQnInvalidParamException() override;
  CQnException* Clone() const override;
};

/// A public operation that is not allowed now: a choice already taken, options that exclude each other.
class QUILLON9_API CQnInvalidStateException : public CQnException {
 public:
  /// As CQnException's constructors; a failure of any class gives its text and shares its inner chain.
  ///@{
  CQnInvalidStateException();
  explicit CQnInvalidStateException(std::string message);
  CQnInvalidStateException(std::string message, CQnException const& inner);
  CQnInvalidStateException(CQnException const& other);
  CQnInvalidStateException(CQnInvalidStateException const& other) = default;
  CQnInvalidStateException(CQnInvalidStateException&& other) noexcept = default;
  CQnInvalidStateException& operator=(CQnInvalidStateException const& other) = default;
  ///@}
  ~CQnInvalidStateException() override;
  CQnException* Clone() const override;
};

/// The document or the object graph breaks a rule of its schema. Also the class of the wrapper on the way up.
class QUILLON9_API CQnValidationException : public CQnException {
 public:
  /// As CQnException's constructors; a failure of any class gives its text and shares its inner chain.
  ///@{
  CQnValidationException();
  explicit CQnValidationException(std::string message);
  CQnValidationException(std::string message, CQnException const& inner);
  CQnValidationException(CQnException const& other);
  CQnValidationException(CQnValidationException const& other) = default;
  CQnValidationException(CQnValidationException&& other) noexcept = default;
  CQnValidationException& operator=(CQnValidationException const& other) = default;
  ///@}
  ~CQnValidationException() override;
  CQnException* Clone() const override;
};

/// A namespace is not allowed by a wildcard.
class QUILLON9_API CQnInvalidNamespaceException : public CQnValidationException {
 public:
  /// As CQnException's constructors; a failure of any class gives its text and shares its inner chain.
  ///@{
  CQnInvalidNamespaceException();
  explicit CQnInvalidNamespaceException(std::string message);
  CQnInvalidNamespaceException(std::string message, CQnException const& inner);
  CQnInvalidNamespaceException(CQnException const& other);
  CQnInvalidNamespaceException(CQnInvalidNamespaceException const& other) = default;
  CQnInvalidNamespaceException(CQnInvalidNamespaceException&& other) noexcept = default;
  CQnInvalidNamespaceException& operator=(CQnInvalidNamespaceException const& other) = default;
  ///@}
  ~CQnInvalidNamespaceException() override;
  CQnException* Clone() const override;
};

/// A text or a value breaks a format or a facet.
class QUILLON9_API CQnInvalidValueException : public CQnValidationException {
 public:
  /// As CQnException's constructors; a failure of any class gives its text and shares its inner chain.
  ///@{
  CQnInvalidValueException();
  explicit CQnInvalidValueException(std::string message);
  CQnInvalidValueException(std::string message, CQnException const& inner);
  CQnInvalidValueException(CQnException const& other);
  CQnInvalidValueException(CQnInvalidValueException const& other) = default;
  CQnInvalidValueException(CQnInvalidValueException&& other) noexcept = default;
  CQnInvalidValueException& operator=(CQnInvalidValueException const& other) = default;
  ///@}
  ~CQnInvalidValueException() override;
  CQnException* Clone() const override;
};

/// Build a text as printf does, of any length. The result ends at a NUL byte that a conversion produced. "I64"
/// before an integer conversion marks a 64-bit argument, as "ll" does. When libc refuses an argument (a wide character
/// that the locale does not have), the result is \p format itself. Any thread.
QUILLON9_API std::string FormatString(char const* format, ...) __attribute__((format(printf, 1, 2)));
/// The same with the arguments as a list. \p args is indeterminate afterwards.
QUILLON9_API std::string FormatV(char const* format, va_list args) __attribute__((format(printf, 1, 0)));

}  // namespace Quillon9
