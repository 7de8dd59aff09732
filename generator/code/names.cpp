#include "code/names.h"

#include <algorithm>

namespace Quillon9Generator::Code {

namespace {

constexpr std::string_view kSeparator = "::";

std::string LastPart(std::string const& name) {
  std::size_t const separator = name.rfind(kSeparator);
  return separator == name.npos ? name : name.substr(separator + kSeparator.size());
}

/// Whether \p cls itself, without the classes around it, makes \p name mean something in its scope.
bool Declares(Plan::Class const& cls, std::string const& name) {
  auto const hasName = [&name](Plan::Class const* nested) { return nested->shortName == name; };
  if (cls.shortName == name || std::any_of(cls.nested.begin(), cls.nested.end(), hasName)) return true;
  for (Plan::Enumeration const* each : cls.nestedEnumerations) {
    if (ShortName(*each) == name) return true;
  }
  for (Plan::Choice const& choice : cls.choices) {
    if ("E" + choice.cppName == name) return true;
  }
  return false;
}

/// Whether a class of \p scope, or a base of one, hides what \p name means in the namespace.
bool IsHidden(std::string const& name, Scope const& where) {
  for (Plan::Class const* scope = where.cls; scope != nullptr; scope = scope->owner) {
    for (Plan::Class const* cls = scope; cls != nullptr; cls = cls->base) {
      // The name of a class that is not nested means the same in the class as in its namespace.
      if (cls->owner == nullptr && cls->shortName == name) return cls->cppNamespace != where.ns->cppName;
      if (Declares(*cls, name)) return true;
    }
  }
  return false;
}

template <class Target>
std::string NameIn(Target const& target, Scope const& scope) {
  std::string const& cppName = target.cppName;
  Plan::Class const* const owner = target.owner;
  std::string const separator(kSeparator);
  // Parts of the names of namespaces may hide one another, so only the whole name from the outside is certain.
  std::string const whole = separator + target.cppNamespace + separator + cppName;
  if (target.cppNamespace != scope.ns->cppName) return whole;
  if (owner != nullptr && owner == scope.cls) return LastPart(cppName);
  std::string const first = cppName.substr(0, cppName.find(kSeparator));
  return IsHidden(first, scope) ? whole : cppName;
}

}  // namespace

std::string NameOf(Plan::Class const& target, Scope const& scope) { return NameIn(target, scope); }

std::string NameOf(Plan::Enumeration const& target, Scope const& scope) { return NameIn(target, scope); }

std::string ShortName(Plan::Enumeration const& enumeration) { return LastPart(enumeration.cppName); }

std::string TablesOf(Plan::Class const& cls, Plan::Namespace const& ns) {
  return NameOf(cls, {&ns, nullptr}) + "::s_class";
}

std::string Identifier(Plan::Class const& cls) {
  std::string const prefix = cls.owner != nullptr ? Identifier(*cls.owner) + '_' : "";
  return prefix + cls.shortName.substr(1);
}

}  // namespace Quillon9Generator::Code
