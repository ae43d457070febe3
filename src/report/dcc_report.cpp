// SPDX-License-Identifier: MIT
#include "report/dcc_report.h"

#include "base/readable_number.h"
#include "dcc/dcc_writer.h"
#include "report/printed_values.h"
#include "report/report_details.h"
#include "report/signature_words.h"
#include "report/text_list.h"
#include "units/unit.h"

#include <pelmora/calibration/failure.h>

#include <functional>

namespace pelmora::report {
namespace {

using calibration::PointState;
using calibration::StandReading;

dcc::Contact contactOf(const Report& report, const std::string& name, const std::string& prefix) {
  const auto part = [&](const char* key) { return detailOf(report, prefix + key); };
  return {detailOf(report, name), part("street"),  "",           part("post-code"),
          part("city"),           part("country"), part("email")};
}

// Lines of the form "NAME, ROLE"; the first one is the main signatory.
std::vector<dcc::Signatory> signatoriesOf(const Report& report) {
  std::vector<dcc::Signatory> list;
  for (const std::string& line : detailLines(report, "signatory")) {
    const auto comma = line.find(", ");
    const bool hasRole = comma != std::string::npos;
    list.push_back({line.substr(0, comma), hasRole ? line.substr(comma + 2) : "", list.empty()});
  }
  return list;
}

dcc::Item itemOf(const Report& report) {
  const std::string description = detailOf(report, "description");
  const std::string model = detailOf(report, "model"), size = detailOf(report, "size");
  return {description.empty() ? "Turbine flow meter" : description, detailOf(report, "maker"),
          model + (model.empty() || size.empty() ? "" : ", ") + size, report.meter.serial,
          detailOf(report, "inventory-number")};
}

// Positive numbers of a digital certificate have no sign.
std::string unsignedText(std::string text) {
  if (text.starts_with('+')) text.erase(0, 1);
  return text;
}

std::string probabilityText(double probability) { return significantText(probability, 4); }

// Of a column, whose values all have one.
dcc::Uncertainties uncertaintiesOf(const std::vector<const StatedUncertainty*>& all) {
  dcc::Uncertainties made;
  for (const StatedUncertainty* each : all) {
    made.values.push_back(printedUncertainty(each->expanded));
    made.coverageFactors.push_back(printedCoverageFactor(each->coverageFactor));
    made.probability = probabilityText(each->probability);
  }
  return made;
}

class PointColumns {
 public:
  PointColumns(const Report& report, const SeriesReport& series) : report_(report) {
    for (const RawPart& part : series.parts) {
      for (const MeasuredPoint& point : part.points) {
        if (point.state == PointState::used) used_.push_back(&point);
      }
    }
  }

  using Text = std::function<std::string(const MeasuredPoint&)>;
  // A column of all used points; left out if one of them has no value or there is no unit.
  void add(const std::string& name, const std::string& unit, bool isReference, const Text& text) {
    if (unit.empty() || used_.empty()) return;
    dcc::Column column{name, isReference, unit, {}, std::nullopt};
    for (const MeasuredPoint* point : used_) {
      report_.requireGoOn();
      column.values.push_back(unsignedText(text(*point)));
      if (column.values.back() == "-") return;
    }
    columns_.push_back(std::move(column));
  }
  void addReading(const std::string& name, const std::string& unitKey,
                  std::optional<double> StandReading::*member,
                  std::string (*text)(const std::optional<double>&)) {
    add(name, detailOf(report_, unitKey), false, [&](const MeasuredPoint& point) {
      return text(point.reading.value_or(StandReading()).*member);
    });
  }
  // To the last column, if it was not left out.
  void addUncertainties(const std::string& name) {
    if (columns_.empty() || columns_.back().name != name) return;
    std::vector<const StatedUncertainty*> all;
    for (const MeasuredPoint* point : used_) {
      if (!point->uncertainty) return;
      all.push_back(&*point->uncertainty);
    }
    columns_.back().uncertainties = uncertaintiesOf(all);
  }
  [[nodiscard]] std::vector<dcc::Column> take() { return std::move(columns_); }

