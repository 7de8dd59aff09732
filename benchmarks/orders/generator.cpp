#include "orders/generator.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace Orders {

namespace {

using namespace std::string_view_literals;

constexpr std::array kStatus = {"new"sv,     "confirmed"sv, "packed"sv,   "shipped"sv,
                                "shipped"sv, "shipped"sv,   "returned"sv, "cancelled"sv};
constexpr std::array kCurrency = {"EUR"sv, "EUR"sv, "EUR"sv, "USD"sv, "USD"sv,
                                  "GBP"sv, "CHF"sv, "SEK"sv, "JPY"sv, "PLN"sv};
constexpr std::array kFirstName = {"Anna"sv,      "Ben"sv,    "Carla"sv, "David"sv,    "Emma"sv,  "Felix"sv,
                                   "Grace"sv,     "Hugo"sv,   "Ines"sv,  "Jonas"sv,    "Karin"sv, "Liam"sv,
                                   "Maria"sv,     "Noah"sv,   "Olga"sv,  "Paul"sv,     "Rosa"sv,  "Samuel"sv,
                                   "Tina"sv,      "Walter"sv, "Jörg"sv,  "François"sv, "Björn"sv, "Zoë"sv,
                                   "Agnieszka"sv, "Łukasz"sv, "José"sv,  "Máire"sv};
constexpr std::array kLastName = {"Smith"sv,  "Becker"sv, "Rossi"sv,  "Garcia"sv,    "Kowalski"sv,  "Jansen"sv,
                                  "Novak"sv,  "Martin"sv, "Dubois"sv, "Andersson"sv, "Fischer"sv,   "Moreau"sv,
                                  "Silva"sv,  "Horvat"sv, "Walker"sv, "Hughes"sv,    "Meyer"sv,     "Weber"sv,
                                  "Müller"sv, "Groß"sv,   "Núñez"sv,  "Sørensen"sv,  "Dąbrowski"sv, "Šimůnek"sv};
constexpr std::array kFirm = {
    "Nordlicht Handel GmbH"sv,   "Blue Harbour Trading Ltd"sv, "Contoured Parts Inc"sv,
    "Rapid Supply Co"sv,         "Baker &amp; Sons Ltd"sv,     "Hill &amp; Dale Furnishings"sv,
    "Müller &amp; Söhne KG"sv,   "Café Crème SARL"sv,          "Fjördur ehf"sv,
    "Ostrava Střed s.r.o."sv,    "東京商事株式会社"sv,         "Αθηναϊκή Εμπορική"sv,
    "Tools &lt;Direct&gt; BV"sv, "Green Field Organics"sv,     "Northern Paper Mill"sv,
    "Studio Quattro Srl"sv};
constexpr std::array kStreet = {"Main Street"sv,          "High Street"sv,    "Station Road"sv,  "Mill Lane"sv,
                                "Park Avenue"sv,          "Church Road"sv,    "Lindenweg"sv,     "Hauptstraße"sv,
                                "Rue de la République"sv, "Via Garibaldi"sv,  "Calle Mayor"sv,   "Kungsgatan"sv,
                                "Dorpsstraat"sv,          "Bahnhofstrasse"sv, "Victoria Road"sv, "Quai d&apos;Orsay"sv};

struct Place {
  std::string_view city;
  std::string_view postalCode;
  std::string_view country;
};
constexpr std::array kPlace = {
    Place{"London", "SW1A 1AA", "GB"}, Place{"Manchester", "M1 2AB", "GB"}, Place{"Leeds", "LS1 4DY", "GB"},
    Place{"Berlin", "10115", "DE"},    Place{"Hamburg", "20095", "DE"},     Place{"München", "80331", "DE"},
    Place{"Köln", "50667", "DE"},      Place{"Paris", "75001", "FR"},       Place{"Lyon", "69002", "FR"},
    Place{"Madrid", "28013", "ES"},    Place{"Málaga", "29015", "ES"},      Place{"Roma", "00184", "IT"},
    Place{"Milano", "20121", "IT"},    Place{"Stockholm", "111 22", "SE"},  Place{"Göteborg", "411 05", "SE"},
    Place{"Warszawa", "00-001", "PL"}, Place{"Łódź", "90-001", "PL"},       Place{"Amsterdam", "1012 JS", "NL"},
    Place{"Boston", "02108", "US"},    Place{"Denver", "80202", "US"},      Place{"Seattle", "98101", "US"},
    Place{"東京", "100-0001", "JP"},   Place{"Zürich", "8001", "CH"},       Place{"Αθήνα", "105 57", "GR"}};

constexpr std::array kComment = {"Please deliver before noon."sv,
                                 "Handle with care"sv,
                                 "Gift wrap in blue paper, no invoice in the box."sv,
                                 "Replace if &quot;Oak&quot; is out of stock"sv,
                                 "Size &lt; 40 only"sv,
                                 "Leave at the back door &amp; ring twice"sv,
                                 "Lieferung bitte gegenüber abgeben"sv,
                                 "Customer has asked for the older model; see ticket 20391."sv,
                                 "Colour: anthracite"sv,
                                 "Référence &#233;tiquetée"sv,
                                 "Second delivery attempt after the holiday closure, confirm by phone first"sv,
                                 "none"sv,
                                 "Bulk order, one invoice for all positions"sv};
constexpr std::array kZone = {"Z"sv, "Z"sv, "+01:00"sv, "+02:00"sv, "-05:00"sv, "+09:00"sv};
constexpr std::string_view kUpper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// A 64-bit linear congruential generator, of which the top bits are used.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15U + 0x1234567U) {}

