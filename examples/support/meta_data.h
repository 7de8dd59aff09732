#pragma once

#include <atomic>

#include "quillon9/quillon9.h"

namespace Support {

/// The record and the two tables of one class, as generated code keeps them. The first caller builds them, under the
/// lock that the library keeps for this. They are destroyed at the end of the process, when no object is left.
class CMetaData {
 public:
  using Builder = void (*)(CMetaData&);

  constexpr explicit CMetaData(Builder build) : m_build(build) {}
  ~CMetaData() { Clean(); }
  CMetaData(CMetaData const&) = delete;
  CMetaData& operator=(CMetaData const&) = delete;

  CMetaData const& Get() {
    if (!m_complete.load(std::memory_order_acquire)) BuildOnce();
    return *this;
  }

  Quillon9Data::CParentElementInfo* m_classInfo = nullptr;
  Quillon9Data::CElementInfo** m_elements = nullptr;
  Quillon9Data::CAttributeInfo** m_attributes = nullptr;

 private:
  void BuildOnce() {
    CQNCriticalSectionLock const lock(Quillon9::CXmlGeneratedClass::m_csInit);
    if (m_complete.load(std::memory_order_relaxed)) return;  // another thread was faster
    Clean();                                                 // remains of an attempt that ran out of memory
    m_build(*this);
    m_complete.store(true, std::memory_order_release);
  }
  void Clean() { Quillon9::CXmlGeneratedClass::CleanMetaData(m_classInfo, m_elements, m_attributes); }

  Builder m_build;
  std::atomic<bool> m_complete{false};
};

}  // namespace Support
