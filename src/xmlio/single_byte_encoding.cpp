#include "xmlio/single_byte_encoding.h"

#include <iconv.h>
#include <strings.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <new>
#include <string>

namespace Quillon9 {

namespace {

constexpr std::size_t kLongestName = 40;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Others have a meaning of their own for the converter: a slash starts options, a blank name is that of the locale.
bool IsNameCharacter(char c) { return IsDigit(c) || IsLetter(c) || std::strchr("._:-", c) != nullptr; }

// Whether the name is one of a limited number, among them all that are usual in documents.
bool IsInFamily(std::string_view name) {
  for (std::string_view const family : {"windows-", "iso-8859-", "koi8-", "cp", "ibm"}) {
    if (name.size() <= family.size() || strncasecmp(name.data(), family.data(), family.size()) != 0) continue;
    std::string_view const rest = name.substr(family.size());
    return (rest.size() <= 4 && std::all_of(rest.begin(), rest.end(), IsDigit)) ||
           (rest.size() <= 2 && std::all_of(rest.begin(), rest.end(), IsLetter));
  }
  return false;
}

// Without its cache file, the converter of glibc remembers each name that it does not know until the process ends, and
// names come from documents. So only that many unusual names are tried in vain.
constexpr int kMostUnknownNames = 10000;
std::atomic<int> g_unknownNames{0};

class Converter {
 public:
  explicit Converter(std::string const& name) : m_descriptor(iconv_open("UCS-4LE", name.c_str())) {
    if (!IsOpen() && errno == ENOMEM) throw std::bad_alloc();
  }
  ~Converter() {
    if (IsOpen()) iconv_close(m_descriptor);
  }
  Converter(Converter const&) = delete;
  Converter& operator=(Converter const&) = delete;

  bool IsOpen() const { return m_descriptor != reinterpret_cast<iconv_t>(-1); }

  /// The character of a byte, or -1 for none. False if the byte is only a part of a character, or stands for several.
  bool Decode(char byte, int& character) {
    char* from = &byte;
    std::size_t left = 1;
    unsigned char bytes[16];
    char* to = reinterpret_cast<char*>(bytes);
    std::size_t room = sizeof bytes;
    iconv(m_descriptor, nullptr, nullptr, nullptr, nullptr);  // back to the initial state
    character = -1;
    if (iconv(m_descriptor, &from, &left, &to, &room) == static_cast<std::size_t>(-1)) return errno == EILSEQ;
    iconv(m_descriptor, nullptr, nullptr, &to, &room);  // a letter may wait for an accent
    if (sizeof bytes - room != 4) return false;
    character =
        static_cast<int>(std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16);
    return bytes[3] == 0;
  }

 private:
  iconv_t m_descriptor;
};

}  // namespace

bool FillSingleByteTable(std::string_view name, int (&table)[256]) {
  if (name.empty() || name.size() > kLongestName || !std::all_of(name.begin(), name.end(), IsNameCharacter)) {
    return false;
  }
  bool const isUsual = IsInFamily(name);
  if (!isUsual && g_unknownNames >= kMostUnknownNames) return false;
  Converter converter{std::string(name)};
  if (!converter.IsOpen()) {
    if (!isUsual) ++g_unknownNames;
    return false;
  }
  for (int byte = 0; byte < 256; ++byte) {
    if (!converter.Decode(static_cast<char>(byte), table[byte])) return false;
  }
  return true;
}

}  // namespace Quillon9
