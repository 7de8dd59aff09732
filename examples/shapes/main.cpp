// Reads a drawing, lists its contents, writes it and reads it back, and shows the failures for documents that break its
// schema.
//
//   shapes [document]

#include <langinfo.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "shape_types.h"

using namespace Drawings;
using namespace Quillon9;

namespace {

void PrintHeading(std::string const& text) {
  std::printf("\n%s\n%s\n", text.c_str(), std::string(text.size(), '-').c_str());
}

// ---- A drawing as texts

/// Return the shortest text that represents only this number.
std::string Shown(double number) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

std::string Shown(CPoint const* point) {
  if (CCartesian const* const cartesian = point->GetCartesian()) {
    return "x " + Shown(cartesian->GetX()) + ", y " + Shown(cartesian->GetY());
  }
  CPolar const* const polar = point->GetPolar();
  return "r " + Shown(polar->GetR()) + ", phi " + Shown(polar->GetPhi());
}

std::string Shown(CPosition const* position) {
  return position->GetAnchor() ? "where " + *position->GetAnchor() + " is" : Shown(position->GetPoint());
}

std::string Shown(CLabel const* label) {
  if (label == nullptr) return "the id";
  return label->IsNil() ? "none" : '"' + label->GetText() + '"';
}

std::string Shown(CFillType const* fill) {
  if (auto const* const solid = dynamic_cast<CSolidFill const*>(fill)) return "solid, " + solid->GetColour();
  auto const& gradient = dynamic_cast<CGradientFill const&>(*fill);
  return "gradient, " + gradient.GetFrom() + " to " + gradient.GetTo();
}

struct Field {
  std::string object;
  std::string name;
  std::string value;
};

void AppendShape(std::vector<Field>& fields, CShapeType const& shape) {
  std::string const object = shape.GetElementName() + " " + shape.GetId();
  if (auto const* const area = dynamic_cast<CAreaType const*>(&shape)) {
    fields.push_back({object, "label", Shown(area->GetLabel())});
    fields.push_back({object, "position", Shown(area->GetPosition())});
    fields.push_back({object, "fill", Shown(area->GetFill())});
  }
  if (auto const* const circle = dynamic_cast<CCircle const*>(&shape)) {
    fields.push_back({object, "radius", Shown(circle->GetRadius())});
  } else if (auto const* const rectangle = dynamic_cast<CRectangle const*>(&shape)) {
    fields.push_back({object, "width", Shown(rectangle->GetWidth())});
    fields.push_back({object, "height", Shown(rectangle->GetHeight())});
  } else if (auto const* const polyline = dynamic_cast<CPolyline const*>(&shape)) {
    for (CPoint const& point : *polyline->GetPoint()) fields.push_back({object, "point", Shown(&point)});
    for (std::string const& anchor : *polyline->GetAnchor()) fields.push_back({object, "anchor", anchor});
  }
}

std::vector<Field> FieldsOf(CDrawing const& drawing) {
  CMeta const& meta = *drawing.GetMeta();
  std::vector<Field> fields = {{"drawing", "author", meta.GetAuthor()},
                               {"drawing", "created", meta.GetCreated() ? meta.GetCreated()->ToString() : "-"},
                               {"drawing", "units", CMeta::UnitsToText(meta.GetUnits())}};
  for (CShapeType const& shape : *drawing.GetShape()) AppendShape(fields, shape);
  return fields;
}

void Print(std::vector<Field> const& fields) {
  std::string object;
  for (Field const& field : fields) {
    if (field.object != object) std::printf("  %s\n", field.object.c_str());
    object = field.object;
    std::printf("    %-10s%s\n", field.name.c_str(), CWhitespaceUtils::Collapse(field.value).c_str());
  }
}

/// Return whether both drawings have the same contents. Print what differs.
bool Compare(CDrawing const& before, CDrawing const& after) {
  std::vector<Field> const left = FieldsOf(before);
  std::vector<Field> const right = FieldsOf(after);
  std::size_t differences = std::max(left.size(), right.size()) - std::min(left.size(), right.size());
  for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
    if (left[i].object == right[i].object && left[i].name == right[i].name && left[i].value == right[i].value) continue;
    ++differences;
    std::printf("  %s: %s was [%s], now %s: %s is [%s]\n", left[i].object.c_str(), left[i].name.c_str(),
                left[i].value.c_str(), right[i].object.c_str(), right[i].name.c_str(), right[i].value.c_str());
  }
  std::printf("Read again: %zu fields compared, %zu differ.\n", left.size(), differences);
  return differences == 0;
}

