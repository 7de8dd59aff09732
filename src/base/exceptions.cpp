#include "quillon9/base/exceptions.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "base/failure_detail.h"

namespace Quillon9 {

CQnException::CQnException() = default;

CQnException::CQnException(std::string message) : m_message(std::move(message)) {}

CQnException::CQnException(std::string message, CQnException const& inner)
    : m_message(std::move(message)), m_detail(inner.m_detail), m_inner(Share(inner.Clone())) {}

CQnException::CQnException(CQnException const& other)
    : m_message(other.m_message), m_detail(other.m_detail), m_inner(Share(other.m_inner)) {}

CQnException::CQnException(CQnException&& other) noexcept
    : m_message(std::move(other.m_message)),
      m_detail(std::move(other.m_detail)),
      m_inner(std::exchange(other.m_inner, nullptr)) {}

CQnException& CQnException::operator=(CQnException const& other) {
  CQnException copy(other);  // first: other may be part of the chain that is released here
  std::swap(m_message, copy.m_message);
  std::swap(m_detail, copy.m_detail);
  std::swap(m_inner, copy.m_inner);
  return *this;
}

CQnException::~CQnException() { ReleaseInner(); }

CQnException* CQnException::Clone() const { return new CQnException(*this); }

std::string CQnException::GetFullMessage() const {
  std::string text = m_message;
  for (CQnException const* inner = m_inner; inner != nullptr; inner = inner->m_inner) {
    text += '\n';
    text += inner->m_message;
  }
  return text;
}

CFailurePlace const* CQnException::GetPlace() const {
  return m_detail != nullptr && m_detail->hasPlace ? &m_detail->place : nullptr;
}

FailureKind CQnException::GetKind() const { return m_detail != nullptr ? m_detail->kind : FailureKind_Other; }

std::string CQnException::GetReport() const {
  CFailurePlace const* const place = GetPlace();
  std::string const& text = CauseOf(*this).m_message;
  return CFailure(GetKind(), FailureSeverity_Error, place != nullptr ? *place : CFailurePlace(), text).GetReport();
}

CQnException* CQnException::Share(CQnException* inner) noexcept {
  if (inner != nullptr) inner->m_outer.fetch_add(1, std::memory_order_relaxed);
  return inner;
}

// A loop instead of a recursion through the destructors, because the length of the chain depends on the document.
void CQnException::ReleaseInner() noexcept {
  CQnException* inner = std::exchange(m_inner, nullptr);
  while (inner != nullptr && inner->m_outer.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    CQnException* const next = std::exchange(inner->m_inner, nullptr);
    delete inner;
    inner = next;
  }
}

// The six derived classes differ only in their name, their base and the class that Clone() creates.
#define QN_DEFINE_EXCEPTION(Class, Base)                                                            \
  Class::Class() = default;                                                                         \
  Class::Class(std::string message) : Base(std::move(message)) {}                                   \
  Class::Class(std::string message, CQnException const& inner) : Base(std::move(message), inner) {} \
  Class::Class(CQnException const& other) : Base(other) {}                                          \
  Class::~Class() = default;                                                                        \
  CQnException* Class::Clone() const { return new Class(*this); }

QN_DEFINE_EXCEPTION(CQnOverFlowException, CQnException)
QN_DEFINE_EXCEPTION(CQnInvalidParamException, CQnException)
QN_DEFINE_EXCEPTION(CQnInvalidStateException, CQnException)
QN_DEFINE_EXCEPTION(CQnValidationException, CQnException)
QN_DEFINE_EXCEPTION(CQnInvalidNamespaceException, CQnValidationException)
QN_DEFINE_EXCEPTION(CQnInvalidValueException, CQnValidationException)

#undef QN_DEFINE_EXCEPTION

namespace {

// libc reads "I64" as a flag and a width, but formats with it mean a 64-bit argument.
std::string WithStandardModifiers(std::string format) {
  std::size_t at = 0;
  while ((at = format.find('%', at)) != std::string::npos) {
    at = format.find_first_not_of("#*-+ 0123456789.", at + 1);
    if (at == std::string::npos) break;
    if (format.compare(at, 3, "I64") == 0) format.replace(at, 3, "ll");
    ++at;  // past the conversion, or past the second of two percent signs
  }
  return format;
}

}  // namespace

std::string FormatV(char const* format, va_list args) {
  if (std::strstr(format, "I64") != nullptr) {
    std::string const standard = WithStandardModifiers(format);
    if (standard != format) return FormatV(standard.c_str(), args);
  }
  va_list measured;
  va_copy(measured, args);
  char buffer[512];
  int const length = std::vsnprintf(buffer, sizeof buffer, format, measured);
  va_end(measured);
  if (length < 0) return format;  // libc refuses an argument: building a failure text must not fail
  if (static_cast<std::size_t>(length) < sizeof buffer) return buffer;
  std::string text(static_cast<std::size_t>(length) + 1, 'X');
  std::vsnprintf(text.data(), text.size(), format, args);
  text.resize(std::strlen(text.c_str()));
  return text;
}

std::string FormatString(char const* format, ...) {
  va_list args;
  va_start(args, format);
  try {
    std::string text = FormatV(format, args);
    va_end(args);
    return text;
  } catch (...) {
    va_end(args);
    throw;
  }
}

}  // namespace Quillon9
