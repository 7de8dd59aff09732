#include <string_view>

#include "code/write.h"

namespace Quillon9Generator::Code {

namespace {

/// \p path as it stands in a rule. Make and ninja read the same escapes of blanks, `#` and `$`.
std::string EscapedPath(std::string_view path) {
  std::string result;
  for (std::size_t i = 0; i < path.size(); ++i) {
    char const c = path[i];
    if (c == ' ' || c == '\t') {
      // Backslashes in front of a blank would escape one another.
      for (std::size_t back = i; back != 0 && path[back - 1] == '\\'; --back) result += '\\';
      result += '\\';
    }
    if (c == '#') result += '\\';
    if (c == '$') result += '$';
    result += c;
  }
  return result;
}

}  // namespace

std::string DependencyFile(std::vector<std::string> const& targets, std::vector<std::string> const& sources) {
  std::string text;
  for (std::string const& target : targets) text += (text.empty() ? "" : " ") + EscapedPath(target);
  text += ':';
  for (std::string const& source : sources) text += " \\\n  " + EscapedPath(source);
  text += '\n';
  for (std::string const& source : sources) text += '\n' + EscapedPath(source) + ":\n";
  return text;
}

}  // namespace Quillon9Generator::Code
