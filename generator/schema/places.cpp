#include "schema/places.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace Quillon9Generator::Schema {

namespace {

struct ParserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

struct Pass {
  XML_Parser parser = nullptr;
  TagPlaces result;
  int depth = 0;            // within an element called documentation; 0 outside
  std::size_t element = 0;  // the number of its start tag
  std::string text;         // of it
  bool knowsEncoding = true;
  bool outOfMemory = false;
};

bool IsDocumentation(std::string_view name) {
  std::size_t const colon = name.find(':');
  return (colon == std::string_view::npos ? name : name.substr(colon + 1)) == "documentation";
}

/// No exception passes through expat.
template <class Action>
void Guarded(void* self, Action action) noexcept {
  auto& pass = *static_cast<Pass*>(self);
  try {
    action(pass);
  } catch (std::bad_alloc const&) {
    pass.outOfMemory = true;
    XML_StopParser(pass.parser, XML_FALSE);
  }
}

TagPlace Current(XML_Parser parser) {
  return {static_cast<int>(XML_GetCurrentLineNumber(parser)), static_cast<int>(XML_GetCurrentColumnNumber(parser)) + 1};
}

void XMLCALL OnStartTag(void* self, XML_Char const* name, XML_Char const**) {
  Guarded(self, [=](Pass& pass) {
    pass.result.places.push_back(Current(pass.parser));
    if (pass.depth != 0) {
      ++pass.depth;
    } else if (IsDocumentation(name)) {
      pass.depth = 1;
      pass.element = pass.result.places.size() - 1;
    }
  });
}

void XMLCALL OnEndTag(void* self, XML_Char const*) {
  Guarded(self, [](Pass& pass) {
    if (pass.depth == 0 || --pass.depth != 0) return;
    bool const hasChild = pass.result.places.size() - 1 != pass.element;
    if (hasChild && pass.knowsEncoding) pass.result.documentation[pass.element] = pass.text;
    pass.text.clear();
  });
}

void XMLCALL OnText(void* self, XML_Char const* text, int length) {
  Guarded(self, [=](Pass& pass) {
    if (pass.depth != 0) pass.text.append(text, static_cast<std::size_t>(length));
  });
}

// The tree knows more encodings than expat. Places are what matters here, so one letter stands for each of their bytes
// beyond ASCII.
int XMLCALL OnUnknownEncoding(void* self, XML_Char const*, XML_Encoding* info) {
  static_cast<Pass*>(self)->knowsEncoding = false;
  constexpr int kLetter = 0xE4;
  constexpr int kFirstBeyondAscii = 0x80;
  for (int byte = 0; byte != kFirstBeyondAscii; ++byte) info->map[byte] = byte;
  std::fill(info->map + kFirstBeyondAscii, std::end(info->map), kLetter);
  info->data = nullptr;
  info->convert = nullptr;
  info->release = nullptr;
  return XML_STATUS_OK;
}

XML_Status Feed(XML_Parser parser, std::string_view xml) {
  constexpr std::size_t kSlice = 0x10000000;  // the length of a call is an int
  XML_Status status;
  do {
    std::string_view const slice = xml.substr(0, kSlice);
    xml.remove_prefix(slice.size());
    status = XML_Parse(parser, slice.data(), static_cast<int>(slice.size()), xml.empty());
  } while (status == XML_STATUS_OK && !xml.empty());
  return status;
}

}  // namespace

TagPlaces FindTags(std::string_view xml) {
  std::unique_ptr<XML_ParserStruct, ParserDeleter> const parser(XML_ParserCreate(nullptr));
  if (parser == nullptr) throw std::bad_alloc();
  Pass pass;
  pass.parser = parser.get();
  XML_SetUserData(parser.get(), &pass);
  XML_SetElementHandler(parser.get(), OnStartTag, OnEndTag);
  XML_SetCharacterDataHandler(parser.get(), OnText);
  XML_SetUnknownEncodingHandler(parser.get(), OnUnknownEncoding, &pass);
  XML_Status const status = Feed(parser.get(), xml);
  if (pass.outOfMemory) throw std::bad_alloc();
  if (status != XML_STATUS_OK) {
    pass.result.malformed = {Current(parser.get()), XML_ErrorString(XML_GetErrorCode(parser.get()))};
  }
  return std::move(pass.result);
}

}  // namespace Quillon9Generator::Schema
