// SPDX-License-Identifier: MIT
#include "report/stated_uncertainty.h"

#include "base/readable_number.h"
#include "report/printed_values.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>

namespace pelmora::report {
namespace {

using calibration::CurveEstimate;
using calibration::FittedCurve;

constexpr int probabilityDigits = 4;

UncertaintyStatement notStated(const std::string& why) {
  UncertaintyStatement none;
  none.whyNone = why;
  return none;
}

std::vector<CurveEstimate> atTablePoints(const FittedCurve& curve, const std::stop_token& stop) {
  std::vector<double> roshko;
  for (const calibration::CurvePoint& point : curve.table().points())
    roshko.push_back(point.roshko);
  calibration::EvaluateOptions options;
  options.reading = calibration::ReadAs::linear;
  options.stop = stop;
  return curve.at(roshko, options);
}

}  // namespace

std::optional<StatedUncertainty> stated(const std::optional<calibration::Budget>& budget) {
  if (!budget || !(budget->expanded > 0) || !std::isfinite(budget->expanded)) return std::nullopt;
  return StatedUncertainty{budget->roundedExpanded(), budget->roundedPercent(),
                           budget->coverageFactor, budget->probability, budget->isCmc};
}

std::optional<UncertaintySpan> spanOf(const std::vector<std::optional<StatedUncertainty>>& all) {
  std::optional<UncertaintySpan> span;
  for (const auto& each : all) {
    if (!each) return std::nullopt;
    if (!span) {
      span = {each->percent, each->percent, each->coverageFactor, each->coverageFactor,
              each->probability};
    }
    span->lowestPercent = std::min(span->lowestPercent, each->percent);
    span->highestPercent = std::max(span->highestPercent, each->percent);
    span->lowestFactor = std::min(span->lowestFactor, each->coverageFactor);
    span->highestFactor = std::max(span->highestFactor, each->coverageFactor);
  }
  return span;
}

UncertaintyStatement uncertaintyStatementOf(const FittedCurve& curve, const std::stop_token& stop) {
  if (curve.source() == calibration::CurveSource::table && curve.name().empty())
    return notStated("a new fit does not give the stored curve");
  std::vector<CurveEstimate> estimates;
  try {
    estimates = atTablePoints(curve, stop);
  } catch (const calibration::BadData& failure) {
    return notStated(failure.what());
  }
  UncertaintyStatement made;
  for (const CurveEstimate& each : estimates) made.curve.push_back(stated(each.budget));
  const auto span = spanOf(made.curve);
  if (!span) return notStated("the fit leaves the uncertainty of the curve unknown");
  made.span = *span;
  const calibration::Budget& first = *estimates.front().budget;
  made.stand = first.stand;
  made.hasStand = first.hasStand;
  made.cmcPercent = first.cmcPercent;
  for (const std::size_t i : {std::size_t{0}, estimates.size() / 2, estimates.size() - 1})
    made.budgets.push_back({estimates[i].roshko, estimates[i].strouhal, *estimates[i].budget});
  return made;
}

std::string coverageText(const UncertaintySpan& span) {
  const std::string low = printedCoverageFactor(span.lowestFactor),
                    high = printedCoverageFactor(span.highestFactor);
  return "k = " + low + (low == high ? "" : " to " + high) + ", " +
         significantText(100 * span.probability, probabilityDigits) + " %";
}

std::string percentSpanText(const UncertaintySpan& span) {
  const std::string low = printedUncertainty(span.lowestPercent),
                    high = printedUncertainty(span.highestPercent);
  return low + (low == high ? "" : " to " + high);
}

std::string uncertaintyText(const UncertaintyStatement& statement) {
  if (!statement.isStated())
    return "No expanded uncertainty U is stated: " + statement.whyNone + ".";
  const std::string start =
      "U (" + coverageText(statement.span) +
      ") is that of a value read linearly from the curve's table. It contains ";
  if (!statement.hasStand) {
    return start +
           "the scatter of the points about the curve and the reading error, and nothing of the "
           "stand: no uncertainty of the stand is recorded with the calibration.";
  }
  return start + "the curve, the reading error and everything that the stand states" +
         (statement.stand.empty() ? "" : " (" + statement.stand + ")") + "." +
         (statement.cmcPercent > 0 ? " No U is below the laboratory's CMC of " +
                                         significantText(statement.cmcPercent, 4) + " %."
                                   : "");
}

std::string pointUncertaintyText(const UncertaintyStatement& statement,
                                 const std::optional<UncertaintySpan>& ofPoints) {
  if (!ofPoints) return {};
  const std::string start = "U (" + coverageText(*ofPoints) +
                            ") is that of a single measured value. It contains the scatter of one "
                            "point about the curve";
  if (!statement.hasStand)
    return start + " alone: no uncertainty of the stand is recorded with the calibration.";
  return start + " and everything that the stand states.";
}

}  // namespace pelmora::report
