// SPDX-License-Identifier: MIT
#include "solver/reference/restricted_likelihood.h"

#include <cmath>
#include <utility>

namespace pelmora::solver::reference {
namespace {

// Transposed transition times vector.
Vector3 back(const Matrix3& a, const Vector3& v) {
  Vector3 result;
  for (unsigned i = 0; i < 3; ++i) result[i] = a[0][i] * v[0] + a[1][i] * v[1] + a[2][i] * v[2];
  return result;
}

Vector3 product(const Matrix3& a, const Vector3& v) {
  Vector3 result;
  for (unsigned i = 0; i < 3; ++i) result[i] = a[i][0] * v[0] + a[i][1] * v[1] + a[i][2] * v[2];
  return result;
}

Matrix3 product(const Matrix3& a, const Matrix3& b) {
  Matrix3 result;
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j)
      result[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
  }
  return result;
}

// a' n a for a symmetric n.
Matrix3 carriedBack(const Matrix3& a, const Matrix3& n) {
  const Matrix3 na = product(n, a);
  Matrix3 result;
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j <= i; ++j) {
      result[i][j] = a[0][i] * na[0][j] + a[1][i] * na[1][j] + a[2][i] * na[2][j];
      result[j][i] = result[i][j];
    }
  }
  return result;
}

double dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

}  // namespace

std::vector<MaternStep> stepsBetween(const Knots& knots, double length) {
  const double rate = maternRate(length);
  std::vector<MaternStep> steps(knots.knots.size());
  for (std::size_t k = 1; k < steps.size(); ++k)
    steps[k] = maternStep(rate * (knots.knots[k].t - knots.knots[k - 1].t));
  return steps;
}

int columnsOf(const Knots& knots, double offsets) {
  const auto fluids = static_cast<int>(knots.fluids.size());
  const bool apart = offsets > 0 && fluids > 1 && fluids <= mostFluidOffsets;
  return 3 + (knots.drag > 0 ? 1 : 0) + (apart ? fluids : 0);
}

Columns observationAt(const Knots& knots, const Knot& knot, int columns) {
  Columns observed{knot.mean, 1, knot.t};
  int next = 3;
  if (knots.drag > 0) observed[static_cast<unsigned>(next++)] = dragAt(knots, knot.t);
  if (columns > next) observed[static_cast<unsigned>(next + knot.fluid)] = 1;
  return observed;
}

LikelihoodPass::LikelihoodPass(const Knots& knots, const ReferencePriors& priors, double offsets,
                               StopRequested stop)
    : knots_(knots),
      priors_(priors),
      offsets_(offsets),
      stop_(std::move(stop)),
      columns_(columnsOf(knots, offsets)),
      degreesOfFreedom_(static_cast<double>(knots.z.size()) - 2 + priors.noiseDegrees),
      innovations_(knots.knots.size()),
      influences_(knots.knots.size()) {}

Node LikelihoodPass::evaluate(const Hyperparameters& h, const std::vector<MaternStep>& steps) {
  requireGoOn(stop_);
  SquareRootFilter filter(h.amplitude, columns_);
  TrendRegression regression(columns_, knots_.drag, offsets_);
  for (std::size_t k = 0; k < steps.size(); ++k) {
    const Knot& knot = knots_.knots[k];
    if (k > 0) filter.predict(steps[k]);
    const auto count = static_cast<double>(knot.count);
    const double variance = noiseVariance(h.growth, knot.flowFraction);
    innovations_[k] = filter.observe(observationAt(knots_, knot, columns_), variance / count);
    regression.add(innovations_[k]);
    regression.addRepeats(count, knot.scatter, variance);
  }
  Node node;
  node.hyperparameters = h;
  node.trend = regression.finish();
  node.squares = node.trend.squares + priors_.noiseDegrees * priors_.noise * priors_.noise;
  const double off = std::log(h.length / priors_.length) / priors_.lengthSpread;
  node.logWeight =
      -0.5 * (node.trend.logDeterminant + degreesOfFreedom_ * std::log(node.squares) + off * off);
  return node;
}

const std::vector<Influence>& LikelihoodPass::influences(const std::vector<MaternStep>& steps,
                                                         const TrendFit& trend) {
  requireGoOn(stop_);
  const auto columns = static_cast<unsigned>(columns_);
  // What the later knots say about the state behind this one: score by column, and its variance.
  std::array<Vector3, mostColumns> score{};
  Matrix3 information{};
  Columns nextU{};
  Vector3 nextCovariance{};  // of the score at the next knot with u there
  for (std::size_t k = steps.size(); k-- > 0;) {
    const Innovation& in = innovations_[k];
    Influence& influence = influences_[k];
    double withNext = 0;
    if (k + 1 < steps.size()) {
      const Matrix3& a = steps[k + 1].transition;
      for (unsigned c = 0; c < columns; ++c) score[c] = back(a, score[c]);
      information = carriedBack(a, information);
      withNext = -dot(in.gain, back(a, nextCovariance));
    }
    const Vector3 ng = product(information, in.gain);
    const double own = 1 / in.variance + dot(in.gain, ng);
    Columns u{};
    for (unsigned c = 0; c < columns; ++c)
      u[c] = in.value[c] / in.variance - dot(in.gain, score[c]);
    influence = {u[0], own, withNext};
    for (unsigned i = 1; i < columns; ++i) {
      influence.u -= u[i] * trend.coefficients[i];
      for (unsigned j = 1; j < columns; ++j) {
        influence.own -= u[i] * trend.covariance[i][j] * u[j];
        influence.withNext -= u[i] * trend.covariance[i][j] * nextU[j];
      }
    }
    // To the state before this knot was read: h u + score, and (I - h g') N (I - g h') + h h'/F.
    nextU = u;
    nextCovariance = {own - ng[0], -ng[1], -ng[2]};
    for (unsigned c = 0; c < columns; ++c) score[c][0] += u[c];
    information[0][0] += own - 2 * ng[0];
    for (unsigned i = 1; i < 3; ++i) {
      information[0][i] -= ng[i];
      information[i][0] = information[0][i];
    }
  }
  return influences_;
}

}  // namespace pelmora::solver::reference
