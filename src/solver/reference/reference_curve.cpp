// SPDX-License-Identifier: MIT
#include "solver/reference/reference_curve.h"

#include "base/number_text.h"
#include "base/run_time_error.h"
#include "base/student_t.h"
#include "solver/reference/two_sided_smoother.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

namespace pelmora::solver::reference {
namespace {

// Two standard deviations of the normal distribution.
constexpr double bandProbability = 0.9544997361036416;

// What Student's distribution adds to a band of two standard deviations.
double studentFactor(double freedom) { return twoSidedStudentT(bandProbability, freedom) / 2; }

// The share of the largest flow at an x of no fluid in particular: of the fluids measured there,
// or of the nearest, the one that has the least.
double flowFractionAt(const Knots& knots, double x) {
  double nearest = 0, fraction = 0;
  for (const Fluid& fluid : knots.fluids) {
    const double away = std::max({1.0, fluid.smallestX / x, x / fluid.largestX});
    const double here = std::min(1.0, x / fluid.largestX);
    if (fraction <= 0 || away < nearest || (away <= nearest && here < fraction)) {
      nearest = away;
      fraction = here;
    }
  }
  return fraction;
}

Error refused(const std::string& reason) {
  const Error classic = makeError(RunTimeError::invalidArgument);
  return {classic.number(), classic.source(), "No reference curve: " + reason};
}

// Counted from 1, as people count.
std::string named(std::size_t i) { return "point " + numberText(i + 1); }

std::vector<std::size_t> pointsInUse(const ReferenceData& data) {
  const std::size_t n = data.x.size();
  if (data.y.size() != n || (!data.fluid.empty() && data.fluid.size() != n) ||
      (!data.excluded.empty() && data.excluded.size() != n))
    throw refused("the columns differ in length");
  std::vector<std::size_t> used;
  std::vector<double> places;
  for (std::size_t i = 0; i < n; ++i) {
    if (!data.excluded.empty() && data.excluded[i] != 0) continue;
    if (!(std::isfinite(data.x[i]) && data.x[i] > 0))
      throw refused("the Roshko number of " + named(i) + " is not positive and finite");
    if (!std::isfinite(data.y[i]))
      throw refused("the Strouhal number of " + named(i) + " is not finite");
    used.push_back(i);
    places.push_back(data.x[i]);
  }
  std::sort(places.begin(), places.end());
  places.erase(std::unique(places.begin(), places.end()), places.end());
  if (used.size() < fewestPoints)
    throw refused("it takes four points, and there are " + numberText(used.size()));
  if (places.size() < fewestFlows)
    throw refused("it takes three different flows, and there are " + numberText(places.size()));
  return used;
}

bool isRelative(const ReferenceData& data, std::span<const std::size_t> used,
                ReferenceScale scale) {
  if (scale == ReferenceScale::absolute) return false;
  const auto bad =
      std::find_if(used.begin(), used.end(), [&](std::size_t i) { return data.y[i] <= 0; });
  if (bad != used.end() && scale == ReferenceScale::relative)
    throw refused("the Strouhal number of " + named(*bad) + " is not positive");
  return bad == used.end();
}

}  // namespace

std::vector<ReferenceCurve::OnScale> ReferenceCurve::onScale(std::span<const double> t,
                                                             std::span<const double> flowFraction,
                                                             const StopRequested& stop) const {
  if (t.empty()) return {};
  MergedPlaces places(knots_, t);
  const double freedom = summary_.degreesOfFreedom;
  const double factor = studentFactor(freedom);
  std::vector<OnScale> sum(t.size(), OnScale{});
  std::vector<double> squares(t.size());
  double length = 0;
  const auto add = [&](const SharedNode& shared, const std::vector<Smoothed>& smoothed) {
    const double growth = shared.node.hyperparameters.growth;
    const double unit = factor * factor * shared.node.squares / freedom;
    for (std::size_t i = 0; i < t.size(); ++i) {
      sum[i].z += shared.share * smoothed[i].mean;
      squares[i] += shared.share * smoothed[i].mean * smoothed[i].mean;
      sum[i].slope += shared.share * smoothed[i].slope;
      sum[i].curveVariance += shared.share * unit * smoothed[i].variance;
      sum[i].noiseVariance += shared.share * unit * noiseVariance(growth, flowFraction[i]);
    }
  };
  for (const auto& group : groupsOf(nodes_)) {
    requireGoOn(stop);
    const double lengthOfGroup = group.front().node.hyperparameters.length;
    if (lengthOfGroup != length) places.setLength(length = lengthOfGroup);
    const auto smoothed = places.smoothAt(group, offsets_);
    for (std::size_t lane = 0; lane < group.size(); ++lane) add(group[lane], smoothed[lane]);
  }
  for (std::size_t i = 0; i < t.size(); ++i)
    sum[i].curveVariance += std::max(0.0, squares[i] - sum[i].z * sum[i].z);
  return sum;
}

std::vector<ReferenceEstimate> ReferenceCurve::evaluate(std::span<const double> x,
                                                        const StopRequested& stop) const {
  for (std::size_t i = 0; i < x.size(); ++i) {
    if (!(std::isfinite(x[i]) && x[i] > 0))
      throw refused("the Roshko number " + numberText(x[i]) + " is not positive and finite");
  }
  std::vector<std::size_t> order(x.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return x[a] < x[b]; });
  std::vector<double> t, fraction;
  for (const std::size_t i : order) {
    t.push_back(std::log(x[i]) - knots_.origin);
    fraction.push_back(flowFractionAt(knots_, x[i]));
  }
  const auto found = onScale(t, fraction, stop);
  std::vector<ReferenceEstimate> estimates(x.size());
  for (std::size_t k = 0; k < order.size(); ++k) {
    const OnScale& at = found[k];
    const double line = knots_.level + knots_.slope * t[k];
    const double value = knots_.relative ? std::exp(line + at.z) : knots_.unit * (line + at.z);
    const double unit = knots_.relative ? value : knots_.unit;
    estimates[order[k]] = {value, unit * (knots_.slope + at.slope) / x[order[k]],
                           unit * std::sqrt(at.curveVariance),
                           unit * std::sqrt(at.curveVariance + at.noiseVariance)};
  }
  return estimates;
}

