#pragma once

#include <type_traits>

/// Owns one counted reference to an object that has `AddRef` and `Release` (every CXmlObjectBase). It is the only owner
/// type of bound objects: a new object has count 0 and becomes owned when the first CSmartPtr takes it.
///
/// A CSmartPtr belongs to one thread at a time; two of them on one object may live in two threads, since the count
/// itself is atomic. Nothing here throws.
template <class T>
class CSmartPtr {
 public:
  CSmartPtr() = default;
  /// Take a reference to \p object, which may be null.
  CSmartPtr(T* object) : m_object(object) { AddReference(m_object); }
  /// Share what \p other owns, or take it over and leave \p other null.
  ///@{
  CSmartPtr(CSmartPtr const& other) : CSmartPtr(other.m_object) {}
  CSmartPtr(CSmartPtr&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }
  ///@}
  /// Share what a pointer to a derived class owns.
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  CSmartPtr(CSmartPtr<U> const& other) : CSmartPtr(static_cast<T*>(other.Get())) {}
  ~CSmartPtr() { ReleaseReference(m_object); }

  /// Take a reference to the new object and release the old one, which may delete it. Assigning the object that is
  /// already held changes nothing.
  ///@{
  CSmartPtr& operator=(T* object) {
    AddReference(object);  // first, so that assigning the held object to itself never drops the count to 0
    T* old = m_object;
    m_object = object;  // before the old object is released: its destructor may look at this pointer
    ReleaseReference(old);
    return *this;
  }
  CSmartPtr& operator=(CSmartPtr const& other) { return *this = other.m_object; }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  CSmartPtr& operator=(CSmartPtr<U> const& other) {
    return *this = static_cast<T*>(other.Get());
  }
  CSmartPtr& operator=(CSmartPtr&& other) noexcept {
    if (this != &other) {
      T* old = m_object;
      m_object = other.m_object;
      other.m_object = nullptr;
      ReleaseReference(old);
    }
    return *this;
  }
  ///@}

  /// The object, which this pointer still owns; null when there is none.
  ///@{
  T* Get() const { return m_object; }
  T* operator->() const { return m_object; }
  T& operator*() const { return *m_object; }
  operator T*() const { return m_object; }
  ///@}

 private:
  static void AddReference(T* object) {
    if (object != nullptr) object->AddRef();
  }
  static void ReleaseReference(T* object) {
    if (object != nullptr) object->Release();
  }

  T* m_object = nullptr;
};
