// The library that parses XML. It is loaded when the first text is read, because it needs a library
// of Unicode tables that takes longer to load than most commands take to run.
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

namespace pelmora::dcc {

// The functions that we need, under their own names.
struct XmlLibrary {
  decltype(&::xmlNewParserCtxt) xmlNewParserCtxt;
  decltype(&::xmlFreeParserCtxt) xmlFreeParserCtxt;
  decltype(&::xmlCtxtReadMemory) xmlCtxtReadMemory;
  decltype(&::xmlStopParser) xmlStopParser;
  decltype(&::xmlDocGetRootElement) xmlDocGetRootElement;
  decltype(&::xmlGetLineNo) xmlGetLineNo;
  decltype(&::xmlFreeDoc) xmlFreeDoc;
};

// Errors: Unusable if it cannot be loaded. Safe from several threads.
[[nodiscard]] const XmlLibrary& xmlLibrary();

}  // namespace pelmora::dcc
