#include "schema/xpath.h"

#include <algorithm>

#include "schema/lexical.h"

namespace Quillon9Generator::Schema {

namespace {

class PathReader {
 public:
  PathReader(std::string_view text, bool mayEndInAttribute, Scope const& scope)
      : m_rest(text), m_mayEndInAttribute(mayEndInAttribute), m_scope(scope) {}

  std::string Read() {
    do {
      if (!ReadPath()) return m_fault;
    } while (Take("|"));
    return m_rest.empty() ? std::string() : "unexpected \"" + std::string(m_rest) + "\"";
  }

 private:
  bool Take(std::string_view token) {
    SkipBlanks();
    if (m_rest.substr(0, token.size()) != token) return false;
    m_rest.remove_prefix(token.size());
    SkipBlanks();
    return true;
  }

  void SkipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t\r\n"), m_rest.size())); }

  bool ReadPath() {
    bool isFirst = true;
    for (;;) {
      if (Take("@") || TakeAxis("attribute")) return ReadAttribute();
      if (Take(".")) {
        if (isFirst && Take("//")) {
          isFirst = false;
          continue;
        }
      } else {
        TakeAxis("child");
        if (!ReadName()) return false;
      }
      isFirst = false;
      if (m_rest.substr(0, 2) == "//") return Fail("\"//\" can only follow a dot at the start");
      if (!Take("/")) return true;
    }
  }

  bool ReadAttribute() {
    if (!m_mayEndInAttribute) return Fail("a selector cannot select attributes");
    return ReadName();
  }

  /// Take \p axis with its colons.
  bool TakeAxis(std::string_view axis) {
    SkipBlanks();
    std::string_view const before = m_rest;
    if (m_rest.substr(0, axis.size()) == axis) {
      m_rest.remove_prefix(axis.size());
      if (Take("::")) return true;
    }
    m_rest = before;
    return false;
  }

  bool ReadName() {
    SkipBlanks();
    if (Take("*")) return true;
    std::string_view const prefix = TakeNCName();
    if (prefix.empty()) return Fail(m_rest.empty() ? "a name is missing at the end" : "no name before " + Rest());
    if (m_rest.substr(0, 1) != ":") {
      SkipBlanks();
      return true;
    }
    m_rest.remove_prefix(1);
    if (!m_scope.Find(prefix)) return Fail("the prefix \"" + std::string(prefix) + "\" is not declared");
    if (m_rest.substr(0, 1) == "*") {
      m_rest.remove_prefix(1);
    } else if (TakeNCName().empty()) {
      return Fail("a name is missing after the prefix \"" + std::string(prefix) + "\"");
    }
    SkipBlanks();
    return true;
  }

  std::string_view TakeNCName() {
    std::string_view rest = m_rest;
    std::string_view next = rest;
    if (rest.empty() || !IsNameStart(TakeCharacter(next)) || rest.front() == ':') return {};
    for (rest = next; !rest.empty() && rest.front() != ':' && IsNameCharacter(TakeCharacter(next)); rest = next) {
    }
    std::string_view const name = m_rest.substr(0, m_rest.size() - rest.size());
    m_rest = rest;
    return name;
  }

  std::string Rest() const { return "\"" + std::string(m_rest) + "\""; }

  bool Fail(std::string fault) {
    m_fault = std::move(fault);
    return false;
  }

  std::string_view m_rest;
  bool const m_mayEndInAttribute;
  Scope const& m_scope;
  std::string m_fault;
};

}  // namespace

std::string FaultOfPath(std::string_view path, bool mayEndInAttribute, Scope const& scope) {
  return PathReader(Trimmed(path), mayEndInAttribute, scope).Read();
}

}  // namespace Quillon9Generator::Schema
