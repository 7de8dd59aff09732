#include "quillon9/generated/property_ref.h"

#include "base/failure_detail.h"
#include "generated/list_items.h"
#include "generated/qualified_name_text.h"
#include "generated/value_rule.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/descriptors/generic_content.h"
#include "values/ruled_values.h"
#include "xmlio/checking_writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

// Null for a member that is not a text, or is an optional one.
std::string const* CPropertyRef::LookText() const {
  bool const isText = m_kind == &detail::ValueKind<std::string, ItemType_string>::kPlain;
  return isText ? static_cast<std::string const*>(m_member) : nullptr;
}

}  // namespace Quillon9

namespace Quillon9::detail {

namespace {

constexpr CDateTime::DTType DateTypeOf(ItemType kind) {
  switch (kind) {
    case ItemType_date: return CDateTime::dt_date;
    case ItemType_time: return CDateTime::dt_time;
    case ItemType_yearMonth: return CDateTime::dt_gYearMonth;
    case ItemType_monthDay: return CDateTime::dt_gMonthDay;
    default: return CDateTime::dt_dateTime;
  }
}

template <ItemType number, class Value>
void RequireType(Value const&) {}

/// A CDateTime knows its type itself, and its text has the form of that. One that is clear has no text.
template <ItemType number>
void RequireType(CDateTime const& value) {
  constexpr CDateTime::DTType kType = DateTypeOf(number);
  if (value.GetType() == kType || value.GetType() == CDateTime::dt_yearZero) return;
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(
                                         "The value [%s] is a %s instead of a %s", value.ToString().c_str(),
                                         value.GetTypeAsString().c_str(), CDateTime::GetTypeAsString(kType).c_str())));
}

/// How a variant holds a kind.
template <ItemType number>
struct Held;
#define QN_VALUE_KIND(number, stem, Access, Type)         \
  template <>                                             \
  struct Held<ItemType_##stem> {                          \
    static void Set(QnVariant& to, Type const& value) {   \
      RequireType<ItemType_##stem>(value);                \
      to.Set##Access(value);                              \
    }                                                     \
    static void Get(QnVariant const& from, Type& value) { \
      value = from.Get##Access();                         \
      RequireType<ItemType_##stem>(value);                \
    }                                                     \
  };
#include "values/item_types.def"

template <class Value>
Value& As(void* member) {
  return *static_cast<Value*>(member);
}
template <class Value>
Value const& As(void const* member) {
  return *static_cast<Value const*>(member);
}

}  // namespace

// ---- Lists

namespace {

/// A text that is a list of one item has to be read back as that item.
void RequireItem(std::string const& text) {
  if (!text.empty() && text.find_first_of(kListBlanks) == std::string::npos) return;
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(
                                         "The item [%s] of a list is empty or contains white space", text.c_str())));
}

template <ItemType number, class Value>
void ReadList(std::vector<Value> const& list, QnVariant& value) {
  std::string text;
  for (Value const& each : list) {
    QnVariant item;
    Held<number>::Set(item, each);
    std::string const itemText = RuledValues::ToText(item, FormatOf(number));
    RequireItem(itemText);
    if (!text.empty()) text += ' ';
    text += itemText;
  }
  value.SetString(std::move(text));
}

template <ItemType number, class Value>
std::vector<Value> ListOf(QnVariant const& value) {
  std::vector<Value> list;
  std::string const text = value.GetString();
  for (ListItems items(text); items.Next();) {
    QnVariant item;
    RuledValues::FromPart(item, items.Text(), number, CWhitespaceUtils::WhitespaceRule_Preserve);
    Value held{};
    Held<number>::Get(item, held);
    list.push_back(std::move(held));
  }
  return list;
}

}  // namespace

std::string TextOfNumbers(std::vector<int> const& numbers) {
  QnVariant text;
  ReadList<ItemType_i4>(numbers, text);
  return text.GetString();
}

std::vector<int> NumbersOfText(QnVariant const& text) { return ListOf<ItemType_i4, int>(text); }

template <class Value, ItemType number>
CPropertyKind const ValueKind<Value, number>::kList = {
    [](void const* member, QnVariant& value) { ReadList<number>(As<std::vector<Value>>(member), value); },
    [](void* member, QnVariant const& value) { As<std::vector<Value>>(member) = ListOf<number, Value>(value); },
    [](void* member) { As<std::vector<Value>>(member).clear(); },
    [](void const*) { return true; },
    nullptr,
    nullptr,
    nullptr};

