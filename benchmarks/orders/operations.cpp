#include "orders/operations.h"

#include <expat.h>

#include <memory>
#include <new>
#include <string_view>
#include <type_traits>

#include "generatedorders.h"
#include "orders/orders.h"

namespace Orders {

using namespace Quillon9;

namespace {

constexpr char kSeparator = '|';

unsigned char* Bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

// ---- Raw expat

struct ParserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserPtr = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter>;

void ParseWith(XML_Parser parser, std::string const& text) {
  if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK) {
    throw CQnException(XML_ErrorString(XML_GetErrorCode(parser)));
  }
}

ParserPtr CreateParser() {
  ParserPtr parser(XML_ParserCreateNS(nullptr, kSeparator));
  if (parser == nullptr) throw std::bad_alloc();
  return parser;
}

std::size_t RunExpat(Workload& load) {
  ParserPtr const parser = CreateParser();
  XML_SetElementHandler(
      parser.get(), [](void*, XML_Char const*, XML_Char const**) {}, [](void*, XML_Char const*) {});
  XML_SetNamespaceDeclHandler(
      parser.get(), [](void*, XML_Char const*, XML_Char const*) {}, [](void*, XML_Char const*) {});
  XML_SetCharacterDataHandler(parser.get(), [](void*, XML_Char const*, int) {});
  ParseWith(parser.get(), load.document.text);
  return load.document.text.size();
}

/// Sums up a document from the events of the parser.
struct EventSums {
  Sums sums;
  std::string text;

