#include "generated/mixed_content.h"

#include <algorithm>
#include <utility>

#include "descriptors/generic_reading.h"
#include "generated/bound_access.h"
#include "generated/built_class.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "text/utf8_text.h"
#include "values/rules_in_use.h"
#include "xmlio/mixed_texts.h"
#include "xmlio/node_access.h"
#include "xmlio/object_content.h"

namespace Quillon9 {

namespace {

/// Calls \p visit for each member that is set, with its row and descriptor, in the order of writing.
template <class Visit>
void VisitMembers(CBoundObject const& holder, Particle const& particle, Visit const& visit) {
  if (particle.group == nullptr) {
    if (particle.IsSet(&holder)) visit(*particle.row, *particle.info);
    return;
  }
  std::vector<Particle> const& particles = particle.group->Particles();
  RowKind const kind = particle.group->Kind();
  std::vector<int> const* const order = kind == RowKind::BeginAll ? BoundAccess::Order(&holder) : nullptr;
  std::vector<bool> visited(particles.size());
  auto const go = [&](std::size_t at) {
    if (at >= particles.size() || visited[at]) return;
    visited[at] = true;
    VisitMembers(holder, particles[at], visit);
  };
  if (order != nullptr) {
    for (int const place : *order) go(static_cast<std::size_t>(place));
  }
  for (std::size_t i = 0; i < particles.size(); ++i) {
    bool const isChosen = kind == RowKind::BeginChoice && particles[i].IsSet(&holder);
    if (kind != RowKind::BeginChoice || isChosen) go(i);
    if (isChosen) return;
  }
}

template <class Visit>
void VisitMembers(CBoundObject const& holder, Visit const& visit) {
  for (Particle const& particle : BoundAccess::Built(holder).Content()) VisitMembers(holder, particle, visit);
}

/// One element inside an object.
struct Child {
  CBoundObject* holder;
  CElementRow const* row;
  CXmlObjectBase* object;  ///< null for a value
  int index;
};

void AppendChildren(CBoundObject& holder, std::vector<Child>& children);

void AppendItems(CBoundObject& holder, CElementRow const& row, CXmlObjectBase& collection,
                 std::vector<Child>& children) {
  int index = 0;
  auto const* node = BoundAccess::FirstNode(static_cast<CObjectCollection&>(collection));
  for (; node != nullptr; node = node->m_next) {
    if (row.kind == RowKind::Rounds) {
      AppendChildren(static_cast<CBoundObject&>(*node->m_item), children);
    } else {
      children.push_back({&holder, &row, node->m_item.Get(), index++});
    }
  }
}

void AppendChildren(CBoundObject& holder, std::vector<Child>& children) {
  VisitMembers(holder, [&](CElementRow const& row, Quillon9Data::CElementInfo const&) {
    CPropertyRef const property = BoundAccess::Property(&holder, row.property);
    switch (row.kind) {
      case RowKind::Value: children.push_back({&holder, &row, nullptr, 0}); break;
      case RowKind::Values: {
        int const count = static_cast<CXmlCollectionBase&>(*property.Look()).GetCount();
        for (int i = 0; i < count; ++i) children.push_back({&holder, &row, nullptr, i});
        break;
      }
      case RowKind::Object:
      case RowKind::Any:
      case RowKind::AnyType: children.push_back({&holder, &row, property.Look(), 0}); break;
      case RowKind::Objects:
      case RowKind::Rounds:
      case RowKind::Anys:
      case RowKind::AnyTypes: AppendItems(holder, row, *property.Look(), children); break;
      case RowKind::BeginSequence:
      case RowKind::BeginChoice:
      case RowKind::BeginAll:
      case RowKind::EndGroup: break;
    }
  });
}

std::vector<Child> ChildrenOf(CBoundObject const& object) {
  std::vector<Child> children;
  AppendChildren(const_cast<CBoundObject&>(object), children);  // only looked at, and handed out as the program's own
  return children;
}

std::string NameOf(CElementRow const& row, CXmlObjectBase const* object) {
  auto const* const generic = dynamic_cast<CElement const*>(object);
  if (generic != nullptr) return generic->GetName();
  return object != nullptr ? object->GetElementName() : row.name;
}

/// The sizes of the text in front of the elements that the object has kept of \p element: those that it knows by name,
/// since a read may leave some out.
std::vector<std::size_t> PlacesOf(CBoundObject const& object, CXmlElement const& element, bool isWhole) {
  std::vector<Child> const children = isWhole ? std::vector<Child>() : ChildrenOf(object);
  auto next = children.begin();
  std::vector<std::size_t> places;
  std::size_t place = 0;
  for (auto const& item : element.Content()) {
    place += item.GetText().size();
    if (item.IsText()) continue;
    if (!isWhole) {
      if (next == children.end() || NameOf(*next->row, next->object) != item.GetElement()->GetLocalName()) continue;
      ++next;
    }
    places.push_back(place);
  }
  return places;
}

}  // namespace

void MixedContent::AfterRead(CBoundObject& object, CXmlElement const& element, CXmlSerializationContext const& ctx) {
  BoundAccess::SetPlaces(object, std::vector<std::size_t>());
  if (HasOnlyLayout(element)) {
    BoundAccess::Property(&object, BoundAccess::Built(object).TextProperty()).Clear();
  } else if (element.IsMixed()) {
    bool const isWhole = !ctx.GetIgnoreUnknownElements() && ctx.GetFailureSink() == nullptr;
    std::vector<std::size_t> places = PlacesOf(object, element, isWhole);
    ObjectContent::Count(element, sizeof(ObjectForm) + places.size() * sizeof(std::size_t));
    BoundAccess::SetPlaces(object, std::move(places));
  }
}

// ---- Writing

void CBoundObject::ContentToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& ctx, bool inChoice) const {
  if (!m_tables->Built().IsMixed()) return CXmlGeneratedClass::ContentToXml_Int(writer, ctx, inChoice);
  std::string_view const text = MixedText();
  std::vector<std::size_t> const* const places = BoundAccess::Places(*this);
  if (!text.empty()) writer->PreserveSpace();
  if (text.empty() || places == nullptr) return CXmlGeneratedClass::ContentToXml_Int(writer, ctx, inChoice);
  MixedTexts texts(*writer, text, *places);
  ProcessElementSeqToXml(ctx, GetClassElementInfo(), writer);
  texts.Finish();
}

