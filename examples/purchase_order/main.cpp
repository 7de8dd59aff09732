// Reads a purchase order into objects, changes it, writes it and reads it back, as text and compressed, and shows the
// failures for damaged documents. The classes are generated from purchase_order.xsd while building; their text is UTF-8
// in any locale.
//
//   purchase_order [document]

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "orders.h"
#include "quillon9/quillon9.h"

using namespace Orders;
using namespace Quillon9;

namespace {

void PrintHeading(std::string const& text) {
  std::printf("\n%s\n%s\n", text.c_str(), std::string(text.size(), '-').c_str());
}

// ---- An order as a table

/// Return the number of characters of \p text: those of several bytes in UTF-8 have one that begins them.
std::size_t CharactersOf(std::string const& text) {
  auto const begins = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), begins));
}

using Row = std::vector<std::string>;

void PrintTable(std::vector<Row> rows, std::vector<bool> const& alignRight) {
  std::vector<std::size_t> widths(alignRight.size(), 0);
  for (Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      row[i] = CWhitespaceUtils::Collapse(row[i]);  // puts a text of several lines on one line
      widths[i] = std::max(widths[i], CharactersOf(row[i]));
    }
  }
  for (Row const& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      std::string const padding(widths[i] - CharactersOf(row[i]), ' ');
      line += "  " + (alignRight[i] ? padding + row[i] : row[i] + padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    std::printf("%s\n", line.c_str());
  }
}

std::string AddressText(CUSAddress const* address) {
  if (address == nullptr) return "as above";
  return address->GetName() + ", " + address->GetStreet() + ", " + address->GetCity() + ", " + address->GetState() +
         " " + address->GetZip() + ", " + address->GetCountry();
}

std::string DateText(std::optional<CDateTime> const& date, char const* otherwise) {
  return date ? date->ToString() : otherwise;
}

std::string SerialText(CstringCol const& serials) {
  std::string text;
  for (std::string const& serial : serials) text += (text.empty() ? "" : ", ") + serial;
  return text;
}

void PrintOrder(CPurchaseOrder const& order) {
  PrintTable({{"Ordered", DateText(order.GetOrderDate(), "(no date)")},
              {"Ship to", AddressText(&order.GetShipTo())},
              {"Bill to", AddressText(order.GetBillTo())},
              {"Comment", order.GetComment().value_or("(none)")}},
             {false, false});
  std::printf("\n");
  std::vector<Row> rows = {{"Part", "Product", "Quantity", "Price/USD", "Ships", "Serial", "Comment"}};
  for (CItems::CItem const& item : order.GetItems().GetItem()) {
    rows.push_back({item.GetPartNum(), item.GetProductName(), std::to_string(item.GetQuantity()),
                    item.GetUSPrice().ToString(), DateText(item.GetShipDate(), "-"), SerialText(item.GetSerial()),
                    item.GetComment().value_or("")});
  }
  PrintTable(rows, {false, false, true, true, false, false, false});
}

// ---- Two orders, field by field

struct Field {
  std::string path;
  std::optional<std::string> value;
};

void AppendAddress(std::vector<Field>& fields, std::string const& path, CUSAddress const* address) {
  if (address == nullptr) return fields.push_back({path, std::nullopt});
  fields.insert(fields.end(), {{path + "/country", address->GetCountry()},
                               {path + "/name", address->GetName()},
                               {path + "/street", address->GetStreet()},
                               {path + "/city", address->GetCity()},
                               {path + "/state", address->GetState()},
                               {path + "/zip", address->GetZip()}});
}

std::vector<Field> FieldsOf(CPurchaseOrder const& order) {
  std::vector<Field> fields = {{"orderDate", DateText(order.GetOrderDate(), "")}, {"comment", order.GetComment()}};
  AppendAddress(fields, "shipTo", &order.GetShipTo());
  AppendAddress(fields, "billTo", order.GetBillTo());
  int number = 0;
  for (CItems::CItem const& item : order.GetItems().GetItem()) {
    std::string const path = "item " + std::to_string(++number);
    fields.insert(fields.end(), {{path + "/partNum", item.GetPartNum()},
                                 {path + "/productName", item.GetProductName()},
                                 {path + "/quantity", std::to_string(item.GetQuantity())},
                                 {path + "/USPrice", item.GetUSPrice().ToString()},
                                 {path + "/comment", item.GetComment()},
                                 {path + "/shipDate", DateText(item.GetShipDate(), "")},
                                 {path + "/serial", SerialText(item.GetSerial())}});
  }
  return fields;
}

/// Return whether both orders have the same contents. Print what differs.
bool Compare(CPurchaseOrder const& before, CPurchaseOrder const& after) {
  std::vector<Field> const left = FieldsOf(before);
  std::vector<Field> const right = FieldsOf(after);
  std::size_t differences = std::max(left.size(), right.size()) - std::min(left.size(), right.size());
  for (std::size_t i = 0; i < std::min(left.size(), right.size()); ++i) {
    if (left[i].path == right[i].path && left[i].value == right[i].value) continue;
    ++differences;
    std::printf("  %s was [%s], now %s is [%s]\n", left[i].path.c_str(), left[i].value.value_or("").c_str(),
                right[i].path.c_str(), right[i].value.value_or("").c_str());
  }
  std::printf("Read again: %zu fields compared, %zu differ.\n", left.size(), differences);
  return differences == 0;
}

