#include "descriptors/reading_allowance.h"

#include <algorithm>
#include <vector>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kFewMembers = 8;

std::size_t TreeSize(CXmlElement const& root) {
  std::size_t size = 0;
  std::vector<CXmlElement const*> open = {&root};
  while (!open.empty()) {
    CXmlElement const& element = *open.back();
    open.pop_back();
    size += ReadingAllowance::SizeOf(element);
    for (CXmlElement const* child = element.GetFirstElement(); child != nullptr;
         child = child->GetNextSiblingElement()) {
      open.push_back(child);
    }
  }
  return size;
}

}  // namespace

std::size_t ReadingAllowance::SizeOf(CXmlElement const& element) {
  std::size_t size = 1;
  for (auto const* attribute = element.GetFirstAttribute(); attribute != nullptr;
       attribute = attribute->GetNextAttribute()) {
    size += 1 + attribute->GetValueView().size() / 32;
  }
  for (CXmlElement const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    size += 1 + child->GetTextView().size() / 32;
  }
  return size;
}

// The size of the tree is determined only when a read has turned out to be costly, which is rare.
void ReadingAllowance::Extend() {
  if (m_size == 0) m_size = TreeSize(m_root);
  std::size_t const once = std::max(m_members, kFewMembers) * m_size;  // every member is tried on everything
  m_patience = t_base + once;
  m_limit = 4 * t_base + t_times * once;
  if (m_spent <= m_limit) return;
  throw OfKind(FailureKind_Limit,
               CQnException(FormatString("Reading the element [%s] takes too many attempts at groups without a tag",
                                         m_root.GetLocalName().c_str())));
}

}  // namespace Quillon9
