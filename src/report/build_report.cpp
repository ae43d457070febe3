// SPDX-License-Identifier: MIT
#include "report/build_report.h"

#include "base/readable_number.h"
#include "curves/table_reading.h"
#include "report/printed_values.h"
#include "report/raw_data_hash.h"
#include "report/report_details.h"
#include "report/stored_agreement.h"
#include "report/verdict_words.h"
#include "units/unit.h"

#include <pelmora/calibration/choice.h>
#include <pelmora/calibration/curve.h>
#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/ranking.h>
#include <pelmora/calibration/words.h>

#include <algorithm>
#include <array>
#include <utility>

namespace pelmora::report {
namespace {

using calibration::Choice;

std::vector<RawPart> rawParts(const std::vector<calibration::RawPoint>& points,
                              const calibration::TableReading& curve) {
  std::vector<RawPart> parts;
  for (const calibration::RawPoint& point : points) {
    if (parts.empty() || parts.back().number != point.part)
      parts.push_back({point.part, point.fluid, {}});
    parts.back().points.push_back({point, curve.deviationPercent(point.roshko, point.strouhal)});
  }
  return parts;
}

std::optional<double> limitOf(const calibration::Details& details) {
  const auto found = details.find("limit");
  if (found == details.end()) return std::nullopt;
  const units::Measure limit = units::readMeasure(found->second);
  return units::converted(limit.value, *limit.unit, units::unitOf("%"));
}

class SeriesBuilder {
 public:
  SeriesBuilder(const ReportInput& input, const SeriesInput& series)
      : input_(input), series_(series), stored_(series.stored) {}

  SeriesReport build() {
    report_.name = stored_.name;
    report_.seriesID = stored_.id;
    const std::array<const calibration::StoredSeries*, 1> self{&stored_};
    report_.rawDataHash = rawDataHash(self);
    report_.settings = series_.settings;
    report_.settingsAreKept = series_.settingsAreKept;
    report_.storedText = stored_.report;
    std::erase(report_.storedText, '\r');
    report_.curveAge = stored_.age;
    addSignatures();
    requireGoOn(input_.stop);
    addFit();
    requireGoOn(input_.stop);
    addPoints();
    requireGoOn(input_.stop);
    addUncertainty();
    addComparison();
    return std::move(report_);
  }

 private:
  void addSignatures() {
    if (series_.signOffs.empty()) return;
    const std::string now = calibration::signedFingerprint(stored_);
    for (const calibration::SignOff& entry : series_.signOffs)
      report_.signatures.push_back({entry, entry.fingerprint == now});
  }

  void remark(const std::string& kind, const std::string& text) {
    report_.remarks.push_back({kind, text});
  }

  void addCurve() {
    for (std::size_t i = 0; i < stored_.curve.size(); ++i)
      report_.curve.push_back({stored_.curve(i, 0), stored_.curve(i, 1), {}, {}});
    if (report_.curve.empty()) {
      addAttempt();
      const std::string shown = report_.attempt
                                    ? "its points are shown with the best that a fit gives"
                                    : "its points are shown as they are";
      remark("noCurve", "No curve is stored for this series; " + shown + ".");
    }
    if (stored_.age == calibration::CurveAge::outdated) {
      remark("outdated",
             "The stored curve is older than its raw points: they have changed since it was "
             "fitted.");
    }
    if (const std::size_t strange = mergedPointsNotRaw(stored_); strange > 0) {
      remark("otherRawPoints",
             std::to_string(strange) + " of " + std::to_string(stored_.merged.size()) +
                 " merged points are not among the raw points: the raw points have been changed "
                 "since the merge.");
    }
  }

  // The curve of the fit, which is not stored, or else that of the best equation that has one.
  void addAttempt() {
    if (!series_.refit.curve.empty()) {
      report_.attempt = Attempt{report_.chosen, true, {}, series_.refit.curve};
      return;
    }
    for (const RankedEquation& ranked : report_.equations) {
      const std::string& nearest = series_.refit.nearest;
      if (ranked.outcome.Predicted.size() < 2 ||
          (!nearest.empty() && ranked.outcome.Name != nearest))
        continue;
      report_.attempt = Attempt{ranked.outcome.Name, false,
                                withShortNumbers(calibration::rejection(ranked.outcome)),
                                ranked.outcome.Predicted};
      return;
    }
  }

  void addPoints() {
    const calibration::TableReading curve(report_.attempt ? report_.attempt->curve : stored_.curve);
    report_.parts = rawParts(series_.points, curve);
    for (std::size_t i = 0; i < stored_.merged.size(); ++i) {
      const double x = stored_.merged(i, 0), y = stored_.merged(i, 1);
      report_.merged.push_back({x, y, curve.deviationPercent(x, y)});
    }
    report_.result =
        resultOf(report_.parts, report_.curve.empty() ? std::nullopt : limitOf(input_.details));
  }

