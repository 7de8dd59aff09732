#include "quillon9/generated/enum_col.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

// ---- CEnumTexts

int CEnumTexts::FromText(std::string_view text) const {
  int const* const sorted = Sorted();
  int const* const found = std::lower_bound(
      sorted, sorted + m_count, text, [&](int number, std::string_view sought) { return m_texts[number] < sought; });
  if (found != sorted + m_count && m_texts[*found] == text) return *found;
  throw OfKind(FailureKind_BadValue,
               CQnInvalidValueException(FormatString("The value [%s] is not one of the enumeration [%s]",
                                                     std::string(text).c_str(), m_name)));
}

int const* CEnumTexts::Sorted() const {
  int const* sorted = m_sorted.load(std::memory_order_acquire);
  if (sorted != nullptr) return sorted;
  std::unique_ptr<int[]> made(new int[static_cast<std::size_t>(m_count)]);
  std::iota(made.get(), made.get() + m_count, 0);
  std::stable_sort(made.get(), made.get() + m_count,
                   [&](int a, int b) { return std::string_view(m_texts[a]) < m_texts[b]; });
  // Another thread may have been faster.
  if (m_sorted.compare_exchange_strong(sorted, made.get(), std::memory_order_acq_rel)) return made.release();
  return sorted;
}

// ---- CEnumCollection

namespace {

CWhitespaceUtils::WhitespaceRule RuleOf(CElementRow const& row) {
  return row.value != nullptr ? row.value->whitespace : CWhitespaceUtils::WhitespaceRule_Collapse;
}

}  // namespace

CEnumCollection::CEnumCollection(CElementRow const& row)
    : ValueCol(ItemType_i4, row.name, row.ns, row.minOccurs, row.maxOccurs, "", -1, -1, "", "", "", "", -1, RuleOf(row),
               nullptr),
      m_texts(row.value != nullptr ? row.value->enumeration : nullptr) {}

CEnumCollection::~CEnumCollection() = default;

void CEnumCollection::AddFromString(std::string text) {
  InsertNumber(GetCount(), m_texts->FromText(CWhitespaceUtils::ApplyRule(m_whitespaceRule, text)));
}

void CEnumCollection::InsertNumber(int index, int number) {
  Insert(index, number, [this](int value) {
    if (m_texts->ToText(value) != nullptr) return;
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(
                     FormatString("The number %d is not one of the enumeration [%s]", value, m_texts->GetName())));
  });
}

void CEnumCollection::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const& ctx,
                                bool) const {
  ValidateCount(ctx);
  std::string const ns = GetNamespace();
  for (int const number : *this) {
    writer->WriteStartElement(GetElementName(), ns);
    writer->WriteString(m_texts->ToText(number), ItemType_string);
    writer->WriteEndElement();
  }
}

}  // namespace Quillon9
