#include "binding/document_places.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "binding/infoset_scan.h"
#include "quillon9/xmlio/document.h"
#include "text/lost_characters.h"
#include "text/utf8_to_local.h"
#include "xmlio/text_scan.h"

namespace Quillon9 {

namespace {

template <class Node>
using Numbers = std::vector<std::pair<Node const*, std::uint32_t>>;

template <class Node>
std::uint32_t NumberIn(Numbers<Node> const& numbers, Node const* node) {
  auto const found = std::lower_bound(numbers.begin(), numbers.end(), std::pair<Node const*, std::uint32_t>(node, 0));
  return found != numbers.end() && found->first == node ? found->second : DocumentOutline::kNone;
}

/// Calls \p start and \p end for the elements of a tree, in the order of their tags.
template <class Start, class End>
void Walk(CXmlElement const& root, Start start, End end) {
  std::vector<CXmlElement const*> open{&root};
  start(root);
  CXmlElement const* next = root.GetFirstElement();
  while (!open.empty()) {
    if (next != nullptr) {
      start(*next);
      open.push_back(next);
      next = next->GetFirstElement();
    } else {
      end();
      next = open.size() > 1 ? open.back()->GetNextSiblingElement() : nullptr;
      open.pop_back();
    }
  }
}

DocumentOutline OutlineOf(CXmlElement const& root) {
  DocumentOutline outline;
  Walk(
      root, [&](CXmlElement const& element) { outline.Start(element.GetLocalName(), {}); }, [&] { outline.End({}); });
  return outline;
}

ExpatInput InputOf(CXmlDocument const& document) { return {document.GetInputData(), document.GetInputSize()}; }

std::int64_t OffsetIn(InputForm form, std::int64_t offset) {
  constexpr std::int64_t kMarkSize = 2;  // the byte order mark in front of the copy
  constexpr std::int64_t kUnitSize = 2;
  if (form != InputForm::kWideText) return offset;
  return std::max(offset - kMarkSize, std::int64_t{0}) / kUnitSize * std::int64_t{sizeof(wchar_t)};
}

void SetPosition(CFailurePlace& place, InputPosition const& at, InputForm form) {
  place.SetOffset(OffsetIn(form, at.offset));
  place.SetLine(at.line);
  place.SetColumn(at.column);
}

}  // namespace

struct DocumentPlaces::Found {
  DocumentOutline outline;
  // At most one of them: where the outline comes from. Neither if it has no positions.
  std::optional<TextScan> text;
  std::optional<InfosetScan> infoset;
  Numbers<CXmlElement> elements;  // sorted
  // The attributes of the last element that was asked for: many attributes of one element may be wrong.
  std::uint32_t attributesOf = DocumentOutline::kNone;
  Numbers<CXmlAttribute> attributes;  // sorted
  std::vector<InputPosition> attributePositions;

