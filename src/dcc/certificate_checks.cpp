// SPDX-License-Identifier: MIT
#include "dcc/certificate.h"

#include "base/date_text.h"
#include "base/text_flaw.h"
#include "dcc/dcc_units.h"

#include <charconv>
#include <cmath>

namespace pelmora::dcc {
namespace {

class Gaps {
 public:
  void need(const std::string& text, const std::string& thing) {
    if (text.empty()) found_.push_back(thing + " is missing");
    if (flawOf(text) == TextFlaw::malformed) found_.push_back(thing + " is not UTF-8 text");
  }
  void needDate(const std::string& text, const std::string& thing) {
    if (!isDay(text)) found_.push_back(thing + " is not a date like 2026-11-20");
  }
  void needNumbers(const std::vector<std::string>& texts, const std::string& thing) {
    for (const std::string& text : texts) {
      double value = 0;
      const char* end = text.data() + text.size();
      const auto [stop, trouble] = std::from_chars(text.data(), end, value);
      if (trouble == std::errc() && stop == end && std::isfinite(value)) continue;
      found_.push_back("'" + shortened(text) + "' of " + thing + " is not a finite number");
      return;
    }
  }
  void needContact(const Contact& contact, const std::string& who) {
    need(contact.name, "the name of " + who);
    need(contact.city, "the city of " + who);
  }
  void needUnit(const std::string& symbol, const std::string& thing) {
    if (!isCertificateUnit(symbol))
      found_.push_back("'" + shortened(symbol) + "' is not a unit for " + thing);
  }
  void add(std::string gap) { found_.push_back(std::move(gap)); }
  [[nodiscard]] std::vector<std::string> found() && { return std::move(found_); }

 private:
  std::vector<std::string> found_;
};

void checkUncertainties(const Column& column, const std::string& thing, Gaps& gaps) {
  const Uncertainties& u = *column.uncertainties;
  if (u.values.size() != column.values.size())
    gaps.add(thing + " does not have one uncertainty for each value");
  if (u.coverageFactors.size() != 1 && u.coverageFactors.size() != column.values.size())
    gaps.add(thing + " has neither one coverage factor nor one for each value");
  gaps.needNumbers(u.values, "the uncertainties of " + thing);
  gaps.needNumbers(u.coverageFactors, "the coverage factors of " + thing);
  gaps.needNumbers({u.probability}, "the coverage probability of " + thing);
}

void checkResult(const Result& result, Gaps& gaps) {
  gaps.need(result.name, "the name of a result");
  if (result.columns.empty()) gaps.add("result '" + shortened(result.name) + "' has no columns");
  for (const Column& column : result.columns) {
    const std::string thing = "column '" + shortened(column.name) + "'";
    gaps.need(column.name, "the name of a column");
    gaps.needUnit(column.unit, thing);
    if (column.values.empty()) gaps.add(thing + " has no values");
    if (column.values.size() != result.columns.front().values.size())
      gaps.add(thing + " differs in length from '" + result.columns.front().name + "'");
    gaps.needNumbers(column.values, thing);
    if (column.uncertainties) checkUncertainties(column, thing, gaps);
  }
}

}  // namespace

std::vector<std::string> missingFrom(const Certificate& certificate) {
  Gaps gaps;
  gaps.need(certificate.number, "the certificate number");
  if (certificate.countryCode.size() != 2) gaps.add("the country is not a code such as DE or US");
  if (certificate.language.size() != 2) gaps.add("the language is not a code such as en");
  gaps.needDate(certificate.firstDate, "the first date of the calibration");
  gaps.needDate(certificate.lastDate, "the last date of the calibration");
  if (!certificate.issueDate.empty()) gaps.needDate(certificate.issueDate, "the date of issue");
  gaps.need(certificate.softwareVersion, "the version of the software");
  gaps.needContact(certificate.laboratory, "the laboratory");
  gaps.needContact(certificate.customer, "the customer");
  gaps.need(certificate.item.name, "the name of the meter");
  gaps.need(certificate.item.serialNumber, "the serial number of the meter");
  gaps.need(certificate.title, "the title of the measurement");
  if (certificate.signatories.empty()) gaps.add("nobody signs the certificate");
  for (const Signatory& each : certificate.signatories) gaps.need(each.name, "a signatory's name");
  for (const Method& each : certificate.methods) gaps.need(each.name, "a method's name");
  for (const Condition& each : certificate.conditions) {
    gaps.need(each.name, "the name of a condition");
    gaps.needUnit(each.unit, "condition '" + shortened(each.name) + "'");
    gaps.needNumbers({each.value}, "condition '" + shortened(each.name) + "'");
  }
  if (certificate.results.empty()) gaps.add("there is no result");
  for (const Result& each : certificate.results) checkResult(each, gaps);
  return std::move(gaps).found();
}

}  // namespace pelmora::dcc
