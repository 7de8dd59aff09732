// What can be known to be wrong with the tables of a class before a document shows it. Only what cannot be meant is
// reported: debug builds refuse to work with a class that does not pass.

#include <cxxabi.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <typeindex>
#include <typeinfo>

#include "descriptors/descriptor_access.h"
#include "descriptors/table_check.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"
#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/descriptors/generic_content.h"

namespace Quillon9Data {

using namespace Quillon9;

namespace {

using Access = DescriptorAccess;

constexpr int kMaxEntries = 65'536;
constexpr auto kUnknownGroup = static_cast<XmlElementGroupType>(-1);

template <class... Members>
struct Types {};

template <class Member, class Entry, class Look>
bool LookAtOne(Entry const& entry, Look const& look) {
  if (typeid(entry) != typeid(Member)) return false;
  look(static_cast<Member const&>(entry));
  return true;
}

/// Whether \p entry is of exactly one of these classes; if so, \p look gets it as that class. A class derived from one
/// of them may do anything.
template <class... Members, class Entry, class Look>
bool LookAt(Types<Members...>, Entry const& entry, Look const& look) {
  return (LookAtOne<Members>(entry, look) || ...);
}

bool IsValueKind(ItemType type) {
  switch (type) {
// clang-format off
#define QN_VALUE_KIND(number, stem, Access, Held) case ItemType_##stem: return true;
#include "values/item_types.def"
      // clang-format on
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  return false;
}

bool IsRule(CWhitespaceUtils::WhitespaceRule rule) {
  switch (rule) {
    case CWhitespaceUtils::WhitespaceRule_None:
    case CWhitespaceUtils::WhitespaceRule_Preserve:
    case CWhitespaceUtils::WhitespaceRule_Replace:
    case CWhitespaceUtils::WhitespaceRule_Collapse: return true;
  }
  return false;
}

/// False if no parser takes \p name. The text is in the code page of the locale, where a byte from 0x40 on may belong to
/// any character, so these are not judged.
bool MayBeName(std::string_view name) {
  auto const isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (isDigit(name[0]) || name[0] == '-' || name[0] == '.') return false;
  for (char const c : name) {
    bool const isJudged = static_cast<unsigned char>(c) < 0x40;
    if (isJudged && !isDigit(c) && c != '-' && c != '.' && c != ':') return false;
  }
  return true;
}

bool IsObject(QnVariant const& value) {
  return value.GetItemType() == ItemType_xmlObject || value.GetItemType() == ItemType_xmlCollection;
}

/// The object or collection in \p value, which keeps it; null if it is of another class.
template <class Class>
Class const* HeldAs(QnVariant const& value) {
  return IsObject(value) ? dynamic_cast<Class const*>(value.LookAtXmlObject()) : nullptr;
}

}  // namespace

/// One check of the tables of one class.
class TableCheck {
 public:
  explicit TableCheck(CXmlGeneratedClass const& object) : m_object(object) {}

  /// Return the findings, each after a line feed; empty if there are none.
  std::string Run();

 private:
  /// The entry that has an index first.
  struct Use {
    std::string where;
    bool isChosen;    // a member of a choice
    bool isOptional;  // the class may ignore the index
  };

  void Find(std::string const& text) { m_findings += "\n" + m_where + ": " + text; }
  /// The number of entries of \p table; -1, and a finding, where the table cannot be walked.
  template <class Entry>
  int Count(char const* name, Entry* const* table);
  void CheckRecord(CParentElementInfo const& info);
  void CheckElements(XmlElementGroupType group, CElementInfo* const* table);
  void CheckAttributes(CAttributeInfo* const* table);
  void CheckGroup(XmlElementGroupType group, CElementInfo const& entry);
  // Whether the entry is of a class that this function checks.
  bool CheckMandatory(CElementInfo const& entry, bool isLast);  // the program cannot ignore the index of such a member
  bool CheckOptional(CElementInfo const& entry);
  bool CheckNamedAttribute(CAttributeInfo const& entry);
  bool CheckWildcard(CAttributeInfo const& entry, bool isLast);

