#include "xmlio/document_outline.h"

#include "base/bounded_text.h"

namespace Quillon9 {

void DocumentOutline::Start(std::string_view name, InputPosition const& at) {
  auto const self = static_cast<std::uint32_t>(m_elements.size());
  Element element{m_open, IdOf(name), 1, false, at, at};
  std::uint32_t& last = m_names[element.name].last;
  if (last != kNone && m_elements[last].parent == m_open) {
    m_elements[last].hasTwin = true;
    element.number = m_elements[last].number + 1;
  } else {
    m_changes.push_back({element.name, last});
  }
  last = self;
  m_elements.push_back(element);
  m_changeStarts.push_back(m_changes.size());
  m_open = self;
}

void DocumentOutline::End(InputPosition const& at) {
  if (m_open == kNone) return;
  for (; m_changes.size() > m_changeStarts.back(); m_changes.pop_back()) {
    m_names[m_changes.back().name].last = m_changes.back().last;
  }
  m_changeStarts.pop_back();
  m_elements[m_open].end = at;
  m_open = m_elements[m_open].parent;
}

std::string DocumentOutline::Shown(std::string const& name) {
  constexpr std::size_t kMost = 100;
  return BoundedText::CutEnd(name, kMost);
}

std::uint32_t DocumentOutline::IdOf(std::string_view name) {
  auto const [found, isNew] = m_ids.try_emplace(std::string(name), static_cast<std::uint32_t>(m_names.size()));
  if (isNew) m_names.push_back({Shown(found->first), kNone});
  return found->second;
}

// Of a long path, only both ends are put together: as much as is left of them when it is cut.
std::string DocumentOutline::PathOf(std::uint32_t element) const {
  std::vector<std::uint32_t> steps;
  for (; element != kNone; element = m_elements[element].parent) steps.push_back(element);
  std::string head;
  std::size_t left = steps.size();
  while (left > 0 && head.size() <= BoundedText::kMost) AppendStep(head, steps[--left]);
  std::size_t tail = 0;
  std::size_t tailSize = 0;
  for (; tail < left && tailSize <= BoundedText::kMost; ++tail)
    tailSize += m_names[m_elements[steps[tail]].name].shown.size();
  while (tail > 0) AppendStep(head, steps[--tail]);
  return head;
}

void DocumentOutline::AppendStep(std::string& path, std::uint32_t element) const {
  Element const& step = m_elements[element];
  path += '/';
  path += m_names[step.name].shown;
  if (step.number > 1 || step.hasTwin) path += '[' + std::to_string(step.number) + ']';
}

}  // namespace Quillon9