  void EndElement(std::string_view name) {
    std::string_view const local = name.substr(name.find(kSeparator) + 1);
    if (local == "order") ++sums.orders;
    if (local == "item") ++sums.items;
    if (local == "quantity") sums.quantity += std::stoull(text);
    if (local == "price") sums.priceE4 += PriceE4(text);
  }
};

Sums ProveExpat(Workload& load) {
  ParserPtr const parser = CreateParser();
  EventSums events;
  XML_SetUserData(parser.get(), &events);
  XML_SetElementHandler(
      parser.get(), [](void* data, XML_Char const*, XML_Char const**) { static_cast<EventSums*>(data)->text.clear(); },
      [](void* data, XML_Char const* name) { static_cast<EventSums*>(data)->EndElement(name); });
  XML_SetCharacterDataHandler(parser.get(), [](void* data, XML_Char const* text, int length) {
    static_cast<EventSums*>(data)->text.append(text, static_cast<std::size_t>(length));
  });
  ParseWith(parser.get(), load.document.text);
  return events.sums;
}

// ---- The tree

void Load(CXmlDocument& tree, std::string& text) { tree.LoadXmlStream(Bytes(text), text.size()); }

std::size_t RunTree(Workload& load) {
  CXmlDocument tree;
  Load(tree, load.document.text);
  return load.document.text.size();
}

/// Calls \p visit for each child of \p parent with this name.
///@{
template <class Visit>
void ForEachChild(CXmlElement const& parent, std::string const& name, Visit visit) {
  for (CXmlElement const& child : parent.Children(name, kNamespace)) visit(child);
}
template <class Visit>
void ForEachChild(CElement const& parent, std::string_view name, Visit visit) {
  for (CElement const& child : *parent.GetElements()) {
    if (child.GetName() == name && child.GetNamespace() == kNamespace) visit(child);
  }
}
///@}

template <class Element>
Sums SumUpElements(Element const& orders) {
  Sums sums;
  ForEachChild(orders, "order", [&](Element const& order) {
    ++sums.orders;
    ForEachChild(order, "item", [&](Element const& item) {
      ++sums.items;
      ForEachChild(item, "quantity", [&](Element const& field) { sums.quantity += std::stoull(field.GetText()); });
      ForEachChild(item, "price", [&](Element const& field) { sums.priceE4 += PriceE4(field.GetText()); });
    });
  });
  return sums;
}

Sums ProveTree(Workload& load) {
  CXmlDocument tree;
  Load(tree, load.document.text);
  return SumUpElements(*tree.GetDocumentElement());
}

// ---- Objects

CSmartPtr<CXmlObjectBase> ReadTextByHand(std::string& text) {
  CSmartPtr<COrders> const orders = COrders::CreateInstance();
  orders->FromXmlStream(Bytes(text), text.size());
  return orders.Get();
}

CSmartPtr<CXmlObjectBase> ReadInfosetByHand(CBinaryData const& infoset) {
  CSmartPtr<COrders> const orders = COrders::CreateInstance();
  orders->FromXmlStream(infoset);
  return orders.Get();
}

CSmartPtr<CXmlObjectBase> ReadTextGenerated(std::string& text) {
  return GeneratedOrders::ReadOrders(XmlText(text)).Get();
}

CSmartPtr<CXmlObjectBase> ReadInfosetGenerated(CBinaryData const& infoset) {
  return GeneratedOrders::ReadOrders(infoset).Get();
}

CXmlSerializationContext ContextOf(Classes const& classes) {
  CXmlSerializationContext context;
  if (classes.areClassic) context.SetValueRules(ValueRules_Classic);
  return context;
}

CXmlSerializationContext const& ClassicContext() {
  static CXmlSerializationContext const context = ContextOf(kClassic);
  return context;
}

CSmartPtr<CXmlObjectBase> ReadTextClassic(std::string& text) {
  return GeneratedOrders::ReadOrders(XmlText(text), ClassicContext()).Get();
}

CSmartPtr<CXmlObjectBase> ReadInfosetClassic(CBinaryData const& infoset) {
  return GeneratedOrders::ReadOrders(infoset, ClassicContext()).Get();
}

CSmartPtr<CXmlObjectBase> ReadTextGeneric(std::string& text) {
  CSmartPtr<CElement> const orders(new CElement(""));
  orders->FromXml(text.c_str());
  return orders.Get();
}

CSmartPtr<CXmlObjectBase> ReadInfosetGeneric(CBinaryData const& infoset) {
  CXmlDocument tree;
  tree.LoadXmlStream(infoset.GetData(), infoset.GetLength());
  CSmartPtr<CElement> const orders(new CElement(""));
  orders->CopyXmlElement(tree.GetDocumentElement());
  return orders.Get();
}

CItemCol const& ItemsOf(COrder const& order) { return *order.GetItem(); }
Quillon9::CObjectCol<GeneratedOrders::CItemType> const& ItemsOf(GeneratedOrders::COrderType const& order) {
  return order.GetItem();
}

template <class Orders>
Sums SumUpOrders(Orders const& allOrders) {
  Sums sums;
  for (auto const& order : allOrders) {
    ++sums.orders;
    for (auto const& item : ItemsOf(order)) {
      ++sums.items;
      sums.quantity += static_cast<std::uint64_t>(item.GetQuantity());
      sums.priceE4 += PriceE4(item.GetPrice().ToString());
    }
  }
  return sums;
}

Sums SumUpByHand(CXmlObjectBase const& orders) { return SumUpOrders(*dynamic_cast<COrders const&>(orders).GetOrder()); }

Sums SumUpGeneric(CXmlObjectBase const& orders) { return SumUpElements(dynamic_cast<CElement const&>(orders)); }

Sums SumUpGenerated(CXmlObjectBase const& orders) {
  return SumUpOrders(dynamic_cast<GeneratedOrders::COrders const&>(orders).GetOrder());
}

std::size_t RunRead(Workload& load) {
  load.classes->readText(load.document.text);
  return load.document.text.size();
}

Sums ProveRead(Workload& load) { return load.classes->sumUp(*load.classes->readText(load.document.text)); }

/// Writes as in the original document: the namespace of the schema is the default one.
CBinaryData Write(Workload const& load) {
  CXmlSerializationContext context = ContextOf(*load.classes);
  context.SetDefaultNamespaceURI(kNamespace);
  return load.objects->ToXmlStream(true, load.indented, XmlEncoding_UTF8, EOLType_LF, context);
}

std::size_t RunWrite(Workload& load) { return Write(load).GetLength(); }

Sums ProveWrite(Workload& load) { return load.classes->sumUp(*load.classes->readInfoset(Write(load))); }

// The suggested alphabet for dates lacks "." and "+", which occur in the times of orders.
void SuggestEncodings(CFastInfosetContext& context) {
  context.SetSuggestedValues();
  context.SetEncoding(ItemType_datetime, {});
}

CBinaryData WriteAsInfoset(Workload const& load, bool suggested = false,
                           CompressionType compression = CompressionType_None) {
  CXmlSerializationContext context = ContextOf(*load.classes);
  if (suggested) SuggestEncodings(*context.GetFIContext());
  return load.objects->ToFastInfosetStream(FInfoDecl_None, context, compression);
}

std::size_t RunReadInfoset(Workload& load) {
  load.classes->readInfoset(load.infoset);
  return load.document.text.size();
}

Sums ProveReadInfoset(Workload& load) { return load.classes->sumUp(*load.classes->readInfoset(load.infoset)); }

std::size_t RunWriteInfoset(Workload& load) {
  return WriteAsInfoset(load).GetLength() != 0 ? load.document.text.size() : 0;
}

Sums ProveWriteInfoset(Workload& load) { return load.classes->sumUp(*load.classes->readInfoset(WriteAsInfoset(load))); }

}  // namespace