// ---- The steps

bool WriteAndRead(CDrawing const& drawing) {
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI(drawing.GetTargetNamespace().c_str());
  ctx.GetNamespaceAliases()->Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
  std::string const text = drawing.ToXml(true, true, EOLType_LF, ctx);
  std::printf("%s\n", text.c_str());
  CSmartPtr<CDrawing> const again = new CDrawing;
  again->FromXml(text.c_str());
  return Compare(drawing, *again);
}

/// Print \p failure and its causes, outermost first.
void PrintChain(CQnException const& failure) {
  for (CQnException const* link = &failure; link != nullptr; link = link->GetInnerException()) {
    std::printf("  %s\n", link->GetMessage().c_str());
  }
}

/// Return whether \p attempt fails, as it should.
template <class Attempt>
bool Fails(char const* what, Attempt attempt) {
  std::printf("%s:\n", what);
  try {
    attempt();
  } catch (CQnException const& failure) {
    PrintChain(failure);
    return true;
  }
  std::printf("  passed without a failure\n");
  return false;
}

/// Return a drawing in which only \p meta and \p shapes can be wrong.
std::string Document(char const* meta, char const* shapes) {
  return std::string(
             "<drawing xmlns='urn:example:drawing' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>"
             "<meta>") +
         meta + "</meta><polyline id='a'><x>1</x><y>2</y><x>3</x><y>4</y></polyline>" + shapes + "</drawing>";
}

struct Fault {
  char const* what;
  char const* meta;
  char const* shapes;
};

constexpr char kMeta[] = "<units>cm</units><author>A</author>";

constexpr Fault kFaults[] = {
    {"An all group without its mandatory author", "<units>cm</units>", ""},
    {"An unknown unit", "<units>furlong</units><author>A</author>", ""},
    {"A shape that no class suits", kMeta, "<hexagon id='b'/>"},
    {"A fill whose type no class suits", kMeta,
     "<circle id='b'><anchor>a</anchor><fill xsi:type='HatchedFill'/><radius>1</radius></circle>"},
    {"Half a point, which is no position", kMeta, "<circle id='b'><x>1</x><radius>1</radius></circle>"},
    {"A choice that is empty", kMeta, "<polyline id='b'/>"},
    {"Two members of a choice", kMeta,
     "<polyline id='b'><x>1</x><y>2</y><r>3</r><phi>4</phi><anchor>a</anchor></polyline>"},
    {"An xsi:nil that is neither true nor false", kMeta,
     "<circle id='b'><label xsi:nil='yes'/><anchor>a</anchor></circle>"}};

bool ShowFailures() {
  bool ok = true;
  for (Fault const& fault : kFaults) {
    ok &= Fails(fault.what, [&fault] {
      CSmartPtr<CDrawing> const drawing = new CDrawing;
      drawing->FromXml(Document(fault.meta, fault.shapes).c_str());
    });
  }
  ok &= Fails("Two members of a choice, set in the program", [] {
    CSmartPtr<CPosition> const position = new CPosition("position");
    position->SetAnchor("a");
    CSmartPtr<CPoint> const point = new CPoint("point");
    position->SetPoint(point);
  });
  return ok;
}

bool Run(char const* path) {
  CSmartPtr<CDrawing> const drawing = new CDrawing;
  drawing->FromXmlFile(path);
  std::printf("%s\n", std::filesystem::path(path).filename().c_str());
  Print(FieldsOf(*drawing));

  PrintHeading("Written");
  bool ok = WriteAndRead(*drawing);
  PrintHeading("Failures");
  ok &= ShowFailures();
  return ok;
}

/// The text of all objects is in the code page of the process locale, and characters that it cannot express become "?".
/// So a program that must not lose anything runs in a UTF-8 locale, even if its environment has none.
void ChooseLocale() {
  std::setlocale(LC_ALL, "");
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) {
    std::fprintf(stderr, "usage: %s [document]\n", argv[0]);
    return 1;
  }
  ChooseLocale();
  try {
    return Run(argc == 2 ? argv[1] : SHAPES_DOCUMENT) ? 0 : 1;
  } catch (CQnException const& failure) {
    std::fprintf(stderr, "%s\n", failure.GetFullMessage().c_str());
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  }
  return 1;
}
