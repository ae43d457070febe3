// SPDX-License-Identifier: MIT
#include "dcc/xml_library.h"

#include "loading/loaded_library.h"

namespace pelmora::dcc {
namespace {

XmlLibrary load() {
  const LoadedLibrary library(PELMORA_LIBXML2, "libxml2", "XML cannot be read");
  XmlLibrary found{};
  library.find("xmlNewParserCtxt", found.xmlNewParserCtxt);
  library.find("xmlFreeParserCtxt", found.xmlFreeParserCtxt);
  library.find("xmlCtxtReadMemory", found.xmlCtxtReadMemory);
  library.find("xmlStopParser", found.xmlStopParser);
  library.find("xmlDocGetRootElement", found.xmlDocGetRootElement);
  library.find("xmlGetLineNo", found.xmlGetLineNo);
  library.find("xmlFreeDoc", found.xmlFreeDoc);
  return found;
}

}  // namespace

const XmlLibrary& xmlLibrary() {
  static const XmlLibrary library = load();
  return library;
}

}  // namespace pelmora::dcc