 private:
  const Report& report_;
  std::vector<const MeasuredPoint*> used_;
  std::vector<dcc::Column> columns_;
};

struct SeriesUnits {
  std::string roshko, value;
};

SeriesUnits unitsOf(const Report& report, const SeriesReport& series) {
  return {detailOf(report, "roshko-unit"),
          isQuotient(series) ? "1" : detailOf(report, "strouhal-unit")};
}

const char* valueName(const SeriesReport& series) {
  return isQuotient(series) ? "Quotient of the rotors" : "Strouhal number (K factor)";
}

dcc::Result pointsResult(const Report& report, const SeriesReport& series,
                         const SeriesUnits& units) {
  PointColumns columns(report, series);
  columns.add("Roshko number", units.roshko, true,
              [](const MeasuredPoint& point) { return printedRoshko(point.roshko); });
  columns.addReading("Frequency", "frequency-unit", &StandReading::frequency, printedFrequency);
  columns.addReading("Volume flow", "flow-unit", &StandReading::flow, printedFlow);
  columns.addReading("Temperature", "temperature-unit", &StandReading::temperature,
                     printedTemperature);
  columns.addReading("Kinematic viscosity", "viscosity-unit", &StandReading::viscosity,
                     printedViscosity);
  columns.add(valueName(series), units.value, false,
              [](const MeasuredPoint& point) { return printedFactor(point.strouhal); });
  columns.addUncertainties(valueName(series));
  if (!series.curve.empty()) {
    columns.add("Deviation from the curve", "%", false, [](const MeasuredPoint& point) {
      return printedDeviation(point.deviationPercent);
    });
  }
  return {series.name + ": measured points", "The points that the curve was fitted to",
          columns.take()};
}

dcc::Result curveResult(const SeriesReport& series, const SeriesUnits& units) {
  dcc::Column roshko{"Roshko number", true, units.roshko, {}, std::nullopt};
  dcc::Column value{valueName(series), false, units.value, {}, std::nullopt};
  for (const CurvePoint& point : series.curve) {
    roshko.values.push_back(printedRoshko(point.roshko));
    value.values.push_back(printedFactor(point.strouhal));
  }
  if (series.uncertainty.isStated()) {
    std::vector<const StatedUncertainty*> all;
    for (const auto& each : series.uncertainty.curve) all.push_back(&*each);
    value.uncertainties = uncertaintiesOf(all);
  }
  return {series.name + ": calibration curve",
          "To be read linearly between its points" +
              (series.chosen.empty() ? "" : "; equation: " + series.chosen),
          {std::move(roshko), std::move(value)}};
}

std::string statementOf(const SeriesReport& series) {
  const SeriesResult& result = series.result;
  std::string text = series.name + ": " + std::to_string(result.used) + " points used, " +
                     std::to_string(result.cut) + " cut, " + std::to_string(result.excluded) +
                     " excluded";
  if (result.distrusted > 0) {
    text += ", " + std::to_string(result.distrusted) +
            " distrusted (contradicting the others and left out of the fit, not excluded)";
  }
  if (result.worstPercent && !series.curve.empty()) {
    text += "; largest deviation from the curve " + printedDeviation(result.worstPercent) + " %" +
            (result.worstIsDistrusted ? ", of a distrusted point" : "");
  }
  if (result.passes) {
    text += std::string(*result.passes ? "; PASS" : "; FAIL") + ", limit " +
            significantText(*result.limitPercent, 4) +
            " %, simple acceptance without regard to the uncertainty";
  }
  text += ". " + uncertaintyText(series.uncertainty);
  const std::string points = pointUncertaintyText(series.uncertainty, series.pointUncertainty);
  return text + (points.empty() ? "" : " Of the measured points: " + points);
}

std::string signatureText(const SeriesReport& series, const Signature& signature) {
  return series.name + ": " + signatureState(signature) + " " + signedBy(signature) +
         ". Fingerprint " + signature.entry.fingerprint;
}

void addConditions(const Report& report, dcc::Certificate& certificate) {
  for (const char* key : conditionDetails) {
    const std::string text = detailOf(report, key);
    if (text.empty()) continue;
    const auto blank = text.find(' ');
    certificate.conditions.push_back(
        {calibration::detailField(key).label, text.substr(blank + 1), text.substr(0, blank)});
  }
}

}  // namespace

dcc::Certificate certificateOf(const Report& report) {
  dcc::Certificate made;
  made.number = detailOf(report, "certificate-number");
  made.countryCode = detailOf(report, "country");
  made.firstDate = detailOf(report, "date");
  const std::string last = detailOf(report, "date-to");
  made.lastDate = last.empty() ? made.firstDate : last;
  made.issueDate = detailOf(report, "issue-date");
  made.softwareVersion = report.softwareVersion;
  made.laboratoryCode = detailOf(report, "accreditation");
  made.laboratory = contactOf(report, "name", "");
  made.customer = contactOf(report, "customer", "customer-");
  made.signatories = signatoriesOf(report);
  made.item = itemOf(report);
  made.title = "Calibration of a flow meter";
  const std::string method = detailOf(report, "method");
  made.methods.push_back(
      {method.empty() ? "Calibration of a flow meter" : method, detailOf(report, "procedure")});
  addConditions(report, made);
  const std::string traceability = detailOf(report, "traceability");
  if (!traceability.empty()) made.statements.push_back("Traceability: " + traceability);
  for (const SeriesReport& series : report.series) {
    const SeriesUnits units = unitsOf(report, series);
    if (!units.roshko.empty() && !units.value.empty()) {
      if (dcc::Result points = pointsResult(report, series, units); !points.columns.empty())
        made.results.push_back(std::move(points));
      if (!series.curve.empty()) made.results.push_back(curveResult(series, units));
    }
    made.statements.push_back(statementOf(series));
    for (const Signature& signature : series.signatures)
      made.statements.push_back(signatureText(series, signature));
  }
  for (const std::string& line : detailLines(report, "remark")) made.statements.push_back(line);
  return made;
}

namespace {

// "missing are the certificate number and the city of the customer; nobody signs"
std::string sentenceOf(const std::vector<std::string>& gaps) {
  constexpr std::string_view ending = " is missing";
  std::vector<std::string> missing;
  std::string others;
  for (const std::string& gap : gaps) {
    if (gap.ends_with(ending))
      missing.push_back(gap.substr(0, gap.size() - ending.size()));
    else
      others += "; " + gap;
  }
  std::string text = missing.empty() ? "" : missing.size() == 1 ? "missing is " : "missing are ";
  for (std::size_t i = 0; i < missing.size(); ++i)
    text += (i == 0 ? "" : i + 1 == missing.size() ? " and " : ", ") + missing[i];
  return missing.empty() ? others.substr(2) : text + others;
}

}  // namespace

std::string dccReport(const Report& report) {
  const dcc::Certificate certificate = certificateOf(report);
  std::vector<std::string> gaps = dcc::missingFrom(certificate);
  if (detailOf(report, "roshko-unit").empty()) gaps.emplace_back("the unit of Roshko is missing");
  if (detailOf(report, "strouhal-unit").empty())
    gaps.emplace_back("the unit of Strouhal is missing");
  if (gaps.empty()) return dcc::certificateXml(certificate);
  throw calibration::BadData({"the digital certificate is incomplete: " + sentenceOf(gaps), "",
                              "record it with 'pelmora meter set' and 'pelmora laboratory set'"});
}

}  // namespace pelmora::report