  // What the members have in common, by content kind.
  template <class Member>
  void CheckValue(Member const& member);
  template <class Member>
  void CheckEnumerator(Member const& member);
  template <class Member>
  void CheckObject(Member const& member);
  template <class Member>
  void CheckMadeObject(Member const& member);
  template <class Member>
  void CheckAbstractObject(Member const& member);
  void CheckCollection(CElementInfo const& member);
  void CheckUntypedCollection(CElementInfo const& member, bool isLast);

  void CheckName(std::string const& name, std::string const& ns);
  void CheckKind(ItemType type, CWhitespaceUtils::WhitespaceRule rule);
  void CheckFunction(bool isThere, char const* what);
  /// Report \p index if another entry has it and both cannot be meant.
  void CheckIndex(int index, bool isChosen, bool isOptional);
  /// Read a property of the object. False, and a finding, where that fails.
  bool Read(int index, QnVariant& value);
  /// Whether the property would be written.
  bool IsSet(int index);

  CXmlGeneratedClass const& m_object;
  std::string m_where;  // the entry that is looked at
  std::string m_findings;
  std::map<int, Use> m_uses;
};

std::string TableCheck::Run() {
  CParentElementInfo const* const info = m_object.GetClassInfo();
  m_where = "GetClassInfo()";
  if (info == nullptr) {
    Find("null");
  } else {
    CheckRecord(*info);
  }
  CheckElements(info != nullptr ? info->m_groupType : kUnknownGroup, m_object.GetClassElementInfo());
  CheckAttributes(m_object.GetClassAttributeInfo());
  m_where = "text property";
  if (info != nullptr && info->m_textPropertyIndex != -1) CheckIndex(info->m_textPropertyIndex, false, false);
  return m_findings;
}

void TableCheck::CheckRecord(CParentElementInfo const& info) {
  m_where = "group type";
  if (info.m_groupType < XmlElementGroupType_Sequence || info.m_groupType > XmlElementGroupType_All) {
    Find(FormatString("unknown number %d", static_cast<int>(info.m_groupType)));
  }
  m_where = FormatString("type name [%s]", info.m_typeName.c_str());
  if (info.m_typeAttributeWanted) CheckName(info.m_typeName, info.m_typeNamespace);  // otherwise it is not used
}

template <class Entry>
int TableCheck::Count(char const* name, Entry* const* table) {
  m_where = name;
  int count = 0;
  while (table != nullptr && count < kMaxEntries && table[count] != nullptr) ++count;
  if (table != nullptr && count < kMaxEntries) return count;
  Find(table == nullptr ? "null in place of a table" : "no null pointer closes the table");
  return -1;
}

void TableCheck::CheckElements(XmlElementGroupType group, CElementInfo* const* table) {
  int const count = Count("elements", table);
  for (int i = 0; i < count; ++i) {
    CElementInfo const& entry = *table[i];
    m_where = FormatString("elements[%d] [%s]", i, Access::Name(entry).c_str());
    CheckGroup(group, entry);
    bool const isMandatory = CheckMandatory(entry, i == count - 1);
    // What a class of the program does with its index is not known.
    if (!isMandatory && !CheckOptional(entry)) continue;
    CheckIndex(Access::PropertyIndex(entry), group == XmlElementGroupType_Choice, !isMandatory);
  }
}

void TableCheck::CheckAttributes(CAttributeInfo* const* table) {
  int const count = Count("attributes", table);
  for (int i = 0; i < count; ++i) {
    CAttributeInfo const& entry = *table[i];
    m_where = FormatString("attributes[%d] [%s]", i, Access::Name(entry).c_str());
    bool const isWildcard = CheckWildcard(entry, i == count - 1);
    if (!isWildcard && !CheckNamedAttribute(entry)) continue;
    CheckIndex(Access::PropertyIndex(entry), false, Access::IsOptional(entry) && !isWildcard);
  }
}

void TableCheck::CheckGroup(XmlElementGroupType group, CElementInfo const& entry) {
  bool const isSequence = dynamic_cast<CElementInfoSeq const*>(&entry) != nullptr;
  bool const isAll = dynamic_cast<CElementInfoAll const*>(&entry) != nullptr;
  bool const isChoice = dynamic_cast<CElementInfoChoice const*>(&entry) != nullptr;
  // A class may have members of its own, derived from none of the three; an all group takes its own only.
  if (group == XmlElementGroupType_Sequence && (isAll || isChoice)) Find("not a member of a sequence");
  if (group == XmlElementGroupType_Choice && (isAll || isSequence)) Find("not a member of a choice");
  if (group == XmlElementGroupType_All && !isAll) Find("not a member of an all group");
}

template <class Member>
void TableCheck::CheckValue(Member const& member) {
  CheckName(Access::Name(member), Access::Namespace(member));
  CheckKind(Access::ItemTypeOf(member), Access::WhitespaceRuleOf(member));
}

template <class Member>
void TableCheck::CheckEnumerator(Member const& member) {
  CheckName(Access::Name(member), Access::Namespace(member));
  CheckFunction(Access::ToText(member) != nullptr && Access::FromText(member) != nullptr, "text function");
}

template <class Member>
void TableCheck::CheckObject(Member const& member) {
  // The name of a group appears in failures only.
  if (Access::ChildType(member) == XmlElementType_Element) CheckName(Access::Name(member), Access::Namespace(member));
}

template <class Member>
void TableCheck::CheckMadeObject(Member const& member) {
  CheckObject(member);
  CheckFunction(Access::ClassFactoryOf(member) != nullptr, "class factory");
}

template <class Member>
void TableCheck::CheckAbstractObject(Member const& member) {
  CheckName(Access::Name(member), Access::Namespace(member));
  CheckFunction(Access::ElementFactoryOf(member) != nullptr, "element factory");
}

void TableCheck::CheckCollection(CElementInfo const& member) {
  QnVariant value;
  if (!Read(Access::PropertyIndex(member), value) || HeldAs<CXmlCollectionBase>(value) != nullptr) return;
  Find(FormatString("the property %d gives no collection", Access::PropertyIndex(member)));
}

void TableCheck::CheckUntypedCollection(CElementInfo const& member, bool isLast) {
  CheckName(Access::Name(member), Access::Namespace(member));
  QnVariant value;
  if (!Read(Access::PropertyIndex(member), value)) return;
  auto const* const elements = HeldAs<CElementCol>(value);
  bool const takesAll = Access::Name(member) == "AnyElement";
  if (takesAll ? HeldAs<CXmlCollectionBase>(value) == nullptr : elements == nullptr) {
    Find(FormatString("the property %d gives no CElementCol", Access::PropertyIndex(member)));
  }
  // A class derived from CElementCol may leave something to the next entry.
  if (takesAll && !isLast && elements != nullptr && typeid(*elements) == typeid(CElementCol)) {
    Find("a repeated wildcard takes all that is left, so it must be the last entry");
  }
}

bool TableCheck::CheckMandatory(CElementInfo const& entry, bool isLast) {
  auto const value = [this](auto const& member) { CheckValue(member); };
  auto const enumerator = [this](auto const& member) { CheckEnumerator(member); };
  auto const object = [this](auto const& member) { CheckObject(member); };
  auto const abstractObject = [this](auto const& member) { CheckAbstractObject(member); };
  auto const untyped = [this](auto const& member) { CheckName(Access::Name(member), Access::Namespace(member)); };
  auto const collection = [this](auto const& member) { CheckCollection(member); };
  auto const untypedCollection = [&](auto const& member) { CheckUntypedCollection(member, isLast); };
  auto const nothing = [](auto const&) {};  // this class is never read, so it uses neither name nor factory
  return LookAt(Types<CElementInfoSeqPrimMnd, CElementInfoAllPrimMnd>(), entry, value) ||
         LookAt(Types<CElementInfoSeqEnumMnd, CElementInfoAllEnumMnd>(), entry, enumerator) ||
         LookAt(Types<CElementInfoSeqClsMnd, CElementInfoAllClsMnd>(), entry, object) ||
         LookAt(Types<CElementInfoSeqAbsClsMnd>(), entry, abstractObject) ||
         LookAt(Types<CElementInfoAllAbsClsMnd>(), entry, nothing) ||
         LookAt(Types<CElementInfoSeqUntpdMnd, CElementInfoAllUntpdMnd>(), entry, untyped) ||
         LookAt(Types<CElementInfoSeqUntpdCol, CElementInfoChoiceUntpdCol>(), entry, untypedCollection) ||
         LookAt(Types<CElementInfoSeqCol, CElementInfoSeqPrimCol, CElementInfoSeqEnumCol, CElementInfoSeqClsCol,
                      CElementInfoSeqAbsClsCol, CElementInfoChoiceCol, CElementInfoChoicePrimCol,
                      CElementInfoChoiceEnumCol, CElementInfoChoiceClsCol, CElementInfoChoiceAbsClsCol>(),
                entry, collection);
}

bool TableCheck::CheckOptional(CElementInfo const& entry) {
  auto const value = [this](auto const& member) { CheckValue(member); };
  auto const enumerator = [this](auto const& member) { CheckEnumerator(member); };
  auto const object = [this](auto const& member) { CheckMadeObject(member); };
  auto const abstractObject = [this](auto const& member) { CheckAbstractObject(member); };
  auto const untyped = [this](auto const& member) { CheckName(Access::Name(member), Access::Namespace(member)); };
  auto const nothing = [](auto const&) {};  // as above
  return LookAt(Types<CElementInfoSeqPrimOpt, CElementInfoAllPrimOpt, CElementInfoChoicePrimOpt>(), entry, value) ||
         LookAt(Types<CElementInfoSeqEnumOpt, CElementInfoAllEnumOpt, CElementInfoChoiceEnumOpt>(), entry,
                enumerator) ||
         LookAt(Types<CElementInfoSeqClsOpt, CElementInfoAllClsOpt, CElementInfoChoiceClsOpt>(), entry, object) ||
         LookAt(Types<CElementInfoSeqAbsClsOpt, CElementInfoChoiceAbsClsOpt>(), entry, abstractObject) ||
         LookAt(Types<CElementInfoAllAbsClsOpt>(), entry, nothing) ||
         LookAt(Types<CElementInfoSeqUntpdOpt, CElementInfoAllUntpdOpt, CElementInfoChoiceUntpdOpt>(), entry, untyped);
}

bool TableCheck::CheckNamedAttribute(CAttributeInfo const& entry) {
  auto const value = [this](CAttributeInfoPrimitive const& attribute) {
    CheckName(Access::Name(attribute), Access::Namespace(attribute));
    CheckKind(Access::ItemTypeOf(attribute), Access::WhitespaceRuleOf(attribute));
  };
  auto const enumerator = [this](CAttributeInfoEnum const& attribute) {
    CheckName(Access::Name(attribute), Access::Namespace(attribute));
    CheckFunction(Access::ToText(attribute) != nullptr && Access::FromText(attribute) != nullptr, "text function");
  };
  return LookAt(Types<CAttributeInfoPrimitive>(), entry, value) ||
         LookAt(Types<CAttributeInfoEnum>(), entry, enumerator);
}

bool TableCheck::CheckWildcard(CAttributeInfo const& entry, bool isLast) {
  if (typeid(entry) != typeid(CAttributeInfoAny)) return false;
  if (!isLast) Find("a wildcard takes all attributes, so it must be the last entry");
  QnVariant held;
  if (Read(Access::PropertyIndex(entry), held) && HeldAs<CAttributeCol>(held) == nullptr) {
    Find(FormatString("the property %d gives no CAttributeCol", Access::PropertyIndex(entry)));
  }
  return true;
}

void TableCheck::CheckName(std::string const& name, std::string const& ns) {
  if (name.empty()) return Find("the name is empty");
  // A name with its prefix serves documents of a DTD, which are read without namespaces.
  bool const isPrefixed = name.find(':') != std::string::npos && !ns.empty();
  if (isPrefixed || name.find('/') != std::string::npos) return Find("a namespace stands in place of the name");
  if (!MayBeName(name)) Find("the name is not one that XML allows");
}

void TableCheck::CheckKind(ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
  if (!IsValueKind(type)) Find(FormatString("the ItemType %d is not that of a value", static_cast<int>(type)));
  if (!IsRule(rule)) Find(FormatString("the WhitespaceRule %d does not exist", static_cast<int>(rule)));
}

void TableCheck::CheckFunction(bool isThere, char const* what) {
  if (!isThere) Find(FormatString("the %s is null", what));
}

void TableCheck::CheckIndex(int index, bool isChosen, bool isOptional) {
  auto const [place, isFirst] = m_uses.try_emplace(index, Use{m_where, isChosen, isOptional});
  if (isFirst) return;
  Use const& other = place->second;
  if (isChosen && other.isChosen) return;                       // only one of the two occurs
  if (isOptional && other.isOptional && !IsSet(index)) return;  // the class may ignore the index
  Find(FormatString("the index %d is also that of %s", index, other.where.c_str()));
}

bool TableCheck::Read(int index, QnVariant& value) {
  try {
    m_object.ReadProperty(index, value);
    return true;
  } catch (CQnException const& failure) {
    Find(FormatString("the property %d cannot be read: %s", index, failure.GetMessage().c_str()));
    return false;
  }
}

bool TableCheck::IsSet(int index) {
  QnVariant value;
  if (!Read(index, value) || !value.IsValid()) return false;
  return !IsObject(value) || value.LookAtXmlObject() != nullptr;
}

}  // namespace Quillon9Data

namespace Quillon9 {

using namespace Quillon9Data;

namespace {

std::string CppName(std::type_info const& type) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> const name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                         &std::free);
  return name != nullptr ? name.get() : type.name();
}

}  // namespace

