#pragma once

#include <random>
#include <string>
#include <vector>

#include "document_comparison.h"

/// Documents of a newer schema than the classes know, and a comparison that sees comments.
namespace Quillon9::Testing {

/// Inserts unknown attributes, elements, comments and processing instructions into a document at random. Only elements
/// with children get any: an object knows them, while a value may be just a text.
class Newer {
 public:
  explicit Newer(unsigned seed) : m_random(seed) {}

  std::string Make(std::string const& document) {
    Split(document);
    std::string made = Chance(4) ? "<!--head-->\n<?style sheet?>\n" : "";
    std::vector<bool> open = {false};
    for (std::size_t i = 0; i < m_tokens.size(); ++i) {
      std::string const& token = m_tokens[i];
      bool const isTag = token[0] == '<';
      if (!isTag && open.back() && Chance(6)) {
        std::size_t const part = Below(token.size());
        made += token.substr(0, part) + Anything() + token.substr(part);
        continue;
      }
      if (isTag && open.back() && Chance(5)) made += Anything();
      if (m_hasChildren[i] && Chance(8)) {
        made += token.substr(0, token.size() - 1) + " newer='1' n:newer='n:x' xmlns:n='urn:newer'>";
      } else {
        made += token;
      }
      if (!isTag || token[token.size() - 2] == '/') continue;
      if (token[1] == '/') {
        open.pop_back();
      } else {
        open.push_back(m_hasChildren[i]);
      }
    }
    return made + (Chance(4) ? "\n<!--tail-->" : "");
  }
  bool Chance(unsigned of) { return Below(of) == 0; }
  std::size_t Below(std::size_t count) { return count == 0 ? 0 : m_random() % count; }

 private:
  void Split(std::string const& document) {
    m_tokens.clear();
    for (std::size_t at = 0; at < document.size();) {
      std::size_t const end = document[at] == '<' ? document.find('>', at) + 1 : document.find('<', at);
      m_tokens.push_back(document.substr(at, end - at));
      at = end;
    }
    m_hasChildren.assign(m_tokens.size(), false);
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < m_tokens.size(); ++i) {
      std::string const& token = m_tokens[i];
      if (token[0] != '<') continue;
      if (token[1] == '/') {
        open.pop_back();
        continue;
      }
      if (!open.empty()) m_hasChildren[open.back()] = true;
      if (token[token.size() - 2] != '/') open.push_back(i);
    }
  }
  std::string Anything() {
    switch (Below(6)) {
      case 0: return "<!-- a - b\n<&> -->";
      case 1: return "<?do  this\nnow?>";
      case 2: return "<!----><?t?>";
      case 3: return "<zz a='1'>text</zz>" + (Chance(2) ? Anything() : "");
      case 4:
        return "<n:new xmlns:n='urn:newer'>" + (Chance(2) ? Anything() : "") + "a<n:x k='n:v'/>b<!--in-->c</n:new>";
      default: return "<zz>\n  " + Anything() + "\n  <y/>" + (Chance(2) ? Anything() : "") + "</zz>";
    }
  }

  std::mt19937 m_random;
  std::vector<std::string> m_tokens;
  std::vector<bool> m_hasChildren;  // of the element whose start tag each token is
};

/// \p document with an element in place of each comment and processing instruction, inside one around all.
inline std::string WithVisibleMarkup(std::string document) {
  if (document.rfind("<?xml ", 0) == 0) document.erase(0, document.find("?>") + 2);
  auto const show = [&](std::string const& begin, std::string const& end, std::string const& name) {
    for (auto at = document.find(begin); at != document.npos; at = document.find(begin, at)) {
      auto const stop = document.find(end, at);
      std::string const text = document.substr(at + begin.size(), stop - at - begin.size());
      document.replace(at, stop + end.size() - at, "<" + name + " xmlns=''><![CDATA[" + text + "]]></" + name + ">");
    }
  };
  show("<!--", "-->", "comment-");
  show("<?", "?>", "instruction-");
  return "<document->" + document + "</document->";
}

/// Where the documents differ first, comments and processing instructions included; empty if they do not.
inline std::string VisibleDifference(std::string const& first, std::string const& second) {
  std::string const one = WithVisibleMarkup(first);
  std::string const other = WithVisibleMarkup(second);
  return DifferenceBetween(XmlText(one), XmlText(other));
}

}  // namespace Quillon9::Testing
