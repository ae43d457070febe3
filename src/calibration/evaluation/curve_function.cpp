// SPDX-License-Identifier: MIT
#include "calibration/evaluation/curve_function.h"

#include "calibration/fit_watch.h"
#include "calibration/trust/trust_reference.h"
#include "solver/reference/reference_curve.h"
#include "solver/solver.h"
#include "uncertainty/input.h"

#include <pelmora/calibration/failure.h>

#include <algorithm>
#include <cmath>

namespace pelmora::calibration {
namespace {

using solver::reference::ReferenceCurve;
using solver::reference::ReferenceEstimate;

// The step of numerical derivatives, as a share of the Roshko number.
constexpr double differenceShare = 1e-3;
// A table whose values differ from those of a function by more than this share is not its table.
constexpr double sameValue = 1e-6;
constexpr std::size_t interpolatedPlaces = 400;

// Slope and bend at x from the values at its neighbours.
void differentiate(double x, double before, double here, double after, FunctionValue& value) {
  const double h = differenceShare * x;
  value.strouhal = here;
  value.slope = (after - before) / (2 * h);
  value.bend = (after - 2 * here + before) / (h * h);
}

std::vector<double> withNeighbours(std::span<const double> roshko) {
  std::vector<double> places;
  for (const double x : roshko)
    places.insert(places.end(), {x * (1 - differenceShare), x, x * (1 + differenceShare)});
  return places;
}

ReferenceCurve referenceAgain(const Fit& fit, const solver::reference::StopRequested& stop) {
  std::vector<double> x, y;
  std::vector<int> parts;
  std::vector<std::uint8_t> outside;
  for (const JudgedPoint& point : fit.trust->judged) {
    x.push_back(point.roshko);
    y.push_back(point.strouhal);
    parts.push_back(point.part);
    outside.push_back(point.use == PointUse::outside ? 1 : 0);
  }
  return solver::reference::fitReference({x, y, parts, outside}, {.stopRequested = stop});
}

double scatterOf(const ReferenceEstimate& at) {
  return std::sqrt(std::max(0.0, at.newPointSd * at.newPointSd - at.curveSd * at.curveSd));
}

// The reference curve by Hermite interpolation in ln x, between places so dense that no detail is
// lost. A value then costs little and does not depend on which others are requested with it.
class ReferenceFunction : public CurveFunction {
 public:
  // table: Roshko numbers at which the interpolation is exact.
  ReferenceFunction(const ReferenceCurve& curve, std::span<const double> table,
                    const solver::reference::StopRequested& stop) {
    const std::size_t intervals = table.size() - 1;
    const std::size_t parts = (interpolatedPlaces + intervals - 1) / intervals;
    for (std::size_t i = 0; i < intervals; ++i) {
      x_.push_back(table[i]);
      for (std::size_t k = 1; k < parts; ++k) {
        const double share = static_cast<double>(k) / static_cast<double>(parts);
        x_.push_back(table[i] * std::pow(table[i + 1] / table[i], share));
      }
    }
    x_.push_back(table.back());
    estimates_ = curve.evaluate(x_, stop);
  }
  [[nodiscard]] CurveSource source() const override { return CurveSource::reference; }

  [[nodiscard]] std::vector<double> values(std::span<const double> roshko) const override {
    std::vector<double> y;
    for (const double x : roshko) y.push_back(valueAt(x).strouhal);
    return y;
  }

  [[nodiscard]] std::vector<FunctionValue> at(std::span<const double> roshko) const override {
    std::vector<FunctionValue> found;
    for (const double x : roshko) found.push_back(valueAt(x));
    return found;
  }

 private:
  [[nodiscard]] FunctionValue valueAt(double x) const {
    const auto behind = std::upper_bound(x_.begin() + 1, x_.end() - 1, x);
    const auto i = static_cast<std::size_t>(behind - x_.begin()) - 1;
    const ReferenceEstimate &a = estimates_[i], &b = estimates_[i + 1];
    const double width = std::log(x_[i + 1] / x_[i]), s = std::log(x / x_[i]) / width, r = 1 - s;
    // Slopes over the share of the interval.
    const double da = width * x_[i] * a.derivative, db = width * x_[i + 1] * b.derivative;
    FunctionValue found;
    found.strouhal =
        a.value * (1 + 2 * s) * r * r + b.value * (3 - 2 * s) * s * s + s * r * (da * r - db * s);
    const double first =
        6 * s * r * (b.value - a.value) + da * r * (1 - 3 * s) + db * s * (3 * s - 2);
    const double second =
        6 * (1 - 2 * s) * (b.value - a.value) + da * (6 * s - 4) + db * (6 * s - 2);
    found.slope = first / (width * x);
    found.bend = (second / (width * width) - first / width) / (x * x);
    found.uncertainty = a.curveSd * r + b.curveSd * s;
    found.scatter = scatterOf(a) * r + scatterOf(b) * s;
    found.degrees = uncertainty::knownExactly;  // curveSd includes Student's factor
    return found;
  }

  std::vector<double> x_;
  std::vector<ReferenceEstimate> estimates_;
};

// The table itself, if it is not the table of a function: a rotor ratio, for example, that had to
// be changed so that it falls.
class ReadFunction : public CurveFunction {
 public:
  ReadFunction(Curve table, std::shared_ptr<const CurveFunction> uncertainty)
      : table_(std::move(table)), uncertainty_(std::move(uncertainty)) {}
  [[nodiscard]] CurveSource source() const override { return CurveSource::table; }

  [[nodiscard]] std::vector<double> values(std::span<const double> roshko) const override {
    std::vector<double> y;
    for (const double x : roshko) y.push_back(table_(x).strouhal);
    return y;
  }

