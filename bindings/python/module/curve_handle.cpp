// SPDX-License-Identifier: MIT
#include "bindings/python/module/curve_handle.h"

#include "bindings/python/module/watched.h"

#include <pelmora/calibration/failure.h>

#include <utility>
#include <vector>

namespace pelmora::python {
namespace {

namespace cal = pelmora::calibration;

cal::Curve tableWithBands(const cal::Fit& fit) {
  if (!fit.accepted())
    throw cal::NoFit({"the fit has no curve: " + fit.reason(), fit.series, "try another band"});
  std::vector<cal::CurvePoint> points(fit.curve.size());
  const FitOutcome& outcome = fit.outcome;
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i].roshko = fit.curve(i, 0);
    points[i].strouhal = fit.curve(i, 1);
    if (i < outcome.ConfidenceHalfWidth.size())
      points[i].confidence = outcome.ConfidenceHalfWidth[i];
    if (i < outcome.PredictionHalfWidth.size())
      points[i].prediction = outcome.PredictionHalfWidth[i];
  }
  return cal::Curve(std::move(points));
}

}  // namespace

CurveHandle::CurveHandle(FitResult fit, std::optional<cal::StandStatement> statement)
    : fit_(std::move(fit)),
      statement_(std::move(statement)),
      series_((*fit_)->series),
      table_(tableWithBands(**fit_)) {}

CurveHandle::CurveHandle(cal::Curve table, std::string series)
    : series_(std::move(series)), table_(std::move(table)) {}

const cal::FittedCurve& CurveHandle::function() const {
  if (function_) return *function_;
  std::optional<cal::FittedCurve> made;
  watched({}, [&](const cal::Observer& observer) {
    made = fit_ ? cal::FittedCurve(**fit_, cal::CurveOrigin{statement_}, observer.stop)
                : cal::FittedCurve(table_, series_);
  });
  // Another thread may have made it meanwhile.
  if (!function_) function_ = std::move(made);
  return *function_;
}

}  // namespace pelmora::python