// ---- The steps

void Change(CPurchaseOrder& order) {
  order.SetComment("Changed by telephone: one gnome more, and all to the same bill");
  if (order.GetBillTo() == nullptr) {
    CUSAddress& address = order.CreateBillTo();
    address.SetName("Garden Supplies");
    address.SetStreet("1 Main Street");
    address.SetCity("Salida");
    address.SetState("CO");
    address.SetZip("81201");
  }
  CItems::CItem& gnome = order.GetItems().GetItem().Add();
  gnome.SetPartNum("592-GN");
  gnome.SetProductName("Garden gnome \"Håkon\", 30 < 40 cm");
  gnome.SetQuantity(2);
  gnome.SetUSPrice("24.95");
  gnome.SetComment("Red cap & green coat");
}

bool WriteAndReadText(CPurchaseOrder const& order) {
  std::string const text = order.ToXml();
  std::printf("%s\n", text.c_str());
  CSmartPtr<CPurchaseOrder> const again = ReadPurchaseOrder(XmlText(text));
  return Compare(order, *again);
}

bool WriteAndReadCompressed(CPurchaseOrder const& order) {
  CBinaryData const plain = order.ToXmlStream();
  CBinaryData const gzip = order.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                             CXmlSerializationContext::m_defaultContext, CompressionType_GZip);
  std::printf("%lu bytes of XML, %lu bytes of gzip.\n", plain.GetLength(), gzip.GetLength());
  CSmartPtr<CPurchaseOrder> const again = ReadPurchaseOrder(gzip);  // detects the compression by itself
  return Compare(order, *again);
}

/// Print \p failure and its causes, outermost first.
void PrintChain(CQnException const& failure) {
  std::string text = failure.GetFullMessage();
  for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 3)) {
    text.insert(end + 1, "  ");
  }
  std::printf("  %s\n", text.c_str());
}

/// Return \p text with the last \p from up to the end of \p to replaced: the item that Change() added is the last one.
std::string Damage(std::string text, std::string const& from, std::string const& to, std::string const& replacement) {
  std::size_t const begin = text.rfind(from);
  return text.replace(begin, text.find(to, begin) + to.size() - begin, replacement);
}

/// Return whether reading \p text fails, as it should.
bool FailsToRead(char const* what, std::string const& text) {
  std::printf("%s:\n", what);
  try {
    ReadPurchaseOrder(XmlText(text));
  } catch (CQnException const& failure) {
    PrintChain(failure);
    return true;
  }
  std::printf("  was read without a failure\n");
  return false;
}

/// Return whether setting a value that breaks a facet fails, as it should.
bool FailsToSet(char const* what, CItems::CItem& item) {
  std::printf("%s:\n", what);
  try {
    item.SetQuantity(100);
  } catch (CQnException const& failure) {
    PrintChain(failure);
    return true;
  }
  std::printf("  was set without a failure\n");
  return false;
}

bool ShowFailures(CPurchaseOrder& order) {
  std::string const good = order.ToXml();
  bool ok = FailsToRead("An item without its quantity", Damage(good, "<quantity>", "</quantity>", ""));
  ok &= FailsToRead("A misspelt element", Damage(good, "<comment>", "</comment>", "<coment>red</coment>"));
  ok &= FailsToRead("A quantity that is no number",
                    Damage(good, "<quantity>", "</quantity>", "<quantity>two</quantity>"));
  ok &= FailsToRead("A document that is cut off", good.substr(0, good.rfind("</item>")));
  ok &= FailsToRead("Another kind of document", "<invoice/>");
  ok &= FailsToSet("A quantity beyond the schema's bound, when it is set", order.GetItems().GetItem().back());
  return ok;
}

bool Run(char const* path) {
  CSmartPtr<CPurchaseOrder> const order = ReadPurchaseOrder(path);
  std::printf("%s\n\n", std::filesystem::path(path).filename().c_str());
  PrintOrder(*order);

  Change(*order);
  PrintHeading("Changed and written");
  bool ok = WriteAndReadText(*order);
  PrintHeading("Compressed");
  ok &= WriteAndReadCompressed(*order);
  PrintHeading("Failures");
  ok &= ShowFailures(*order);
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) {
    std::fprintf(stderr, "usage: %s [document]\n", argv[0]);
    return 1;
  }
  try {
    return Run(argc == 2 ? argv[1] : PURCHASE_ORDER_DOCUMENT) ? 0 : 1;
  } catch (CQnException const& failure) {
    std::fprintf(stderr, "%s\n", failure.GetFullMessage().c_str());
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  }
  return 1;
}
