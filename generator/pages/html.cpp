#include "pages/html.h"

#include <algorithm>

namespace Quillon9Generator::Pages {

namespace {

// Nothing is loaded or run, even if a text of a schema should get into the page without its escapes.
constexpr char kHead[] = R"(<!DOCTYPE html>
<html>
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<style>
:root { color-scheme: light dark; }
body { font-family: sans-serif; line-height: 1.4; max-width: 70em; margin: 1em auto; padding: 0 1em; }
section { border-top: 1px solid #8888; margin-top: 2em; }
table { border-collapse: collapse; margin: 1em 0; }
th, td { border: 1px solid #8888; padding: 0.2em 0.6em; text-align: left; vertical-align: top; }
p { margin: 0.4em 0; }
td p, td ul { margin: 0; }
dt { float: left; clear: left; width: 9em; color: #888; }
dd { margin-left: 9em; }
ul { padding-left: 1.2em; }
.kind, .place { color: #888; font-weight: normal; }
.contents { columns: 18em; list-style: none; padding: 0; }
</style>
)";

bool IsBlankLine(std::string_view line) { return line.find_first_not_of(" \t\r") == line.npos; }

}  // namespace

std::string Escaped(std::string_view text) {
  std::string result;
  for (char const c : text) {
    switch (c) {
      case '&': result += "&amp;"; break;
      case '<': result += "&lt;"; break;
      case '>': result += "&gt;"; break;
      case '"': result += "&quot;"; break;
      case '\'': result += "&#39;"; break;
      default: result += c;
    }
  }
  return result;
}

std::string Fragment(std::string_view name) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string result;
  for (char const c : name) {
    bool const isPlain =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == '_';
    if (isPlain) {
      result += c;
      continue;
    }
    auto const octet = static_cast<unsigned char>(c);
    result += {'%', kDigits[octet >> 4], kDigits[octet & 15]};
  }
  return result;
}

std::string CodeText(std::string_view text) { return "<code>" + Escaped(text) + "</code>"; }

std::string Paragraphs(std::string_view documentation) {
  std::string result;
  bool isOpen = false;
  while (!documentation.empty()) {
    std::size_t const end = std::min(documentation.find('\n'), documentation.size());
    std::string_view const line = documentation.substr(0, end);
    documentation.remove_prefix(std::min(end + 1, documentation.size()));
    if (IsBlankLine(line)) {
      if (isOpen) result += "</p>\n";
      isOpen = false;
      continue;
    }
    result += isOpen ? "\n" : "<p>";
    result += Escaped(line);
    isOpen = true;
  }
  return isOpen ? result + "</p>\n" : result;
}

std::string Document(std::string_view title, std::string_view heading, std::string_view body) {
  std::string page = kHead;
  page += "<title>" + Escaped(title) + "</title>\n</head>\n<body>\n<h1>";
  page.append(heading).append("</h1>\n").append(body);
  return page + "</body>\n</html>\n";
}

}  // namespace Quillon9Generator::Pages
