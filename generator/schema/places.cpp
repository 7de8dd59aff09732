#include "schema/places.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <new>

namespace Quillon9Generator::Schema {

namespace {

struct ParserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

struct Pass {
  XML_Parser parser;
  TagPlaces result;
  bool outOfMemory = false;
};

TagPlace Current(XML_Parser parser) {
  return {static_cast<int>(XML_GetCurrentLineNumber(parser)), static_cast<int>(XML_GetCurrentColumnNumber(parser)) + 1};
}

void XMLCALL OnStartTag(void* self, XML_Char const*, XML_Char const**) {
  auto& pass = *static_cast<Pass*>(self);
  try {
    pass.result.places.push_back(Current(pass.parser));
  } catch (std::bad_alloc const&) {
    pass.outOfMemory = true;
    XML_StopParser(pass.parser, XML_FALSE);
  }
}

// The tree knows more encodings than expat. Only places are wanted here, so any letter stands for each of their bytes.
int XMLCALL OnUnknownEncoding(void*, XML_Char const*, XML_Encoding* info) {
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
  Pass pass{parser.get(), {}};
  XML_SetUserData(parser.get(), &pass);
  XML_SetStartElementHandler(parser.get(), OnStartTag);
  XML_SetUnknownEncodingHandler(parser.get(), OnUnknownEncoding, nullptr);
  XML_Status const status = Feed(parser.get(), xml);
  if (pass.outOfMemory) throw std::bad_alloc();
  if (status != XML_STATUS_OK) {
    pass.result.malformed = {Current(parser.get()), XML_ErrorString(XML_GetErrorCode(parser.get()))};
  }
  return std::move(pass.result);
}

}  // namespace Quillon9Generator::Schema
