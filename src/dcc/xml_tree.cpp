// SPDX-License-Identifier: MIT
#include "dcc/xml_tree.h"

#include "dcc/xml_library.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <new>

namespace pelmora::dcc {
namespace {

std::string textOf(const xmlChar* text) {
  return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
}

// What the parser complained of first.
struct Complaint {
  std::string what;
  std::size_t line = 0;
};

Complaint& complaintOf(void* context) {
  return *static_cast<Complaint*>(static_cast<xmlParserCtxtPtr>(context)->_private);
}

// libxml2 2.12 made this parameter const.
template <class LibraryError>
void takeError(void* context, LibraryError* error) {
  if (error == nullptr || error->level < XML_ERR_ERROR) return;
  Complaint& complaint = complaintOf(context);
  if (!complaint.what.empty()) return;
  complaint.what = error->message == nullptr ? "this is not XML" : error->message;
  while (complaint.what.ends_with('\n')) complaint.what.pop_back();
  complaint.line = error->line < 0 ? 0 : static_cast<std::size_t>(error->line);
}

// Called in place of the reader of the entities that a document type declares.
void refuseDocumentType(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
  const auto parser = static_cast<xmlParserCtxtPtr>(context);
  Complaint& complaint = complaintOf(context);
  if (complaint.what.empty()) {
    complaint.what = "document types are not allowed";
    complaint.line = static_cast<std::size_t>(std::max(0, parser->input->line));
  }
  xmlLibrary().xmlStopParser(parser);
}

std::string nameOf(const xmlNode& node, const xmlNs* space) {
  const std::string prefix = space == nullptr ? std::string() : textOf(space->prefix);
  return (prefix.empty() ? "" : prefix + ":") + textOf(node.name);
}

// The recursion is at most 256 levels deep: the parser refuses deeper texts.
XmlElement elementOf(const xmlNode& node) {
  XmlElement made;
  made.name = nameOf(node, node.ns);
  made.line = static_cast<std::size_t>(std::max(0L, xmlLibrary().xmlGetLineNo(&node)));
  for (const xmlNode* child = node.children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) made.children.push_back(elementOf(*child));
    if (child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE)
      made.text += textOf(child->content);
  }
  return made;
}

[[noreturn]] void refuse(const std::string& what, const std::string& where) {
  throw calibration::BadData({what, where, "give a certificate as its laboratory wrote it"});
}

}  // namespace

std::string_view XmlElement::localName() const {
  const auto colon = name.find(':');
  return std::string_view(name).substr(colon == std::string::npos ? 0 : colon + 1);
}

const XmlElement* XmlElement::child(std::string_view wanted) const {
  const auto found = std::find_if(children.begin(), children.end(), [&](const XmlElement& each) {
    return each.localName() == wanted;
  });
  return found == children.end() ? nullptr : &*found;
}

XmlElement readXml(std::string_view text, const std::string& where) {
  if (text.size() > INT_MAX / 2) refuse("the file is too large", where);
  const XmlLibrary& library = xmlLibrary();
  const std::unique_ptr<xmlParserCtxt, decltype(library.xmlFreeParserCtxt)> parser(
      library.xmlNewParserCtxt(), library.xmlFreeParserCtxt);
  if (!parser) throw std::bad_alloc();
  Complaint complaint;
  parser->_private = &complaint;
  parser->sax->serror = takeError;
  parser->sax->internalSubset = refuseDocumentType;
  const std::unique_ptr<xmlDoc, decltype(library.xmlFreeDoc)> document(
      library.xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()), nullptr,
                                nullptr, XML_PARSE_NONET | XML_PARSE_BIG_LINES),
      library.xmlFreeDoc);
  const xmlNode* root = document ? library.xmlDocGetRootElement(document.get()) : nullptr;
  if (complaint.what.empty() && root == nullptr) complaint.what = "this is not XML";
  if (!complaint.what.empty())
    refuse(
        "line " + std::to_string(std::max<std::size_t>(1, complaint.line)) + ": " + complaint.what,
        where);
  return elementOf(*root);
}

}  // namespace pelmora::dcc