// ---- What programs do with it

/// Makes the items.
struct BoundContent {
  static CBoundItem Text(std::string_view text) {
    CBoundItem item;
    item.m_text = text;
    return item;
  }
  static CBoundItem Element(Child const& child) {
    CBoundItem item;
    item.m_holder = child.holder;
    item.m_object = child.object;
    item.m_property = child.row->property;
    item.m_index = child.index;
    return item;
  }
};

std::string_view CBoundObject::MixedText() const {
  BuiltClass const& built = m_tables->Built();
  std::string const* const text = built.IsMixed() ? ConstProperty(built.TextProperty()).LookText() : nullptr;
  return text != nullptr ? std::string_view(*text) : std::string_view();
}

CBoundContent CBoundObject::Content() const {
  std::string_view const text = MixedText();
  std::vector<std::size_t> const* const places = BoundAccess::Places(*this);
  CBoundContent content;
  std::size_t at = 0;
  std::size_t index = 0;
  auto const addText = [&](std::size_t end) {
    end = std::min(end, text.size());
    if (end <= at) return;
    content.push_back(BoundContent::Text(text.substr(at, end - at)));
    at = end;
  };
  for (Child const& child : ChildrenOf(*this)) {
    if (places != nullptr) addText(index < places->size() ? (*places)[index] : text.size());
    content.push_back(BoundContent::Element(child));
    ++index;
  }
  addText(text.size());
  return content;
}

namespace {

/// Collects the texts of the elements that a member writes.
class TextCollector : public CXmlWriter {
 public:
  TextCollector() : CXmlWriter("TextCollector") {}

  std::string Take(int index) { return std::move(m_texts.at(static_cast<std::size_t>(index))); }

  void WriteStartElement(std::string const&, std::string const&) override { m_texts.emplace_back(); }
  void WriteString(std::string const& value, ItemType) override { m_texts.back() += value; }
  void WriteEndElement() override {}
  void WriteAttributeString(std::string const&, std::string const&, std::string const&, ItemType) override {}
  void WriteAttributeType(std::string const&, std::string const&, ItemType) override {}
  void WriteAttributeNil() override {}
  void WriteComment(std::string const&) override {}
  bool DeclarePrefix(std::string const& prefix, std::string const&) override { return !prefix.empty(); }
  void WritePI(std::string const&) override {}
  void WriteInlineSchema(std::string const&) override {}

 private:
  std::vector<std::string> m_texts;
};

}  // namespace

std::string CBoundItem::GetName() const {
  return m_holder != nullptr ? NameOf(*BoundAccess::Built(*m_holder).At(m_property).element, m_object) : std::string();
}

std::string CBoundItem::GetValue() const {
  if (m_holder == nullptr || m_object != nullptr) return {};
  Utf8Text::Scope const scope(Utf8Text::Use::kCountingCharacters);
  RulesInUse::Scope const rules(m_holder->GetDefaultValueRules());
  TextCollector texts;
  VisitMembers(*m_holder, [&](CElementRow const& row, Quillon9Data::CElementInfo const& info) {
    if (row.property == m_property) info.ElementToXml(CXmlSerializationContext::m_defaultContext, m_holder, &texts);
  });
  return texts.Take(m_index);
}

void CBoundObject::ReplaceMixed(std::string& member, std::string value) {
  member = std::move(value);
  BoundAccess::SetPlaces(*this, std::nullopt);
}

void CBoundObject::AppendMixed(std::string& member, std::string_view text) {
  std::vector<std::size_t> const* const known = BoundAccess::Places(*this);
  std::vector<std::size_t> places = known != nullptr ? *known : std::vector<std::size_t>();
  places.resize(ChildrenOf(*this).size(), known != nullptr ? member.size() : 0);
  member += text;
  BoundAccess::SetPlaces(*this, std::move(places));
}

}  // namespace Quillon9