ReferenceCurve fitReference(const ReferenceData& data, const ReferenceOptions& options) {
  const std::vector<std::size_t> used = pointsInUse(data);
  const FitSetting setting{data.x,
                           data.y,
                           data.fluid,
                           isRelative(data, used, options.scale),
                           options.fluidOffsets,
                           options.drag,
                           options.priors,
                           options.lattice,
                           options.stopRequested};
  TrustedFit fit = fitTrusted(setting, used, options.robust ? &options.distrust : nullptr);
  ReferenceCurve curve;
  curve.offsets_ = options.fluidOffsets;
  curve.knots_ = std::move(fit.knots);
  curve.nodes_ = std::move(fit.nodes);
  curve.distrusted_ = std::move(fit.distrusted);
  curve.summarise(fit.left);
  curve.describePoints(data, fit.left, options.stopRequested);
  return curve;
}

void ReferenceCurve::summarise(const LeftOut& left) {
  ReferenceSummary& s = summary_;
  s.relative = knots_.relative;
  s.points = knots_.z.size();
  s.degreesOfFreedom = left.degreesOfFreedom;
  double lowest = 1;
  for (std::size_t k = 0; k < knots_.knots.size(); ++k) {
    lowest = std::min(lowest, knots_.knots[k].flowFraction);
    if (k == 0 || knots_.knots[k].t > knots_.knots[k - 1].t) ++s.flows;
  }
  for (const LeftOutPoint& point : left.points) s.effectiveParameters += point.leverage;
  double logLength = 0, high = 0, low = 0, amplitude = 0;
  s.logLikelihood = nodes_.front().node.logWeight;
  for (const SharedNode& shared : nodes_) {
    const Hyperparameters& h = shared.node.hyperparameters;
    const double variance = shared.share * shared.node.squares / s.degreesOfFreedom;
    logLength += shared.share * std::log10(h.length / std::numbers::ln10);
    high += variance;
    low += variance * noiseVariance(h.growth, lowest);
    amplitude += shared.share *
                 std::log(h.amplitude * h.amplitude * shared.node.squares / s.degreesOfFreedom);
    s.logLikelihood = std::max(s.logLikelihood, shared.node.logWeight);
  }
  s.length = std::pow(10, logLength);
  s.amplitude = knots_.unit * std::exp(amplitude / 2);
  s.noiseHigh = knots_.unit * std::sqrt(high);
  s.noiseLow = knots_.unit * std::sqrt(low);
}

void ReferenceCurve::describePoints(const ReferenceData& data, const LeftOut& left,
                                    const StopRequested& stop) {
  points_.resize(data.x.size());
  std::vector<bool> fitted(data.x.size(), false);
  const double factor = studentFactor(left.degreesOfFreedom - 1);
  for (std::size_t place = 0; place < knots_.order.size(); ++place) {
    const std::size_t i = knots_.order[place];
    fitted[i] = true;
    const LeftOutPoint& from = left.points[place];
    points_[i] = {PointState::used, onRaw(from.residual), onRaw(from.error),
                  knots_.unit * factor * from.scale};
  }
  std::vector<std::size_t> others;
  for (std::size_t i = 0; i < fitted.size(); ++i) {
    if (fitted[i]) continue;
    const bool excluded = !data.excluded.empty() && data.excluded[i] != 0;
    points_[i].state = excluded ? PointState::excluded : PointState::distrusted;
    const bool comparable = std::isfinite(data.x[i]) && data.x[i] > 0 && std::isfinite(data.y[i]) &&
                            (!knots_.relative || data.y[i] > 0);
    if (comparable) others.push_back(i);
  }
  std::sort(others.begin(), others.end(),
            [&](std::size_t a, std::size_t b) { return data.x[a] < data.x[b]; });
  std::vector<double> t, fraction;
  for (const std::size_t i : others) {
    t.push_back(std::log(data.x[i]) - knots_.origin);
    fraction.push_back(flowFractionAt(knots_, data.x[i]));
  }
  const auto found = onScale(t, fraction, stop);
  for (std::size_t k = 0; k < others.size(); ++k) {
    ReferencePoint& point = points_[others[k]];
    point.residual = onRaw(scaled(knots_, t[k], data.y[others[k]]) - found[k].z);
    point.leaveOneOut = point.residual;
    point.leaveOneOutSd = knots_.unit * std::sqrt(found[k].curveVariance + found[k].noiseVariance);
  }
}

// A difference in z as a share of the curve, or in the unit of y.
double ReferenceCurve::onRaw(double difference) const {
  return knots_.relative ? std::expm1(difference) : knots_.unit * difference;
}

}  // namespace pelmora::solver::reference
