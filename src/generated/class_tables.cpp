#include "quillon9/generated/class_tables.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "base/failure_detail.h"
#include "binding/failure_report.h"
#include "descriptors/generic_reading.h"
#include "generated/built_class.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/object_base.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

BuiltClass const& CClassTables::Build() const {
  auto made = std::make_unique<BuiltClass const>(*this);
  BuiltClass const* held = nullptr;
  // Another thread may have been faster.
  if (m_built.compare_exchange_strong(held, made.get(), std::memory_order_acq_rel)) return *made.release();
  return *held;
}

CSmartPtr<CXmlObjectBase> CClassTables::CreateObject(char const* elementName) const {
  if (m_create != nullptr) return m_create(*this, elementName);
  throw CQnInvalidStateException(FormatString("The type [%s] is abstract", m_row->typeName));
}

namespace {

/// What an xsi:type names.
class TypeName {
 public:
  TypeName(CXmlElement const& element, std::string_view value) : m_element(element) {
    constexpr std::string_view kBlanks = " \t\n\r";
    std::size_t const start = std::min(value.find_first_not_of(kBlanks), value.size());
    value = value.substr(start, value.find_last_not_of(kBlanks) + 1 - start);
    std::size_t const colon = value.find(':');
    if (colon != std::string_view::npos) m_prefix = value.substr(0, colon);
    m_local = value.substr(colon + 1);  // all of it where there is no colon
    if (element.GetDocument() != nullptr) element.GetDocument()->LookupNamespace(element, m_prefix, m_ns);
  }

  /// The type among \p declared and those derived from it; null for none.
  CClassTables const* Find(CClassTables const& declared) const {
    CClassTables const* const exact = FindIn(declared, &m_ns);
    if (exact != nullptr) return exact;
    if (!m_prefix.empty() && m_ns.empty()) return nullptr;  // not declared anywhere
    CClassTables const* const likely = FindIn(declared, &m_element.GetNamespaceURI());
    return likely != nullptr ? likely : FindIn(declared, nullptr);
  }

  std::string Text() const { return m_prefix.empty() ? m_local : m_prefix + ":" + m_local; }

 private:
  /// In any namespace for null, but then only a single one.
  CClassTables const* FindIn(CClassTables const& declared, std::string const* ns) const {
    CClassTables const* found = nullptr;
    int count = 0;
    auto const look = [&](CClassTables const& tables) {
      CClassRow const& row = tables.GetRow();
      if (row.typeName != m_local || (ns != nullptr && row.typeNamespace != *ns)) return;
      found = &tables;
      ++count;
    };
    look(declared);
    CClassRow const& row = declared.GetRow();
    for (int i = 0; i < row.derivedCount; ++i) look(*row.derived[i]);
    return count == 1 || ns != nullptr ? found : nullptr;
  }

  CXmlElement const& m_element;
  std::string m_prefix;
  std::string m_local;
  std::string m_ns;
};

}  // namespace

bool CClassTables::Blocks(CClassTables const& derived, unsigned block) const {
  block |= m_row->block;
  for (CClassTables const* each = &derived; block != 0 && each != nullptr && each != this; each = each->m_row->base) {
    if ((each->m_row->derivation & block) != 0) return true;
  }
  return false;
}

CClassTables const& CClassTables::TypeOf(CXmlElement const& element, unsigned block) const {
  CXmlAttribute const* const attribute = element.GetFirstAttribute() != nullptr ? FindTypeAttribute(element) : nullptr;
  CClassTables const* found = this;
  bool const isSimple = *m_row->typeName == '\0' && m_row->derivedCount == 0;  // a simple type, of which there is one
  if (attribute != nullptr && !isSimple) {
    TypeName const name(element, attribute->GetValueView());
    found = name.Find(*this);
    if (found == nullptr) {
      throw FailureReport::Noted(
          {&element, attribute},
          OfKind(FailureKind_Factory, CQnValidationException(FormatString(
                                          "The type [%s] of the element [%s] is not derived from [%s]",
                                          name.Text().c_str(), element.GetLocalName().c_str(), m_row->typeName))));
    }
  }
  if (Blocks(*found, block)) {
    throw FailureReport::Noted(
        {&element, attribute},
        OfKind(FailureKind_Factory,
               CQnValidationException(FormatString("The type [%s] of the element [%s] is blocked",
                                                   found->m_row->typeName, element.GetLocalName().c_str()))));
  }
  if (!found->IsAbstract()) return *found;
  throw FailureReport::Noted({&element, attribute},
                             OfKind(FailureKind_Factory, CQnValidationException(FormatString(
                                                             "The type [%s] of the element [%s] is abstract",
                                                             found->m_row->typeName, element.GetLocalName().c_str()))));
}

}  // namespace Quillon9
