// SPDX-License-Identifier: MIT
#include "dcc/dcc_writer.h"

#include "base/markup_text.h"
#include "base/readable_number.h"
#include "dcc/dcc_units.h"
#include "units/unit.h"

#include <pelmora/calibration/failure.h>

#include <charconv>
#include <string_view>

namespace pelmora::dcc {
namespace {

using Attributes = std::string;

// Of a number converted to another unit: more than any page prints.
constexpr int convertedDigits = 12;

class XmlText {
 public:
  void open(std::string_view name, const Attributes& attributes = {}) {
    indent();
    text_ += "<" + std::string(name) + (attributes.empty() ? "" : " " + attributes) + ">\n";
    open_.emplace_back(name);
  }
  void close() {
    const std::string name = open_.back();
    open_.pop_back();
    indent();
    text_ += "</" + name + ">\n";
  }
  // Nothing for an empty text.
  void leaf(std::string_view name, std::string_view content, const Attributes& attributes = {}) {
    if (content.empty()) return;
    indent();
    text_ += "<" + std::string(name) + (attributes.empty() ? "" : " " + attributes) + ">" +
             escaped(content) + "</" + std::string(name) + ">\n";
  }
  // <name><dcc:content>...</dcc:content></name>
  void words(std::string_view name, std::string_view content, const std::string& language = {}) {
    if (content.empty()) return;
    open(name);
    leaf("dcc:content", content, language.empty() ? "" : "lang=\"" + language + "\"");
    close();
  }
  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  void indent() { text_.append(open_.size(), ' '); }
  std::string text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  std::vector<std::string> open_;
};

double numberOf(const std::string& text) {
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

using Conversion = double (*)(double, const units::Unit&, const units::Unit&);

std::vector<std::string> convertedTexts(const std::vector<std::string>& texts,
                                        const CertificateUnit& unit, Conversion conversion) {
  std::vector<std::string> made;
  for (const std::string& text : texts) {
    const double value =
        conversion(numberOf(text), units::unitOf(unit.symbol), units::unitOf(unit.convertedTo));
    made.push_back(significantText(value, convertedDigits));
  }
  return made;
}

std::string listText(const std::vector<std::string>& texts) {
  std::string made;
  for (const std::string& text : texts) made += (made.empty() ? "" : " ") + text;
  return made;
}

void writeList(XmlText& xml, const std::vector<std::string>& values, std::string_view unit,
               const Uncertainties* u) {
  xml.open("si:realListXMLList");
  xml.leaf("si:valueXMLList", listText(values));
  xml.leaf("si:unitXMLList", unit);
  if (u != nullptr) {
    xml.open("si:measurementUncertaintyUnivariateXMLList");
    xml.open("si:expandedMUXMLList");
    xml.leaf("si:valueExpandedMUXMLList", listText(u->values));
    xml.leaf("si:coverageFactorXMLList", listText(u->coverageFactors));
    xml.leaf("si:coverageProbabilityXMLList", u->probability);
    xml.close();
    xml.close();
  }
  xml.close();
}

void writeColumn(XmlText& xml, const Column& column, const std::string& language) {
  const std::string refType = column.isReference ? "basic_referenceValue" : "basic_measuredValue";
  xml.open("dcc:quantity", "refType=\"" + refType + "\"");
  xml.words("dcc:name", column.name, language);
  const CertificateUnit& unit = certificateUnit(column.unit);
  const bool isPrintedInSi =
      units::converted(1, units::unitOf(unit.symbol), units::unitOf(unit.convertedTo)) == 1;
  const Uncertainties* u = column.uncertainties ? &*column.uncertainties : nullptr;
  if (isPrintedInSi) {
    writeList(xml, column.values, unit.si, u);
  } else {
    Uncertainties inSi;
    if (u != nullptr) {
      inSi = *u;
      inSi.values = convertedTexts(u->values, unit, units::convertedDifference);
    }
    xml.open("si:hybrid");
    writeList(xml, convertedTexts(column.values, unit, units::converted), unit.si,
              u == nullptr ? nullptr : &inSi);
    writeList(xml, column.values, unit.symbol, u);
    xml.close();
  }
  xml.close();
}

void writeContact(XmlText& xml, std::string_view name, const Contact& contact) {
  xml.open(name);
  xml.words("dcc:name", contact.name);
  xml.leaf("dcc:eMail", contact.email);
  xml.open("dcc:location");
  xml.leaf("dcc:street", contact.street);
  xml.leaf("dcc:streetNo", contact.streetNumber);
  xml.leaf("dcc:postCode", contact.postCode);
  xml.leaf("dcc:city", contact.city);
  xml.leaf("dcc:countryCode", contact.countryCode);
  xml.close();
  xml.close();
}

void writeIdentification(XmlText& xml, std::string_view issuer, const std::string& value,
                         const Attributes& attributes) {
  if (value.empty()) return;
  xml.open("dcc:identification", attributes);
  xml.leaf("dcc:issuer", issuer);
  xml.leaf("dcc:value", value);
  xml.close();
}

void writeItem(XmlText& xml, const Item& item, const std::string& language) {
  xml.open("dcc:items");
  xml.open("dcc:item");
  xml.words("dcc:name", item.name, language);
  if (!item.maker.empty()) {
    xml.open("dcc:manufacturer");
    xml.words("dcc:name", item.maker);
    xml.close();
  }
  xml.leaf("dcc:model", item.model);
  xml.open("dcc:identifications");
  writeIdentification(xml, "manufacturer", item.serialNumber, "refType=\"basic_serialNumber\"");
  writeIdentification(xml, "customer", item.customersNumber, {});
  xml.close();
  xml.close();
  xml.close();
}

void writeAdministration(XmlText& xml, const Certificate& c) {
  xml.open("dcc:administrativeData");
  xml.open("dcc:dccSoftware");
  xml.open("dcc:software");
  xml.words("dcc:name", "Pelmora");
  xml.leaf("dcc:release", c.softwareVersion);
  xml.leaf("dcc:type", "application");
  xml.close();
  xml.close();
  xml.open("dcc:coreData");
  xml.leaf("dcc:countryCodeISO3166_1", c.countryCode);
  xml.leaf("dcc:usedLangCodeISO639_1", c.language);
  xml.leaf("dcc:mandatoryLangCodeISO639_1", c.language);
  xml.leaf("dcc:uniqueIdentifier", c.number);
  xml.leaf("dcc:beginPerformanceDate", c.firstDate);
  xml.leaf("dcc:endPerformanceDate", c.lastDate);
  xml.leaf("dcc:performanceLocation", "laboratory");
  xml.leaf("dcc:issueDate", c.issueDate);
  xml.close();
  writeItem(xml, c.item, c.language);
  xml.open("dcc:calibrationLaboratory");
  xml.leaf("dcc:calibrationLaboratoryCode", c.laboratoryCode);
  writeContact(xml, "dcc:contact", c.laboratory);
  xml.close();
  xml.open("dcc:respPersons");
  for (const Signatory& each : c.signatories) {
    xml.open("dcc:respPerson");
    xml.open("dcc:person");
    xml.words("dcc:name", each.name);
    xml.close();
    xml.leaf("dcc:role", each.role);
    xml.leaf("dcc:mainSigner", each.isMain ? "true" : "false");
    xml.close();
  }
  xml.close();
  writeContact(xml, "dcc:customer", c.customer);
  if (!c.statements.empty()) {
    xml.open("dcc:statements");
    for (const std::string& each : c.statements) {
      xml.open("dcc:statement");
      xml.words("dcc:declaration", each, c.language);
      xml.close();
    }
    xml.close();
  }
  xml.close();
}

void writeConditions(XmlText& xml, const Certificate& c) {
  if (c.conditions.empty()) return;
  xml.open("dcc:influenceConditions");
  for (const Condition& each : c.conditions) {
    xml.open("dcc:influenceCondition");
    xml.words("dcc:name", each.name, c.language);
    xml.open("dcc:data");
    writeColumn(xml, {each.name, false, each.unit, {each.value}, std::nullopt}, c.language);
    xml.close();
    xml.close();
  }
  xml.close();
}

void writeMeasurement(XmlText& xml, const Certificate& c) {
  xml.open("dcc:measurementResults");
  xml.open("dcc:measurementResult");
  xml.words("dcc:name", c.title, c.language);
  if (!c.methods.empty()) {
    xml.open("dcc:usedMethods");
    for (const Method& each : c.methods) {
      xml.open("dcc:usedMethod");
      xml.words("dcc:name", each.name, c.language);
      xml.words("dcc:description", each.description, c.language);
      xml.close();
    }
    xml.close();
  }
  writeConditions(xml, c);
  xml.open("dcc:results");
  for (const Result& result : c.results) {
    xml.open("dcc:result");
    xml.words("dcc:name", result.name, c.language);
    xml.words("dcc:description", result.description, c.language);
    xml.open("dcc:data");
    xml.open("dcc:list");
    for (const Column& column : result.columns) writeColumn(xml, column, c.language);
    xml.close();
    xml.close();
    xml.close();
  }
  xml.close();
  xml.close();
  xml.close();
}

}  // namespace

std::string certificateXml(const Certificate& certificate) {
  const std::vector<std::string> gaps = missingFrom(certificate);
  if (!gaps.empty()) {
    throw calibration::BadData(
        {"this is not a certificate yet: " + gaps.front() +
             (gaps.size() > 1 ? ", and " + std::to_string(gaps.size() - 1) + " more" : ""),
         "", "complete the data of the calibration, the meter and the laboratory"});
  }
  XmlText xml;
  xml.open("dcc:digitalCalibrationCertificate",
           "xmlns:dcc=\"https://ptb.de/dcc\" xmlns:si=\"https://ptb.de/si\" "
           "schemaVersion=\"3.3.0\"");
  writeAdministration(xml, certificate);
  writeMeasurement(xml, certificate);
  xml.close();
  return xml.take();
}

}  // namespace pelmora::dcc
