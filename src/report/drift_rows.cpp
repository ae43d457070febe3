// SPDX-License-Identifier: MIT
#include "report/drift_rows.h"

#include "base/readable_number.h"
#include "report/budget_text.h"
#include "report/printed_values.h"

namespace pelmora::report {
namespace {

std::string verdictOf(const calibration::DriftValue& value, const DriftVerdicts& verdicts) {
  const bool isShift = value.sincePrevious && value.sincePrevious->isSignificant();
  if (isShift && value.isBeyondLimits) return verdicts.shift + ", " + verdicts.limit;
  if (isShift) return verdicts.shift;
  return value.isBeyondLimits ? verdicts.limit : "";
}

}  // namespace

std::vector<std::string> driftCells(const calibration::Drift& drift,
                                    const calibration::DriftPlace& place, std::size_t i,
                                    const DriftVerdicts& verdicts) {
  const calibration::DatedCurve& dated = drift.calibrations[i];
  const calibration::DriftValue& value = place.values[i];
  const auto& shift = value.sincePrevious;
  return {std::to_string(dated.calibration) + (dated.date.empty() ? "" : " " + dated.date),
          printedFactor(value.strouhal),
          expandedPercentText(value.budget),
          percentText(value.percent),
          shift ? percentText(shift->percent) : "-",
          shift ? printedUncertainty(shift->uncertaintyPercent) : "-",
          shift ? printedUncertainty(shift->en) : "-",
          verdictOf(value, verdicts)};
}

std::string controlLimitsText(const calibration::DriftPlace& place) {
  if (!place.chart) return {};
  const std::string source =
      place.chart->isFromUncertainty
          ? "the uncertainty of a calibration"
          : "the moving range of " + std::to_string(place.values.size()) + " calibrations";
  return "Control limits " + percentText(place.chart->low) + " % to " +
         percentText(place.chart->high) + " %, from " + source + ".";
}

}  // namespace pelmora::report
