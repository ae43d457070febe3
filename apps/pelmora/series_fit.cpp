// SPDX-License-Identifier: MIT
#include "apps/pelmora/series_fit.h"

#include "apps/pelmora/input/csv_points.h"
#include "apps/pelmora/equation_folder.h"
#include "apps/pelmora/output/fit_advice.h"
#include "apps/pelmora/output/text_table.h"

#include <pelmora/curve_settings.h>

#include <algorithm>
#include <limits>

namespace pelmora::cli {
namespace {

constexpr double outsideAnyRange = std::numeric_limits<double>::quiet_NaN();

std::string placeOf(const MeterInfo& meter, const std::string& series) {
  return "series '" + series + "' of meter '" + meter.SerialNumber + "'";
}

void requirePoints(const MeterInfo& meter, SeriesFit& fit, const SeriesInfo& stored) {
  std::size_t usable = 0;
  for (std::size_t part = 0; part < fit.rawPoints.size(); ++part) {
    fit.rawPoints[part] = stored.Raw[part].Points.size();
    // The merge leaves out a part of a single point.
    if (fit.rawPoints[part] > 1) usable += fit.rawPoints[part];
  }
  const std::string place = placeOf(meter, fit.series);
  if (usable == 0) {
    throw Trouble(ExitCode::badInput, place + " has no raw part of two points or more",
                  "import a run or bring points with 'pelmora raw'");
  }
  if (usable > mostPoints) {
    throw Trouble(ExitCode::badInput,
                  place + " has " + std::to_string(usable) + " raw points; a fit takes at most " +
                      std::to_string(mostPoints),
                  "thin out its raw parts");
  }
}

// One run of the component. Where the range is not settled, `onRange` answers, or the operator.
void runFit(CurveSession& session, const MeterInfo& meter, SeriesFit& fit,
            std::optional<RangeAnswer> onRange) {
  RawData& data = session.data();
  session.messages().forget();
  session.messages().rangeAnswer = onRange;
  data.RatioCurve = fit.options.ratio;
  data.IgnoreResiduals = fit.options.ignoreResiduals;
  data.NumberOfFittedPoints = fit.options.points;
  data.BandPercent(static_cast<float>(fit.options.band));
  bool isEmpty = true;
  fit.curve = data.determineFittedCurve(fit.series, meter.SerialNumber, isEmpty, fit.min, fit.max,
                                        "Roshko", "Strouhal", fit.options.inverted, meter.ReCalID);
  if (isEmpty) fit.curve = {};
}

// The ends that the user has not given are those of the merged points, which only a fit tells.
void settleRange(CurveSession& session, const MeterInfo& meter, SeriesFit& fit) {
  const FitOptions& options = fit.options;
  if (options.min.has_value() != options.max.has_value()) {
    fit.min = fit.max = outsideAnyRange;
    runFit(session, meter, fit, RangeAnswer::retry);
  }
  const bool isWhole = !options.min && !options.max;
  fit.min = options.min.value_or(isWhole ? outsideAnyRange : fit.min);
  fit.max = options.max.value_or(isWhole ? outsideAnyRange : fit.max);
  if (fit.min >= fit.max) {
    throw Trouble(ExitCode::usage,
                  "--min " + significantText(fit.min, 15) + " is not below --max " +
                      significantText(fit.max, 15),
                  "give a range from small to large");
  }
}

void requireRange(const MessageRecorder& messages, const SeriesFit& fit) {
  if (messages.rangeAnswered() != RangeAnswer::abort) return;
  throw Trouble(
      ExitCode::rangeRefused,
      "the range from " + significantText(fit.min, 15) + " to " + significantText(fit.max, 15) +
          " is not inside the raw points of series '" + fit.series + "', which reach " +
          *messages.rawRange(),
      "leave --min and --max out or use --on-range retry to fit the raw range; --on-range ignore "
      "extrapolates");
}

calibration::Fit asFit(const SeriesFit& fit) {
  calibration::Fit same;
  same.min = fit.min;
  same.max = fit.max;
  same.merged = same.fitted = fit.merged;
  same.outcome = fit.outcome;
  return same;
}

}  // namespace

SeriesFit tryStored(CurveSession& session, const MeterInfo& meter, const SeriesInfo& stored,
                    const FitOptions& options) {
  SeriesFit fit;
  fit.series = stored.SeriesName;
  fit.options = options;
  fit.seriesID = stored.SeriesID;
  fit.meterID = meter.MeterID;
  requirePoints(meter, fit, stored);

  fit.equations =
      options.keptEquations
          ? cleanedEquations(*options.keptEquations,
                             "the text kept with the curve of " + placeOf(meter, fit.series))
          : equationsOf(options.equations, options.ratio);
  const EquationFolder::Use equations = session.equationFolder().use(fit.equations, options.ratio);
  settleRange(session, meter, fit);
  const bool isWhole = !options.min && !options.max;
  runFit(session, meter, fit, isWhole ? RangeAnswer::retry : options.onRange);
  requireRange(session.messages(), fit);
  fit.isWholeRange = session.messages().rangeAnswered() == RangeAnswer::retry;

  RawData& data = session.data();
  fit.merged = data.LastMergedArray();
  fit.outcome = data.LastFit();
  fit.report = data.DataFitResultDetails;
  const std::string place = placeOf(meter, fit.series);
  if (!session.messages().errors().empty()) {
    fit.trouble = Trouble(ExitCode::notFitted,
                          "fitting " + place + ": " + session.messages().errors().front(),
                          "no curve was stored");
    return fit;
  }
  if (fit.curve.empty()) {
    fit.trouble =
        Trouble(ExitCode::notFitted,
                "no equation passed the tests for " + place + ": " + shortReason(asFit(fit)),
                shortAdvice(asFit(fit)) + "; no curve was stored");
    return fit;
  }
  return fit;
}

}  // namespace pelmora::cli
