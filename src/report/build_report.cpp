// SPDX-License-Identifier: MIT
#include "report/build_report.h"

#include <pelmora/calibration/ranking.h>
#include <pelmora/calibration/curve.h>
#include "report/raw_data_hash.h"
#include "base/readable_number.h"
#include "curves/table_reading.h"
#include "report/verdict_words.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace pelmora::report {
namespace {

using calibration::Choice;

// Two fits of the same points on two machines differ in their last digits; a curve that differs by
// more than a ten-thousandth of a per cent came from other points, settings or software.
constexpr double sameCurvePercent = 1e-4;

// The series that an import derives from set-ups: their raw part k holds the points of the k-th
// set-up.
constexpr std::array<const char*, 4> derivedSeries{"Rotor A", "Rotor B", "Rotor Sum", "Ratio"};

bool isDerived(const SeriesInfo& series) {
  return std::find(derivedSeries.begin(), derivedSeries.end(), series.SeriesName) !=
         derivedSeries.end();
}

// Merged points that have not been told apart from a raw point yet.
class MergedPoints {
 public:
  explicit MergedPoints(const PointArray& merged) {
    for (std::size_t i = 0; i < merged.size(); ++i) ++left_[{merged(i, 0), merged(i, 1)}];
  }
  // Whether the point is among them; it then counts as found.
  bool take(double x, double y) {
    const auto found = left_.find({x, y});
    if (found == left_.end() || found->second == 0) return false;
    --found->second;
    return true;
  }
  [[nodiscard]] std::size_t left() const {
    std::size_t count = 0;
    for (const auto& [point, number] : left_) count += number;
    return count;
  }

 private:
  std::map<std::pair<double, double>, std::size_t> left_;
};

std::vector<RawPart> rawParts(const ReportInput& input, const SeriesInfo& stored,
                              const calibration::TableReading& curve, MergedPoints& merged) {
  std::vector<RawPart> parts;
  for (std::size_t k = 0; k < stored.Raw.size(); ++k) {
    const PointArray& points = stored.Raw[k].Points;
    if (points.empty()) continue;
    RawPart part{static_cast<int>(k) + 1, {}, {}};
    if (isDerived(stored) && k < input.setups.size()) part.fluid = input.setups[k].Fluid;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const double x = points(i, 0), y = points(i, 1);
      const bool isCut = !stored.Merged.empty() && !merged.take(x, y);
      part.points.push_back({x, y, isCut, curve.deviationPercent(x, y)});
    }
    parts.push_back(std::move(part));
  }
  return parts;
}

// The largest distance of two tables with equal Roshko columns in per cent of the first; nothing
// where their Roshko columns differ.
std::optional<double> largestDistance(const PointArray& stored, const PointArray& refit) {
  if (stored.size() != refit.size() || stored.empty()) return std::nullopt;
  double largest = 0;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    const auto apart = [&](std::size_t c) {
      return std::fabs(refit(i, c) - stored(i, c)) / std::fabs(stored(i, c)) * 100;
    };
    if (!(apart(0) <= sameCurvePercent)) return std::nullopt;
    const double distance = apart(1);
    if (!(distance <= largest)) largest = distance;
  }
  return largest;
}

class SeriesBuilder {
 public:
  SeriesBuilder(const ReportInput& input, const SeriesInput& series)
      : input_(input), series_(series), stored_(series.stored) {}

  SeriesReport build() {
    report_.name = stored_.SeriesName;
    report_.seriesID = stored_.SeriesID;
    const std::array<const SeriesInfo*, 1> self{&stored_};
    report_.rawDataHash = rawDataHash(self);
    report_.settings = series_.settings;
    report_.settingsAreKept = series_.settingsAreKept;
    report_.storedText = stored_.Summary;
    std::erase(report_.storedText, '\r');
    report_.curveAge = series_.age;
    report_.points = series_.points;
    addPoints();
    addFit();
    addComparison();
    return std::move(report_);
  }

 private:
  void remark(const std::string& kind, const std::string& text) {
    report_.remarks.push_back({kind, text});
  }

  void addPoints() {
    const calibration::TableReading curve(stored_.Fitted);
    MergedPoints merged(stored_.Merged);
    report_.parts = rawParts(input_, stored_, curve, merged);
    for (std::size_t i = 0; i < stored_.Merged.size(); ++i) {
      const double x = stored_.Merged(i, 0), y = stored_.Merged(i, 1);
      report_.merged.push_back({x, y, false, curve.deviationPercent(x, y)});
    }
    for (std::size_t i = 0; i < stored_.Fitted.size(); ++i)
      report_.curve.push_back({stored_.Fitted(i, 0), stored_.Fitted(i, 1), {}, {}});
    if (report_.curve.empty()) {
      remark("noCurve", "No curve is stored for this series; its points are shown as they are.");
    }
    if (series_.age == calibration::CurveAge::outdated) {
      remark("outdated",
             "The stored curve is older than its raw points: they have changed since it was "
             "fitted.");
    }
    if (const std::size_t strange = merged.left(); strange > 0) {
      remark("otherRawPoints",
             std::to_string(strange) + " of " + std::to_string(stored_.Merged.size()) +
                 " merged points are not among the raw points: the raw points have been changed "
                 "since the merge.");
    }
  }

  void addFit() {
    const FitOutcome& outcome = series_.refit.outcome;
    report_.equations = calibration::ranking(
        outcome, calibration::choiceOf(series_.settings.Choice).value_or(Choice::adjustedR2));
    if (outcome.Chosen) report_.chosen = outcome.Equations[*outcome.Chosen].Name;
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
    const auto distance = largestDistance(stored_.Fitted, series_.refit.curve);
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
        PreviousCurve{calibration::compareCurves(series_.previous->stored.Fitted, stored_.Fitted),
                      series_.previous->reCalID, series_.previous->date};
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
  const SeriesInfo& stored_;
  SeriesReport report_;
};

}  // namespace

Report buildReport(const ReportInput& input) {
  Report report{
      input.meter, input.setups, input.database, input.softwareVersion, input.createdAt, {}, {}};
  std::vector<const SeriesInfo*> stored;
  for (const SeriesInput& series : input.series) {
    stored.push_back(&series.stored);
    report.series.push_back(SeriesBuilder(input, series).build());
  }
  report.rawDataHash = rawDataHash(stored);
  return report;
}

}  // namespace pelmora::report
