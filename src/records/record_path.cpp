#include "records/record_path.h"

#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kMostSteps = 63;  // a state has a bit for each, and one for the start

[[noreturn]] void ThrowNoPath(std::string const& path, char const* reason) {
  throw CQnInvalidParamException(FormatString("The path [%s] is not a path of elements: %s", path.c_str(), reason));
}

}  // namespace

RecordPath::RecordPath(std::string const& text, CNamespaceAliasMap const& aliases) : m_text(text) {
  if (text.empty() || text[0] != '/') ThrowNoPath(text, "it must begin with \"/\"");
  std::size_t at = 0;
  while (at < text.size()) {
    ++at;
    bool const isAnywhere = at < text.size() && text[at] == '/';
    if (isAnywhere) ++at;
    std::size_t end = at;
    bool isUri = false;  // a namespace in braces has slashes
    for (; end < text.size() && (isUri || text[end] != '/'); ++end) {
      if (text[end] == '{') isUri = true;
      if (text[end] == '}') isUri = false;
    }
    if (isUri) ThrowNoPath(text, "a \"}\" is missing");
    Step step = StepOf(std::string_view(text).substr(at, end - at), text, aliases);
    step.isAnywhere = isAnywhere;
    if (m_steps.size() == kMostSteps) ThrowNoPath(text, "it has too many steps");
    m_steps.push_back(std::move(step));
    at = end;
  }
}

RecordPath::Step RecordPath::StepOf(std::string_view text, std::string const& path, CNamespaceAliasMap const& aliases) {
  Step step;
  if (text.empty()) ThrowNoPath(path, "a name is missing");
  step.isAnyName = text == "*";
  step.isAnyNamespace = true;
  if (step.isAnyName) return step;
  if (text[0] == '{') {
    std::size_t const end = text.find('}');
    step.name = {std::string(text.substr(1, end - 1)), std::string(text.substr(end + 1))};
    step.isAnyNamespace = false;
  } else if (std::size_t const colon = text.find(':'); colon != std::string_view::npos) {
    std::string const prefix(text.substr(0, colon));
    if (!aliases.DoesAliasExist(prefix.c_str())) ThrowNoPath(path, "a prefix stands for no namespace");
    step.name = {aliases.GetNamespaceFromAlias(prefix.c_str()), std::string(text.substr(colon + 1))};
    step.isAnyNamespace = false;
  } else {
    step.name.local = std::string(text);
  }
  if (step.name.local.empty()) ThrowNoPath(path, "a name is missing");
  if (step.name.local == "*") step.isAnyName = true;
  return step;
}

// Bit n of a state is set where the first n steps lead to the innermost element, or to an outer one if any number of
// elements may follow.
RecordPath::State RecordPath::Enter(State outside, ElementName const& name) const {
  State inside = 0;
  for (std::size_t i = 0; i < m_steps.size(); ++i) {
    if ((outside >> i & 1) == 0) continue;
    Step const& step = m_steps[i];
    if (step.isAnywhere) inside |= State{1} << i;
    bool const hasName = step.isAnyName || step.name.local == name.local;
    if (hasName && (step.isAnyNamespace || step.name.uri == name.uri)) inside |= State{1} << (i + 1);
  }
  return inside;
}

}  // namespace Quillon9