  std::uint64_t Below(std::uint64_t limit) { return ((Step() >> 33) * limit) >> 31; }
  bool OneIn(std::uint64_t limit) { return Below(limit) == 0; }
  template <class Table>
  auto const& Pick(Table const& table) {
    return table[Below(table.size())];
  }
  std::string Bytes(std::uint64_t count) {
    std::string bytes;
    while (bytes.size() < count) {
      std::uint64_t const step = Step() >> 24;
      for (int i = 0; i < 5; ++i) bytes.push_back(static_cast<char>(step >> (8 * i)));
    }
    bytes.resize(count);
    return bytes;
  }

 private:
  std::uint64_t Step() { return m_state = m_state * 6364136223846793005U + 1442695040888963407U; }

  std::uint64_t m_state;
};

/// Independent of the library's encoder, which is under test.
std::string Base64(std::string_view bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::string_view const group = bytes.substr(i, 3);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k)
      bits = bits << 8 | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k) text.push_back(k <= group.size() ? kBase64[bits >> (18 - 6 * k) & 63] : '=');
  }
  return text;
}

struct Padded {
  std::uint64_t value;
  std::size_t width;
};

class Writer {
 public:
  Writer(std::uint64_t bytes, bool indented, std::uint64_t seed) : m_chance(seed), m_indented(indented) {
    m_document.text.reserve(bytes + kLargestOrder);
  }

  Document Write(std::uint64_t bytes) {
    constexpr std::string_view kTail = "</orders>\n";
    Add("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    Line(0, "<orders xmlns=\"urn:example:orders\">");
    while (m_document.text.size() + kTail.size() < bytes) Order();
    Add(kTail);
    return std::move(m_document);
  }

 private:
  static constexpr std::size_t kLargestOrder = 32768;

  void Add(std::string_view text) { m_document.text.append(text); }
  void Add(char character) { m_document.text.push_back(character); }
  void Add(std::uint64_t number) { Add(std::string_view(std::to_string(number))); }
  void Add(Padded number) {
    std::string const digits = std::to_string(number.value);
    if (digits.size() < number.width) m_document.text.append(number.width - digits.size(), '0');
    Add(std::string_view(digits));
  }

  template <class... Parts>
  void Line(std::size_t depth, Parts const&... parts) {
    if (m_indented) m_document.text.append(depth, '\t');
    (Add(parts), ...);
    if (m_indented) Add('\n');
  }

  // The order of the calls of m_chance decides the document, so each call is a separate statement.

  void Order() {
    std::uint64_t const number = ++m_document.sums.orders;
    std::uint64_t const year = 2019 + m_chance.Below(7);
    std::uint64_t const month = 1 + m_chance.Below(12);
    std::uint64_t const day = 1 + m_chance.Below(28);
    Place const& place = m_chance.Pick(kPlace);
    std::string_view const status = m_chance.Pick(kStatus);
    std::string_view const currency = m_chance.Pick(kCurrency);
    Line(1, "<order id=\""sv, 1000000 + number, "\" status=\""sv, status, "\" currency=\""sv, currency, "\">"sv);
    Line(2, "<date>"sv, Padded{year, 4}, '-', Padded{month, 2}, '-', Padded{day, 2}, "</date>"sv);
    std::uint64_t const hour = m_chance.Below(24);
    std::uint64_t const minute = m_chance.Below(60);
    std::uint64_t const second = m_chance.Below(60);
    std::uint64_t const millisecond = 1 + m_chance.Below(999);
    std::string_view const zone = m_chance.Pick(kZone);
    Line(2, "<placed>"sv, Padded{year, 4}, '-', Padded{month, 2}, '-', Padded{day, 2}, 'T', Padded{hour, 2}, ':',
         Padded{minute, 2}, ':', Padded{second, 2}, '.', Padded{millisecond, 3}, zone, "</placed>"sv);
    Customer(place);
    std::uint64_t const items = 1 + m_chance.Below(12);
    for (std::uint64_t i = 0; i < items; ++i) Item();
    Line(1, "</order>"sv);
  }

