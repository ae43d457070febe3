// SPDX-License-Identifier: MIT
#include "calibration/optimal_table.h"

#include "calibration/steps/fit_report.h"
#include "tables/placed_table.h"

#include <algorithm>

namespace pelmora::calibration {

std::vector<double> optimalGrid(const Fit& fit, const CurveSamples& curve,
                                const std::function<void()>& goOn) {
  std::vector<double> grid =
      tables::placeTable(curve, {fit.min, fit.max}, static_cast<std::size_t>(fit.settings.points),
                         tables::Reading::linear, goOn)
          .x;
  grid.front() = fit.min;
  grid.back() = fit.max;
  return grid;
}

void replaceTable(Fit& fit, const std::vector<double>& roshko,
                  const std::vector<double>& strouhal) {
  PointArray table(roshko.size());
  for (std::size_t i = 0; i < roshko.size(); ++i) {
    table(i, 0) = roshko[i];
    table(i, 1) = strouhal[i];
  }
  const steps::FitLabels labels{"Roshko", "Strouhal"};
  const std::string before = steps::predictedListing(labels, fit.curve);
  if (const auto at = fit.report.find(before); at != std::string::npos)
    fit.report.replace(at, before.size(), steps::predictedListing(labels, table));
  fit.outcome.Equations[*fit.outcome.Chosen].Predicted = table;
  fit.curve = std::move(table);
  std::erase_if(fit.outcome.Warnings, [](const CurveWarning& warning) {
    return warning.Kind == CurveWarningKind::tableReading;
  });
}

}  // namespace pelmora::calibration