  bool HasPositions() const { return text.has_value() || infoset.has_value(); }
  void Scan(CXmlDocument const& document) {
    if (infoset.emplace(document).Outline(outline)) return;
    infoset.reset();
    text.emplace(InputOf(document)).Outline(outline);
  }
};

DocumentPlaces::DocumentPlaces(CXmlDocument const& document, InputForm form, char const* file)
    : m_document(&document), m_form(form), m_file(file) {}
DocumentPlaces::DocumentPlaces(CXmlElement const* root) : m_root(root) {}
DocumentPlaces::~DocumentPlaces() = default;

CXmlElement const* DocumentPlaces::Root() const {
  return m_document != nullptr ? m_document->GetDocumentElement() : m_root;
}

bool DocumentPlaces::HasPositionsOf(CXmlElement const* element) {
  bool const isLoaded = m_form != InputForm::kUnseen && m_document->GetDocumentElement() != nullptr;
  return isLoaded && NumberIn(Prepare().elements, element) != DocumentOutline::kNone;
}

DocumentPlaces::Found& DocumentPlaces::Prepare() {
  if (m_found != nullptr) return *m_found;
  auto found = std::make_unique<Found>();
  CXmlElement const* const root = Root();
  if (root != nullptr) {
    auto const add = [&](CXmlElement const& element) {
      found->elements.emplace_back(&element, static_cast<std::uint32_t>(found->elements.size()));
    };
    Walk(*root, add, [] {});
    if (m_form != InputForm::kUnseen && m_document->GetInputData() != nullptr) found->Scan(*m_document);
    // A program can change the tree while it is read; then only the tree knows the path.
    if (found->outline.GetSize() != found->elements.size()) {
      found->text.reset();
      found->infoset.reset();
      found->outline = OutlineOf(*root);
    }
    std::sort(found->elements.begin(), found->elements.end());
  }
  m_found = std::move(found);
  return *m_found;
}

CFailurePlace DocumentPlaces::Find(FailurePoint const& point) {
  CFailurePlace place;
  if (m_file != nullptr) place.SetFile(m_file);
  if (point.element == nullptr) return place;
  LostCharacters::Scope const unheard(nullptr);  // what the first read has lost is lost again
  Found& found = Prepare();
  std::uint32_t const element = NumberIn(found.elements, point.element);
  if (element == DocumentOutline::kNone) return place;
  if (found.HasPositions()) {
    SetPosition(place, point.isAtEnd ? found.outline.EndOf(element) : found.outline.StartOf(element), m_form);
  }
  std::string path = found.outline.PathOf(element);
  if (found.text.has_value()) path = CUtf8ToLocal()(path);
  if (point.attribute != nullptr) AddAttribute(place, path, point, element);
  place.SetPath(std::move(path));
  return place;
}

void DocumentPlaces::AddAttribute(CFailurePlace& place, std::string& path, FailurePoint const& point,
                                  std::uint32_t element) {
  Found& found = *m_found;
  if (found.attributesOf != element) {
    found.attributesOf = DocumentOutline::kNone;
    found.attributes.clear();
    for (CXmlAttribute const& attribute : point.element->Attributes()) {
      found.attributes.emplace_back(&attribute, static_cast<std::uint32_t>(found.attributes.size()));
    }
    std::sort(found.attributes.begin(), found.attributes.end());
    bool const areDeclarations = m_document != nullptr && m_document->GetSchemaType() == SchemaType_DTD;
    found.attributePositions.clear();
    if (found.text.has_value()) {
      found.attributePositions = found.text->AttributesAt(found.outline.StartOf(element), areDeclarations);
    }
    found.attributesOf = element;
  }
  std::uint32_t const number = NumberIn(found.attributes, point.attribute);
  if (number == DocumentOutline::kNone) return;
  if (number < found.attributePositions.size()) {
    InputPosition const& at = found.attributePositions[number];
    SetPosition(place, at, m_form);
    path += "/@" + CUtf8ToLocal()(found.text->NameAt(at));
  } else if (found.infoset.has_value()) {
    path += "/@" + DocumentOutline::Shown(found.infoset->NameOf(*point.attribute));
  } else {  // from the document type, or without a position
    path += "/@" + DocumentOutline::Shown(point.attribute->GetLocalName());
  }
}

CFailurePlace PlaceInText(CXmlDocument const& document, InputPosition const& at, InputForm form, char const* file) {
  CFailurePlace place;
  if (file != nullptr) place.SetFile(file);
  SetPosition(place, at, form);
  if (document.GetDocumentElement() == nullptr) return place;
  LostCharacters::Scope const unheard(nullptr);
  DocumentOutline outline;
  TextScan(InputOf(document)).Outline(outline, at.offset);
  place.SetPath(CUtf8ToLocal()(outline.PathOf(outline.GetOpen())));
  return place;
}

CFailurePlace PlaceInInfoset(CXmlDocument const& document, std::size_t offset, char const* file) {
  CFailurePlace place;
  if (file != nullptr) place.SetFile(file);
  place.SetOffset(static_cast<std::int64_t>(offset));
  LostCharacters::Scope const unheard(nullptr);
  DocumentOutline outline;
  InfosetScan(document).Outline(outline);
  place.SetPath(outline.PathOf(outline.GetOpen()));
  return place;
}

}  // namespace Quillon9