void CXmlGeneratedClass::CheckTables() const {
  std::string const findings = TableCheck(*this).Run();
  if (findings.empty()) return;
  CParentElementInfo const* const info = GetClassInfo();
  bool const isNamed = info != nullptr && !info->m_typeName.empty();
  std::string const name = isNamed ? info->m_typeName : CppName(typeid(*this));
  throw CQnException(FormatString("The tables of the class [%s] are wrong:%s", name.c_str(), findings.c_str()));
}

namespace {

std::atomic<bool> g_isEnabled{true};

/// The classes that have passed. Never freed: destructors of a program's globals may still read.
struct Passed {
  std::mutex lock;
  std::set<std::type_index> classes;
};

Passed& PassedClasses() {
  static Passed& passed = *new Passed;
  return passed;
}

}  // namespace

void CheckTablesOnce(CXmlGeneratedClass const& object) {
  if (!g_isEnabled) return;
  Passed& passed = PassedClasses();
  std::type_index const type = typeid(object);
  {
    std::lock_guard const guard(passed.lock);
    if (passed.classes.count(type) != 0) return;
  }
  object.CheckTables();  // without the lock: it calls functions of the class
  std::lock_guard const guard(passed.lock);
  passed.classes.insert(type);
}

bool EnableTableChecks(bool enabled) { return g_isEnabled.exchange(enabled); }

}  // namespace Quillon9