  void addUncertainty() {
    UncertaintyStatement& made = report_.uncertainty;
    if (report_.curve.empty()) {
      made.whyNone = "no curve is stored";
    } else if (series_.fitted) {
      made = uncertaintyStatementOf(*series_.fitted, input_.stop);
    } else {
      made.whyNone =
          series_.fittedTrouble.empty() ? "that of the curve is not known" : series_.fittedTrouble;
    }
    if (made.isStated() && made.curve.size() != report_.curve.size()) {
      made = {};
      made.whyNone = "the stored table has points that are not points of its curve";
    }
    if (made.isStated()) addPointUncertainties();
  }

  void addPointUncertainties() {
    std::vector<MeasuredPoint*> used;
    std::vector<double> roshko, strouhal;
    for (RawPart& part : report_.parts) {
      for (MeasuredPoint& point : part.points) {
        if (point.state != calibration::PointState::used) continue;
        used.push_back(&point);
        roshko.push_back(point.roshko);
        strouhal.push_back(point.strouhal);
      }
    }
    calibration::EvaluateOptions options;
    options.stop = input_.stop;
    const auto budgets = series_.fitted->measured(roshko, strouhal, options);
    std::vector<std::optional<StatedUncertainty>> all;
    for (const auto& budget : budgets) all.push_back(stated(budget));
    report_.pointUncertainty = spanOf(all);
    for (std::size_t i = 0; i < used.size(); ++i) used[i]->uncertainty = all[i];
  }

  void addFit() {
    const FitOutcome& outcome = series_.refit.outcome;
    report_.equations = calibration::ranking(
        outcome, calibration::choiceOf(series_.settings.Choice).value_or(Choice::adjustedR2));
    if (outcome.Chosen) report_.chosen = outcome.Equations[*outcome.Chosen].Name;
    addCurve();
    if (!series_.refit.trouble.empty()) remark("notFitted", sentence(series_.refit.trouble));
    if (!report_.curve.empty()) compareWithRefit();
    if (report_.curve.empty() && !series_.refit.curve.empty()) {
      remark("notStored",
             "The ranking below is of a fit that was made for this report and is not stored.");
    }
    for (const CurveWarning& warning : outcome.Warnings)
      remark(warningKey(warning.Kind), sentence(warning.Text));
  }

  void compareWithRefit() {
    const auto distance = largestDistancePercent(stored_.curve, series_.refit.curve);
    if (distance && *distance <= sameCurvePercent) return addBands();
    const std::string with = series_.settingsAreKept
                                 ? "the settings of the stored curve"
                                 : "the default settings (its own were not kept)";
    const std::string other =
        !series_.refit.curve.empty()
            ? "A fit of the stored points with " + with +
                  " gives another curve than the stored one" +
                  (distance ? ", up to " + significantText(*distance, 3) + " % from it" : "")
            : "A fit of the stored points with " + with + " does not repeat the stored curve";
    remark("notRepeated", other +
                              ". The plot shows the stored curve; ranking, parameters and warnings "
                              "are of the new fit.");
  }

  void addBands() {
    const FitOutcome& outcome = series_.refit.outcome;
    for (std::size_t i = 0; i < report_.curve.size(); ++i) {
      if (i < outcome.ConfidenceHalfWidth.size())
        report_.curve[i].confidence = outcome.ConfidenceHalfWidth[i];
      if (i < outcome.PredictionHalfWidth.size())
        report_.curve[i].prediction = outcome.PredictionHalfWidth[i];
    }
  }

  void addComparison() {
    if (!series_.previous || report_.curve.empty()) return;
    report_.previous =
        PreviousCurve{calibration::compareCurves(series_.previous->curve, stored_.curve),
                      series_.previous->calibration, series_.previous->date};
  }

  // From a capital letter to a full stop, long numbers rounded.
  static std::string sentence(const std::string& words) {
    std::string text = withShortNumbers(words);
    if (text.empty()) return text;
    if (text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
    if (!text.ends_with('.') && !text.ends_with(".)")) text += '.';
    return text;
  }

  const ReportInput& input_;
  const SeriesInput& series_;
  const calibration::StoredSeries& stored_;
  SeriesReport report_;
};

}  // namespace

void requireGoOn(const std::stop_token& stop) {
  if (stop.stop_requested()) throw calibration::Cancelled({"the report was cancelled", "", ""});
}

void Report::requireGoOn() const { report::requireGoOn(stop); }

Report buildReport(const ReportInput& input) {
  Report report{input.meter,      input.runs,
                input.laboratory, input.details,
                input.database,   input.softwareVersion,
                input.createdAt,  {},
                input.history,    {},
                input.stop};
  std::vector<const calibration::StoredSeries*> stored;
  for (const SeriesInput& series : input.series) {
    stored.push_back(&series.stored);
    SeriesReport& made = report.series.emplace_back(SeriesBuilder(input, series).build());
    made.roshkoTitle = withUnit(report, "Roshko number", "roshko-unit");
    made.valueTitle =
        isQuotient(made) ? "Ratio" : withUnit(report, "Strouhal number", "strouhal-unit");
  }
  requireGoOn(input.stop);
  report.rawDataHash = rawDataHash(stored);
  return report;
}

}  // namespace pelmora::report
