// From an open database to the bytes of a report.
// SPDX-License-Identifier: MIT
#include "base/server_address.h"
#include "base/time_text.h"
#include "base/version.h"
#include "dcc/dcc_check.h"
#include "report/build_report.h"
#include "report/csv_report.h"
#include "report/dcc_report.h"
#include "report/html_report.h"
#include "report/json_report.h"
#include "report/pdf_report.h"
#include "report/report_file.h"
#include "report/signed_dcc.h"
#include "report/svg_report.h"
#include "report/xlsx_report.h"

#include <pelmora/calibration/report.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <utility>

namespace pelmora::report {
namespace {

using calibration::Database;
using calibration::Meter;
using calibration::StoredSeries;

std::string datesOf(const std::vector<calibration::Run>& runs) {
  std::string text;
  for (const calibration::Run& run : runs) {
    if (run.date.empty() || text.find(run.date) != std::string::npos) continue;
    text += (text.empty() ? "" : ", ") + run.date;
  }
  return text;
}

// The same series' curve in the latest earlier calibration that has one.
std::optional<PreviousSeries> previousOf(const Database& lab, const std::vector<Meter>& earlier,
                                         const std::string& series) {
  for (const Meter& meter : earlier) {
    const auto names = lab.seriesOf(meter);
    if (std::find(names.begin(), names.end(), series) == names.end()) continue;
    const StoredSeries stored = lab.series(meter, series);
    if (stored.curve.size() < 2) continue;
    const calibration::Details details = lab.details(meter);
    const auto recorded = details.find("date");
    return PreviousSeries{meter.calibration,
                          recorded == details.end() ? datesOf(lab.runs(meter)) : recorded->second,
                          stored.curve};
  }
  return std::nullopt;
}

std::vector<Meter> earlierCalibrations(const Database& lab, const Meter& meter) {
  std::vector<Meter> list = lab.calibrations(meter.serial);
  std::erase_if(list, [&](const Meter& other) { return other.calibration >= meter.calibration; });
  std::reverse(list.begin(), list.end());
  return list;
}

// The curve behind the stored table. If it cannot be had, the report is made all the same.
void addFittedCurve(const Database& lab, const calibration::Repeated& repeated,
                    const calibration::Observer& observer, SeriesInput& series) {
  if (series.stored.curve.empty()) return;
  try {
    series.fitted = lab.fittedCurve(series.stored, repeated, observer);
  } catch (const calibration::BadData& failure) {
    series.fittedTrouble = failure.what();
  } catch (const calibration::NoCurve& failure) {
    series.fittedTrouble = failure.what();
  } catch (const calibration::NoFit& failure) {
    series.fittedTrouble = failure.what();
  }
}

ReportInput inputOf(const Database& lab, const Meter& meter,
                    const calibration::ReportOptions& options) {
  ReportInput input;
  input.meter = meter;
  input.runs = lab.runs(meter);
  input.laboratory = lab.laboratory();
  input.details = lab.details(meter);
  input.database = shortLocation(lab.location());
  input.softwareVersion = version;
  input.createdAt = utcText();
  input.stop = options.observer.stop;
  input.history = lab.history({.serial = meter.serial, .calibration = meter.calibration});
  const auto earlier = earlierCalibrations(lab, meter);
  auto all = lab.everySeries(meter, options.series);
  // In the order of an import: the rotors before the series that are derived from them.
  if (options.series.empty()) std::ranges::sort(all, {}, &StoredSeries::id);
  for (const StoredSeries& stored : all) {
    requireGoOn(options.observer.stop);
    const calibration::Repeated repeated = lab.repeat(stored, options.unkept, options.observer);
    // Its points are shown with the nearest equation only where the fit has no curve.
    const EquationOutcome* nearest =
        repeated.fit.curve.empty() ? nearestEquation(repeated.fit, options.observer.stop) : nullptr;
    SeriesInput& series = input.series.emplace_back();
    series.stored = stored;
    series.points = lab.points(stored, options.observer);
    series.settings = repeated.settings;
    series.settingsAreKept = repeated.settingsAreKept;
    series.refit = {repeated.fit.outcome, repeated.fit.curve, repeated.trouble,
                    nearest == nullptr ? "" : nearest->Name};
    requireGoOn(options.observer.stop);
    addFittedCurve(lab, repeated, options.observer, series);
    series.previous = previousOf(lab, earlier, stored.name);
    series.signOffs = lab.signOffs(stored);
  }
  return input;
}

}  // namespace
}  // namespace pelmora::report

namespace pelmora::calibration {
namespace {

// Signed, if there is a signer.
std::string digitalCertificate(const report::Report& report, const ReportOptions& options) {
  std::string xml = report::dccReport(report);
  if (!options.signer) return xml;
  return report::signedDcc(xml, options.signer->keyFile, options.signer->certificateFile);
}

std::string pdfWithCertificate(const report::Report& report, const ReportOptions& options) {
  std::string xml;
  try {
    xml = digitalCertificate(report, options);
  } catch (const BadData& failure) {
    // A signature was asked for, so the lack of a certificate is an error.
    if (options.signer) throw;
    if (options.note)
      options.note(std::string("no digital certificate is attached: ") + failure.what() +
                   (failure.remedy().empty() ? "" : "; " + failure.remedy()));
  }
  return report::pdfReport(report, {options.storedText}, xml, options.observer.stop);
}

constexpr std::array<std::pair<std::string_view, ReportKind>, 7> endings{
    {{".html", ReportKind::html},
     {".json", ReportKind::json},
     {".csv", ReportKind::csv},
     {".xlsx", ReportKind::xlsx},
     {".svg", ReportKind::svg},
     {".pdf", ReportKind::pdf},
     {".xml", ReportKind::dcc}}};

}  // namespace

std::optional<ReportKind> reportKindOf(const std::string& file) {
  std::string ending = std::filesystem::path(file).extension().string();
  for (char& c : ending) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  for (const auto& [known, kind] : endings) {
    if (ending == known) return kind;
  }
  return std::nullopt;
}

std::vector<CertificateFlaw> checkCertificate(const std::string& xml, const std::string& file,
                                              std::optional<double> cmcPercent) {
  std::vector<CertificateFlaw> flaws;
  for (const dcc::Violation& each : dcc::checkCertificate(xml, file, {cmcPercent}))
    flaws.push_back({each.line, each.what});
  return flaws;
}

std::string makeReport(const Database& lab, const Meter& meter, ReportKind kind,
                       const ReportOptions& options) {
  const report::ReportInput input = report::inputOf(lab, meter, options);
  report::requireGoOn(options.observer.stop);
  const report::Report report = report::buildReport(input);
  report.requireGoOn();
  switch (kind) {
    case ReportKind::html: return report::htmlReport(report, {options.storedText});
    case ReportKind::json: return report::jsonReport(report);
    case ReportKind::csv: return report::csvReport(report, options.table);
    case ReportKind::xlsx: return report::xlsxReport(report);
    case ReportKind::svg: return report::svgReport(report);
    case ReportKind::pdf: return pdfWithCertificate(report, options);
    case ReportKind::dcc: return digitalCertificate(report, options);
  }
  return {};
}

void writeReport(const Database& lab, const Meter& meter, const std::string& file,
                 const ReportOptions& options) {
  const auto kind = reportKindOf(file);
  if (!kind) {
    throw BadData({"the name '" + file + "' has no ending of a report", file,
                   "end it in .html, .pdf, .xml, .json, .csv, .xlsx or .svg"});
  }
  report::writeFile(file, makeReport(lab, meter, *kind, options), options.observer.stop);
}

}  // namespace pelmora::calibration