template <class Value, ItemType number>
CPropertyKind const ValueKind<Value, number>::kOptionalList = {
    [](void const* member, QnVariant& value) {
      auto const& held = As<std::optional<std::vector<Value>>>(member);
      if (held) ReadList<number>(*held, value);
    },
    [](void* member, QnVariant const& value) {
      As<std::optional<std::vector<Value>>>(member) = ListOf<number, Value>(value);
    },
    [](void* member) { As<std::optional<std::vector<Value>>>(member).reset(); },
    [](void const* member) { return As<std::optional<std::vector<Value>>>(member).has_value(); },
    nullptr,
    nullptr,
    nullptr};

// ---- Qualified names

namespace {

using Names = std::vector<CQName>;

void ReadNames(Names const& names, QnVariant& value) {
  std::string text;
  for (CQName const& name : names) {
    std::string const item = QualifiedNameText::From(name);
    RequireItem(item);
    text += (text.empty() ? "" : " ") + item;
  }
  value.SetString(std::move(text));
}

Names NamesOf(QnVariant const& value) {
  Names names;
  std::string const text = value.GetString();
  for (ListItems items(text); items.Next();) names.push_back(QualifiedNameText::Parse(items.Text()));
  return names;
}

}  // namespace

CPropertyKind const QualifiedNameKind::kPlain = {
    [](void const* member, QnVariant& value) { value.SetString(QualifiedNameText::From(As<CQName>(member))); },
    [](void* member, QnVariant const& value) { As<CQName>(member) = QualifiedNameText::Parse(value.GetString()); },
    [](void* member) { As<CQName>(member) = CQName(); },
    [](void const*) { return true; },
    nullptr,
    nullptr,
    nullptr};
CPropertyKind const QualifiedNameKind::kOptional = {
    [](void const* member, QnVariant& value) {
      auto const& held = As<std::optional<CQName>>(member);
      if (held) value.SetString(QualifiedNameText::From(*held));
    },
    [](void* member, QnVariant const& value) {
      As<std::optional<CQName>>(member) = QualifiedNameText::Parse(value.GetString());
    },
    [](void* member) { As<std::optional<CQName>>(member).reset(); },
    [](void const* member) { return As<std::optional<CQName>>(member).has_value(); },
    nullptr,
    nullptr,
    nullptr};
CPropertyKind const QualifiedNameKind::kList = {
    [](void const* member, QnVariant& value) { ReadNames(As<Names>(member), value); },
    [](void* member, QnVariant const& value) { As<Names>(member) = NamesOf(value); },
    [](void* member) { As<Names>(member).clear(); },
    [](void const*) { return true; },
    nullptr,
    nullptr,
    nullptr};
CPropertyKind const QualifiedNameKind::kOptionalList = {
    [](void const* member, QnVariant& value) {
      auto const& held = As<std::optional<Names>>(member);
      if (held) ReadNames(*held, value);
    },
    [](void* member, QnVariant const& value) { As<std::optional<Names>>(member) = NamesOf(value); },
    [](void* member) { As<std::optional<Names>>(member).reset(); },
    [](void const* member) { return As<std::optional<Names>>(member).has_value(); },
    nullptr,
    nullptr,
    nullptr};

// ---- Single values

template <class Value, ItemType number>
CPropertyKind const ValueKind<Value, number>::kPlain = {
    [](void const* member, QnVariant& value) { Held<number>::Set(value, As<Value>(member)); },
    [](void* member, QnVariant const& value) { Held<number>::Get(value, As<Value>(member)); },
    [](void* member) { As<Value>(member) = Value(); },
    [](void const*) { return true; },
    nullptr,
    nullptr,
    nullptr};

template <class Value, ItemType number>
CPropertyKind const ValueKind<Value, number>::kOptional = {
    [](void const* member, QnVariant& value) {
      auto const& held = As<std::optional<Value>>(member);
      if (held) Held<number>::Set(value, *held);
    },
    [](void* member, QnVariant const& value) {
      auto& held = As<std::optional<Value>>(member);
      Held<number>::Get(value, held ? *held : held.emplace());
    },
    [](void* member) { As<std::optional<Value>>(member).reset(); },
    [](void const* member) { return As<std::optional<Value>>(member).has_value(); },
    nullptr,
    nullptr,
    nullptr};

#define QN_DEFINE_KIND(Value, number) template struct ValueKind<Value, number>;
QN_VALUE_TYPES(QN_DEFINE_KIND)
#undef QN_DEFINE_KIND