  [[nodiscard]] std::vector<FunctionValue> at(std::span<const double> roshko) const override {
    std::vector<FunctionValue> found(roshko.size());
    if (uncertainty_) found = uncertainty_->at(roshko);
    const std::vector<double> y = values(withNeighbours(roshko));
    for (std::size_t i = 0; i < found.size(); ++i) {
      const double believed = found[i].strouhal;
      differentiate(roshko[i], y[3 * i], y[3 * i + 1], y[3 * i + 2], found[i]);
      found[i].bend = 0;  // straight pieces
      if (uncertainty_) found[i].departure = std::abs(found[i].strouhal - believed);
    }
    return found;
  }

 private:
  Curve table_;
  std::shared_ptr<const CurveFunction> uncertainty_;
};

class EquationFunction : public CurveFunction {
 public:
  // reference: the reference curve of a trusted fit; null for any other fit.
  EquationFunction(const Fit& fit, std::shared_ptr<const CurveFunction> reference)
      : engine_(createSolver()), model_(engine_->createModel()), reference_(std::move(reference)) {
    model_->Definition = {fit.chosen().Name, fit.chosen().Expression};
    // As a fit run sets them.
    model_->Settings.First = 250;
    model_->Settings.Second = 10;
    model_->Settings.ResidualTolerance = 1e-15;
    auto data = std::make_shared<FitData>();
    data->Names = {"Roshko", "Strouhal"};
    data->Symbols = {"X", "Y"};
    for (std::size_t c = 0; c < 2; ++c) {
      const auto column = fit.fitted.column(c);
      data->Columns.emplace_back(column.begin(), column.end());
    }
    model_->attach(data);
    if (!model_->solutionFound()) {
      throw NoFit({"equation '" + model_->Definition.Name +
                       "' cannot be fitted again: " + model_->failureReason(),
                   "", "fit the series again"});
    }
    scatter_ = fit.chosen().Statistics.ResidualStandardError;
    degrees_ = static_cast<double>(fit.fitted.size()) -
               static_cast<double>(fit.chosen().Parameters.size());
  }
  [[nodiscard]] CurveSource source() const override { return CurveSource::equation; }

  [[nodiscard]] std::vector<double> values(std::span<const double> roshko) const override {
    // One at a time, so that the other values requested do not affect even the last digit.
    std::vector<double> y;
    for (const double x : roshko) y.push_back(model_->evaluate({&x, 1}).front());
    return y;
  }

  [[nodiscard]] std::vector<FunctionValue> at(std::span<const double> roshko) const override {
    std::vector<FunctionValue> found(roshko.size());
    if (reference_) found = reference_->at(roshko);
    const std::vector<double> y = model_->evaluate(withNeighbours(roshko));
    const std::vector<double> own = values(roshko);
    const std::vector<double> errors =
        reference_ ? std::vector<double>() : model_->standardErrorsOfCurve(roshko);
    for (std::size_t i = 0; i < found.size(); ++i) {
      const double believed = found[i].strouhal;
      differentiate(roshko[i], y[3 * i], y[3 * i + 1], y[3 * i + 2], found[i]);
      found[i].strouhal = own[i];
      if (reference_) {
        found[i].departure = std::abs(found[i].strouhal - believed);
      } else if (i < errors.size() && degrees_ >= 1) {
        found[i].uncertainty = errors[i];
        found[i].scatter = scatter_;
        found[i].degrees = degrees_;
      }
    }
    return found;
  }

 private:
  std::shared_ptr<FitEngine> engine_;  // outlives its model
  std::unique_ptr<FitModel> model_;
  std::shared_ptr<const CurveFunction> reference_;
  double scatter_ = 0, degrees_ = 0;
};

bool isTableOf(const CurveFunction& function, const PointArray& table) {
  const std::vector<double> y = function.values(table.column(0));
  for (std::size_t i = 0; i < y.size(); ++i) {
    if (!(std::abs(y[i] - table(i, 1)) <= sameValue * std::abs(table(i, 1)))) return false;
  }
  return true;
}

std::shared_ptr<const CurveFunction> referenceFunctionOf(const Fit& fit,
                                                         const std::stop_token& stop) {
  const auto stopRequested = [&stop] { return stop.stop_requested(); };
  try {
    const auto places = fit.curve.column(0);
    if (const auto& kept = fit.trust->reference)
      return std::make_shared<const ReferenceFunction>(kept->curve, places, stopRequested);
    return std::make_shared<const ReferenceFunction>(referenceAgain(fit, stopRequested), places,
                                                     stopRequested);
  } catch (const solver::reference::Stopped&) {
    throw Cancelled({"the fit of " + nameOf(fit) + " was cancelled", nameOf(fit), ""});
  }
}

}  // namespace

std::shared_ptr<const CurveFunction> functionOf(const Fit& fit, const std::stop_token& stop) {
  if (!fit.accepted()) {
    throw NoFit({"the fit has no curve: " + fit.reason(), fit.series, "try another band or range"});
  }
  std::shared_ptr<const CurveFunction> reference;
  if (fit.trust) reference = referenceFunctionOf(fit, stop);
  const bool isReference = reference && fit.chosen().Name == referenceCurveName;
  if (!isReference) return std::make_shared<const EquationFunction>(fit, std::move(reference));
  if (isTableOf(*reference, fit.curve)) return reference;
  return std::make_shared<const ReadFunction>(Curve(fit.curve), std::move(reference));
}

std::shared_ptr<const CurveFunction> functionOf(const Curve& table) {
  return std::make_shared<const ReadFunction>(table, nullptr);
}

}  // namespace pelmora::calibration
