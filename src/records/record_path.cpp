#include "records/record_path.h"

#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

[[noreturn]] void ThrowNoPath(std::string const& path, char const* reason) {
  throw CQnInvalidParamException(FormatString("The path [%s] is not a path of elements: %s", path.c_str(), reason));
}

}  // namespace

RecordPath::RecordPath(std::string const& text, CNamespaceAliasMap const& aliases) {
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

bool RecordPath::Matches(std::size_t steps, std::vector<ElementName> const& open, std::size_t count) const {
  if (steps == 0) return count == 0;
  if (count < steps) return false;
  Step const& step = m_steps[steps - 1];
  ElementName const& name = open[count - 1];
  if (!step.isAnyName && step.name.local != name.local) return false;
  if (!step.isAnyNamespace && step.name.uri != name.uri) return false;
  if (!step.isAnywhere) return Matches(steps - 1, open, count - 1);
  for (std::size_t before = count; before-- > 0;) {
    if (Matches(steps - 1, open, before)) return true;
  }
  return false;
}

}  // namespace Quillon9
