// The library that parses XML, loaded when the first text is read: it brings a library of Unicode
// tables along, whose start takes longer than most commands.
// SPDX-License-Identifier: MIT
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

namespace pelmora::dcc {

// The functions of it that are needed, under their own names.
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