  void Customer(Place const& place) {
    Line(2, "<customer>"sv);
    if (m_chance.OneIn(3)) {
      Line(3, "<name>"sv, m_chance.Pick(kFirm), "</name>"sv);
    } else {
      std::string_view const first = m_chance.Pick(kFirstName);
      Line(3, "<name>"sv, first, ' ', m_chance.Pick(kLastName), "</name>"sv);
    }
    if (!m_chance.OneIn(4)) {
      std::uint64_t const user = m_chance.Below(1000000);
      Line(3, "<email>user"sv, user, "@mail"sv, m_chance.Below(40), ".example</email>"sv);
    }
    Line(3, "<address>"sv);
    std::uint64_t const house = 1 + m_chance.Below(250);
    Line(4, "<street>"sv, house, ' ', m_chance.Pick(kStreet), "</street>"sv);
    Line(4, "<city>"sv, place.city, "</city>"sv);
    Line(4, "<postalCode>"sv, place.postalCode, "</postalCode>"sv);
    Line(4, "<country>"sv, place.country, "</country>"sv);
    Line(3, "</address>"sv);
    Line(2, "</customer>"sv);
  }

  void Item() {
    bool const large = m_chance.OneIn(8);
    std::uint64_t const quantity = 1 + m_chance.Below(large ? 2000 : 20);
    bool const fourDigits = m_chance.OneIn(10);
    std::uint64_t const cents = 50 + m_chance.Below(99950);
    std::uint64_t const priceE4 = cents * 100 + (fourDigits ? m_chance.Below(100) : 0);
    Line(2, "<item>"sv);
    std::uint64_t const number = m_chance.Below(1000);
    char const first = m_chance.Pick(kUpper);
    Line(3, "<sku>"sv, Padded{number, 3}, '-', first, m_chance.Pick(kUpper), "</sku>"sv);
    Line(3, "<quantity>"sv, quantity, "</quantity>"sv);
    if (fourDigits) {
      Line(3, "<price>"sv, priceE4 / 10000, '.', Padded{priceE4 % 10000, 4}, "</price>"sv);
    } else {
      Line(3, "<price>"sv, cents / 100, '.', Padded{cents % 100, 2}, "</price>"sv);
    }
    Line(3, "<weight>"sv, std::string_view(Thousandths(5 + m_chance.Below(45000))), "</weight>"sv);
    if (m_chance.OneIn(5)) Line(3, "<comment>"sv, m_chance.Pick(kComment), "</comment>"sv);
    Line(3, "<gift>"sv, m_chance.OneIn(6) ? "true"sv : "false"sv, "</gift>"sv);
    if (m_chance.OneIn(40)) {
      std::uint64_t const length = 48 + m_chance.Below(700);
      Line(3, "<label>"sv, std::string_view(Base64(m_chance.Bytes(length))), "</label>"sv);
    }
    Line(2, "</item>"sv);
    ++m_document.sums.items;
    m_document.sums.quantity += quantity;
    m_document.sums.priceE4 += priceE4;
  }

  /// \p value / 1000 without needless zeros, but with at least one digit after the point.
  static std::string Thousandths(std::uint64_t value) {
    std::string text = std::to_string(1000 + value % 1000).replace(0, 1, ".");
    while (text.size() > 2 && text.back() == '0') text.pop_back();
    return std::to_string(value / 1000) + text;
  }

  Chance m_chance;
  bool m_indented;
  Document m_document;
};

}  // namespace

bool Sums::operator==(Sums const& other) const {
  return orders == other.orders && items == other.items && quantity == other.quantity && priceE4 == other.priceE4;
}

std::string Sums::ToString() const {
  return std::to_string(orders) + " orders, " + std::to_string(items) + " items, q" + std::to_string(quantity) + ":p" +
         std::to_string(priceE4);
}

Document GenerateOrders(std::uint64_t bytes, bool indented, std::uint64_t seed) {
  return Writer(bytes, indented, seed).Write(bytes);
}

std::uint64_t PriceE4(std::string const& price) {
  std::size_t const point = std::min(price.find('.'), price.size());
  std::string fraction = price.substr(std::min(point + 1, price.size()));
  fraction.resize(4, '0');
  return std::stoull(price.substr(0, point)) * 10000 + std::stoull(fraction);
}

}  // namespace Orders