void Workload::WriteInfoset() {
  if (objects == nullptr) ReadObjects();
  infoset = WriteAsInfoset(*this);
}

std::vector<SizeRow> SizesOf(Workload& load) {
  load.ReadObjects();
  std::size_t const gzipText = load.objects
                                   ->ToXmlStream(true, load.indented, XmlEncoding_UTF8, EOLType_LF,
                                                 CXmlSerializationContext::m_defaultContext, CompressionType_GZip)
                                   .GetLength();
  return {{"XML", load.document.text.size()},
          {"Fast Infoset", WriteAsInfoset(load).GetLength()},
          {"Fast Infoset, suggested encodings", WriteAsInfoset(load, true).GetLength()},
          {"XML, gzip", gzipText},
          {"Fast Infoset, gzip", WriteAsInfoset(load, false, CompressionType_GZip).GetLength()},
          {"Fast Infoset, suggested, gzip", WriteAsInfoset(load, true, CompressionType_GZip).GetLength()}};
}

Workload::Workload(std::uint64_t bytes, bool isIndented, Classes const& boundClasses)
    : indented(isIndented), document(GenerateOrders(bytes, isIndented)), classes(&boundClasses) {}

void Workload::UseClasses(Classes const& boundClasses) {
  if (classes != &boundClasses) objects = nullptr;
  classes = &boundClasses;
}

void Workload::ReadObjects() { objects = classes->readText(document.text); }

Classes const kByHand = {"by hand", ReadTextByHand, ReadInfosetByHand, SumUpByHand, false};
Classes const kGenerated = {"generated", ReadTextGenerated, ReadInfosetGenerated, SumUpGenerated, false};
Classes const kClassic = {"classic", ReadTextClassic, ReadInfosetClassic, SumUpGenerated, true};
Classes const kGeneric = {"generic", ReadTextGeneric, ReadInfosetGeneric, SumUpGeneric, false};

Operation const kRawExpat = {"expat", false, false, false, RunExpat, ProveExpat};
Operation const kLoadTree = {"tree", false, false, false, RunTree, ProveTree};
Operation const kReadObjects = {"read", false, false, true, RunRead, ProveRead};
Operation const kWriteObjects = {"write", true, false, true, RunWrite, ProveWrite};
Operation const kReadInfoset = {"finf_read", false, true, true, RunReadInfoset, ProveReadInfoset};
Operation const kWriteInfoset = {"finf_write", true, false, true, RunWriteInfoset, ProveWriteInfoset};

}  // namespace Orders