// ---- Collections of values

namespace {

/// A collection of values in a generated class.
template <class Collection>
class PlainCol : public Collection {
 public:
  PlainCol(CElementRow const& row, CFacets const& f, CValueType const& type)
      : Collection(row.name, row.ns, row.minOccurs, row.maxOccurs, f.pattern, f.minLength, f.maxLength, f.minInclusive,
                   f.maxInclusive, f.minExclusive, f.maxExclusive, f.length, type.whitespace, FormatOf(type.kind)) {
    this->m_restrictions.comparesMonths = true;
    this->m_restrictions.form = type.form;
  }

  /// The lengths of texts are numbers of characters.
  bool HoldsUtf8Text() const override { return std::is_same_v<Collection, CstringCol> || Collection::HoldsUtf8Text(); }
  /// Those of the object that holds it.
  ValueRules GetDefaultValueRules() const override { return m_rules; }

 private:
  ValueRules m_rules = RulesInUse::AreSchema() ? ValueRules_XmlSchema : ValueRules_Classic;
};

/// A collection of values whose type has rules that the library's own collections do not know. They are checked when
/// those of single values are.
template <class Collection>
class RuledCol : public PlainCol<Collection> {
 public:
  RuledCol(CElementRow const& row, CFacets const& f, CValueType const& type)
      : PlainCol<Collection>(row, f, type), m_rule(row.name, type, nullptr, nullptr) {}

  void AddFromString(std::string text) override {
    Collection::AddFromString(std::move(text));
    if (!m_checksItems) return;
    int const last = this->GetCount() - 1;
    try {
      RequireValid(this->ItemAt(last));
    } catch (...) {
      this->Remove(last);
      throw;
    }
  }

 protected:
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override {
    m_checksItems = ValueRule::ChecksFacets(ctx);
    struct Reset {
      bool& isOn;
      ~Reset() { isOn = false; }
    } const reset{m_checksItems};
    return Collection::FromXml_Int(parent, cursor, ctx, inChoice);
  }
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override {
    if (CheckingWriter* const check = XmlWriterAccess::Checking(*writer)) return CheckItems(*check, ctx);
    for (auto const& value : *this) RequireValid(value);
    Collection::ToXml_Int(writer, isRoot, ns, ctx, inChoice);
  }

 private:
  template <class Value>
  QnVariant HeldAs(Value const& value) const {
    QnVariant held;
    CPropertyRef(const_cast<std::decay_t<Value>&>(value), m_rule.GetType().kind).Read(held);
    return held;
  }
  template <class Value>
  void RequireValid(Value const& value) const {
    m_rule.CheckOwn(HeldAs(value));
  }
  void CheckItems(CheckingWriter& writer, CXmlSerializationContext const& ctx) const {
    for (auto const& value : *this) {
      writer.WriteStartElement(this->GetElementName(), this->GetNamespace());
      try {
        QnVariant const held = HeldAs(value);
        m_rule.Check(held);
        writer.WriteString(m_rule.Print(held), held.GetItemType());
      } catch (CQnException& failure) {
        if (!writer.GoesOn(failure)) throw;
      }
      writer.WriteEndElement();
    }
    this->ValidateCount(ctx);
  }

  ValueRule m_rule;
  bool m_checksItems = false;  // of a read that checks facets
};

template <class Collection>
CSmartPtr<CXmlObjectBase> MakeCollection(CElementRow const& row) {
  static constexpr CValueType kText;
  static constexpr CFacets kNone;
  CValueType const& type = row.value != nullptr ? *row.value : kText;
  CFacets const& f = type.facets != nullptr ? *type.facets : kNone;
  if (ValueRule::HasOwnRules(type)) return new RuledCol<Collection>(row, f, type);
  return new PlainCol<Collection>(row, f, type);
}

}  // namespace

#define QN_DEFINE_COLLECTION(stem)                                                        \
  CSmartPtr<CXmlObjectBase> NewCollection<C##stem##Col>::ForRow(CElementRow const* row) { \
    return MakeCollection<C##stem##Col>(*row);                                            \
  }
QN_VALUE_COLLECTIONS(QN_DEFINE_COLLECTION)
#undef QN_DEFINE_COLLECTION

CSmartPtr<CXmlObjectBase> NewCollection<CAttributeCol>::ForRow(CElementRow const*) {
  return new CAttributeCol("", "##any", "");
}

}  // namespace Quillon9::detail
