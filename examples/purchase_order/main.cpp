// Reads a purchase order into objects, changes it, writes it and reads it back, as text and compressed, and shows the
// failures for damaged documents.
//
//   purchase_order [document]

#include <langinfo.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "order_types.h"

using namespace Orders;
using namespace Quillon9;

namespace {

void PrintHeading(std::string const& text) {
  std::printf("\n%s\n%s\n", text.c_str(), std::string(text.size(), '-').c_str());
}

// ---- An order as a table

/// Return the columns that \p text takes on a terminal: its bytes are in the code page of the locale.
std::size_t ColumnsOf(std::string const& text) {
  std::wstring wide(text.size(), L'\0');
  std::size_t const length = std::mbstowcs(wide.data(), text.c_str(), wide.size());
  int const columns = length == static_cast<std::size_t>(-1) ? -1 : wcswidth(wide.c_str(), length);
  return columns < 0 ? text.size() : static_cast<std::size_t>(columns);
}

using Row = std::vector<std::string>;

void PrintTable(std::vector<Row> rows, std::vector<bool> const& alignRight) {
  std::vector<std::size_t> widths(alignRight.size(), 0);
  for (Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      row[i] = CWhitespaceUtils::Collapse(row[i]);  // puts a text of several lines on one line
      widths[i] = std::max(widths[i], ColumnsOf(row[i]));
    }
  }
  for (Row const& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      std::string const padding(widths[i] - ColumnsOf(row[i]), ' ');
      line += "  " + (alignRight[i] ? padding + row[i] : row[i] + padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    std::printf("%s\n", line.c_str());
  }
}

std::string AddressText(CUSAddress const* address) {
  if (address == nullptr) return "as above";
  return address->GetName() + ", " + address->GetStreet() + ", " + address->GetCity() + ", " + address->GetState() +
         " " + address->GetZip() + ", " + address->GetCountry().value_or("US");
}

std::string DateText(std::optional<CDateTime> const& date, char const* otherwise) {
  return date ? date->ToString() : otherwise;
}

std::string SerialText(CstringCol const& serials) {
  std::string text;
  for (std::string const& serial : serials) text += (text.empty() ? "" : ", ") + serial;
  return text;
}

void PrintOrder(CPurchaseOrderType const& order) {
  PrintTable({{"Ordered", DateText(order.GetOrderDate(), "(no date)")},
              {"Ship to", AddressText(order.GetShipTo())},
              {"Bill to", AddressText(order.GetBillTo())},
              {"Comment", order.GetComment().value_or("(none)")}},
             {false, false});
  std::printf("\n");
  std::vector<Row> rows = {{"Part", "Product", "Quantity", "Price/USD", "Ships", "Serial", "Comment"}};
  for (CItem const& item : *order.GetItems()->GetItem()) {
    rows.push_back({item.GetPartNum(), item.GetProductName(), std::to_string(item.GetQuantity()),
                    item.GetUSPrice().ToString(), DateText(item.GetShipDate(), "-"), SerialText(*item.GetSerial()),
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

std::vector<Field> FieldsOf(CPurchaseOrderType const& order) {
  std::vector<Field> fields = {{"orderDate", DateText(order.GetOrderDate(), "")}, {"comment", order.GetComment()}};
  AppendAddress(fields, "shipTo", order.GetShipTo());
  AppendAddress(fields, "billTo", order.GetBillTo());
  int number = 0;
  for (CItem const& item : *order.GetItems()->GetItem()) {
    std::string const path = "item " + std::to_string(++number);
    fields.insert(fields.end(), {{path + "/partNum", item.GetPartNum()},
                                 {path + "/productName", item.GetProductName()},
                                 {path + "/quantity", std::to_string(item.GetQuantity())},
                                 {path + "/USPrice", item.GetUSPrice().ToString()},
                                 {path + "/comment", item.GetComment()},
                                 {path + "/shipDate", DateText(item.GetShipDate(), "")},
                                 {path + "/serial", SerialText(*item.GetSerial())}});
  }
  return fields;
}

/// Return whether both orders have the same contents. Print what differs.
bool Compare(CPurchaseOrderType const& before, CPurchaseOrderType const& after) {
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

void Change(CPurchaseOrderType& order) {
  order.SetComment("Changed by telephone: one gnome more, and all to the same bill");
  if (order.GetBillTo() == nullptr) {
    order.SetBillTo(CUSAddress::CreateInstance("billTo"));
    order.GetBillTo()->SetName("Garden Supplies");
    order.GetBillTo()->SetStreet("1 Main Street");
    order.GetBillTo()->SetCity("Salida");
    order.GetBillTo()->SetState("CO");
    order.GetBillTo()->SetZip("81201");
  }
  CSmartPtr<CItem> const gnome = order.GetItems()->GetItem()->Add();
  gnome->SetPartNum("592-GN");
  gnome->SetProductName("Garden gnome \"Hakon\", 30 < 40 cm");
  gnome->SetQuantity(2);
  gnome->SetUSPrice("24.95");
  gnome->SetComment("Red cap & green coat");
}

bool WriteAndReadText(CPurchaseOrderType const& order) {
  std::string const text = order.ToXml();
  std::printf("%s\n", text.c_str());
  CSmartPtr<CPurchaseOrderType> const again = CPurchaseOrderType::CreateInstance();
  again->FromXml(text.c_str());
  return Compare(order, *again);
}

bool WriteAndReadCompressed(CPurchaseOrderType const& order) {
  CBinaryData const plain = order.ToXmlStream();
  CBinaryData const gzip = order.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                             CXmlSerializationContext::m_defaultContext, CompressionType_GZip);
  std::printf("%lu bytes of XML, %lu bytes of gzip.\n", plain.GetLength(), gzip.GetLength());
  CSmartPtr<CPurchaseOrderType> const again = CPurchaseOrderType::CreateInstance();
  again->FromXmlStream(gzip);  // detects the compression by itself
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
    CPurchaseOrderType::CreateInstance()->FromXml(text.c_str());
  } catch (CQnException const& failure) {
    PrintChain(failure);
    return true;
  }
  std::printf("  was read without a failure\n");
  return false;
}

/// Return whether writing an order with a broken facet fails, as it should. Changes \p order.
bool FailsToWrite(char const* what, CPurchaseOrderType& order) {
  std::printf("%s:\n", what);
  CItemCol const* const items = order.GetItems()->GetItem();
  items->Item(items->GetCount() - 1)->SetQuantity(100);
  try {
    order.ToXml();
  } catch (CQnException const& failure) {
    PrintChain(failure);
    return true;
  }
  std::printf("  was written without a failure\n");
  return false;
}

bool ShowFailures(CPurchaseOrderType& order) {
  std::string const good = order.ToXml();
  bool ok = FailsToRead("An item without its quantity", Damage(good, "<quantity>", "</quantity>", ""));
  ok &= FailsToRead("A misspelt element", Damage(good, "<comment>", "</comment>", "<coment>red</coment>"));
  ok &= FailsToRead("A quantity that is no number",
                    Damage(good, "<quantity>", "</quantity>", "<quantity>two</quantity>"));
  ok &= FailsToRead("A document that is cut off", good.substr(0, good.rfind("</item>")));
  ok &= FailsToWrite("A quantity beyond the schema's bound, when it is written", order);
  return ok;
}

bool Run(char const* path) {
  CSmartPtr<CPurchaseOrderType> const order = CPurchaseOrderType::CreateInstance();
  order->FromXmlFile(path);
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
    return Run(argc == 2 ? argv[1] : PURCHASE_ORDER_DOCUMENT) ? 0 : 1;
  } catch (CQnException const& failure) {
    std::fprintf(stderr, "%s\n", failure.GetFullMessage().c_str());
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
  }
  return 1;
}
