#pragma once

#include <atomic>
#include <cstdarg>
#include <memory>
#include <string>

#include "quillon9/base/failures.h"
#include "quillon9/export.h"

namespace Quillon9 {

struct CFailureDetail;

/// Root of all failures that the library reports: thrown by value, caught by reference. Thrown directly for I/O, parser
/// and format errors, violated facets and logic errors.
///
/// A failure carries a text and, if another failure caused it, that failure as its inner exception: a nested read or
/// write gives a chain that leads from the document element down to the fault.
///
/// Copies of a failure share its chain, which is immutable and lives as long as any of them. So a copy costs the same
/// however long the chain is, and copies may go to different threads; any number of threads may read one exception
/// object while none changes it.
class QUILLON9_API CQnException {
 public:
  /// An empty text and no inner exception.
  CQnException();
  /// Holds \p message and has no inner exception.
  explicit CQnException(std::string message);
  /// Keeps a copy of \p inner, made with Clone(), so \p inner may go out of scope.
  CQnException(std::string message, CQnException const& inner);
  /// Copies the text and shares the inner chain. The new object is of the class named here, whatever the class of \p
  /// other is.
  CQnException(CQnException const& other);
  /// Takes over the text and the inner chain.
  CQnException(CQnException&& other) noexcept;
  /// Copy the text of \p other and share its inner chain. If an allocation fails, neither object changes.
  CQnException& operator=(CQnException const& other);
  virtual ~CQnException();

  /// Return a new heap object of the same dynamic class, which shares the inner chain. The caller owns it. Derived
  /// classes override this function, so that a failure keeps its class when it becomes an inner exception.
  virtual CQnException* Clone() const;

  /// The text of this failure only, without those of its inner exceptions.
  std::string const& GetMessage() const { return m_message; }
  /// The failure that caused this one, or null. It lives as long as this object or any copy of it.
  CQnException const* GetInnerException() const { return m_inner; }
  /// This text and the texts of all inner exceptions, outermost first, joined by line feeds.
  std::string GetFullMessage() const;

  /// Where the innermost fault of the chain is: the value or attribute that does not convert, the element or attribute
  /// that no member takes; for something missing, the element in front of which it is missing, or the end tag of its
  /// parent. Null for a failure that is not about a place in a document or in a graph of objects. The same for all
  /// failures of a chain. It lives as long as this object or any copy of it.
  CFailurePlace const* GetPlace() const;
  /// The kind of the innermost fault of the chain.
  FailureKind GetKind() const;
  /// The text of the innermost failure with its place, on one line; see CFailure::GetReport().
  std::string GetReport() const;

 private:
  friend struct FailureAccess;

  static CQnException* Share(CQnException* inner) noexcept;
  void ReleaseInner() noexcept;

  std::string m_message;
  std::shared_ptr<CFailureDetail> m_detail;  // shared by the chain; null if there is none
  CQnException* m_inner = nullptr;           // owned jointly with the other failures that have it as inner exception
  std::atomic<unsigned> m_outer{0};          // number of failures that have this one as inner exception
};

/// A decimal value does not fit.
class QUILLON9_API CQnOverFlowException : public CQnException {
 public:
  /// Like the constructors of CQnException: a failure of any class gives its text and shares its inner chain.
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

/// A bad argument to a public operation: an index out of range, null where a value is required, or a wrong object.
class QUILLON9_API CQnInvalidParamException : public CQnException {
 public:
  /// Like the constructors of CQnException: a failure of any class gives its text and shares its inner chain.
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

/// A public operation is not allowed now: a choice is already taken, or options exclude each other.
class QUILLON9_API CQnInvalidStateException : public CQnException {
 public:
  /// Like the constructors of CQnException: a failure of any class gives its text and shares its inner chain.
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

/// The document or the object graph violates a rule of its schema. Also the class of the exceptions that wrap such a
/// failure on its way up.
class QUILLON9_API CQnValidationException : public CQnException {
 public:
  /// Like the constructors of CQnException: a failure of any class gives its text and shares its inner chain.
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

/// A wildcard does not allow a namespace.
class QUILLON9_API CQnInvalidNamespaceException : public CQnValidationException {
 public:
  /// Like the constructors of CQnException: a failure of any class gives its text and shares its inner chain.
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

/// A text or a value violates a format or a facet.
class QUILLON9_API CQnInvalidValueException : public CQnValidationException {
 public:
  /// Like the constructors of CQnException: a failure of any class gives its text and shares its inner chain.
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

/// Build a text of any length as printf does. The result ends at the first NUL byte that a conversion produced. "I64"
/// before an integer conversion marks a 64-bit argument, as "ll" does. When libc refuses an argument (a wide character
/// that the locale lacks), the result is \p format itself. Any thread.
QUILLON9_API std::string FormatString(char const* format, ...) __attribute__((format(printf, 1, 2)));
/// Like FormatString(), with the arguments as a list. \p args is indeterminate afterwards.
QUILLON9_API std::string FormatV(char const* format, va_list args) __attribute__((format(printf, 1, 0)));

}  // namespace Quillon9
