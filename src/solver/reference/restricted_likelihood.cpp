// SPDX-License-Identifier: MIT
#include "solver/reference/restricted_likelihood.h"

#include <cmath>
#include <utility>

namespace pelmora::solver::reference {
namespace {

Lanes dot(const LaneVector3& a, const LaneVector3& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

LaneVector3 product(const LaneMatrix3& a, const LaneVector3& v) {
  return {dot(a[0], v), dot(a[1], v), dot(a[2], v)};
}

// Transposed transition times vector.
LaneVector3 back(const Matrix3& a, const LaneVector3& v) {
  LaneVector3 result;
  for (unsigned i = 0; i < 3; ++i) result[i] = a[0][i] * v[0] + a[1][i] * v[1] + a[2][i] * v[2];
  return result;
}

// a' n a for a symmetric n.
void carryBack(const Matrix3& a, LaneMatrix3& n) {
  LaneMatrix3 na;
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j)
      na[i][j] = n[i][0] * a[0][j] + n[i][1] * a[1][j] + n[i][2] * a[2][j];
  }
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j <= i; ++j)
      n[i][j] = n[j][i] = a[0][i] * na[0][j] + a[1][i] * na[1][j] + a[2][i] * na[2][j];
  }
}

// The trends of a group, by lane.
struct LaneTrend {
  LaneColumns coefficients;
  std::array<LaneColumns, mostColumns> covariance;

  LaneTrend(std::span<const Node> nodes, unsigned columns) {
    const auto of = [&](auto value) {
      return lanesOf(nodes.size(), [&](std::size_t lane) { return value(nodes[lane].trend); });
    };
    for (unsigned i = 1; i < columns; ++i) {
      coefficients[i] = of([i](const TrendFit& trend) { return trend.coefficients[i]; });
      for (unsigned j = 1; j < columns; ++j)
        covariance[i][j] = of([i, j](const TrendFit& trend) { return trend.covariance[i][j]; });
    }
  }
};

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

std::vector<Columns> observationsOf(const Knots& knots, int columns) {
  std::vector<Columns> observations;
  observations.reserve(knots.knots.size());
  for (const Knot& knot : knots.knots) observations.push_back(observationAt(knots, knot, columns));
  return observations;
}

LikelihoodPass::LikelihoodPass(const Knots& knots, const ReferencePriors& priors, double offsets,
                               StopRequested stop)
    : knots_(knots),
      priors_(priors),
      offsets_(offsets),
      stop_(std::move(stop)),
      columns_(columnsOf(knots, offsets)),
      degreesOfFreedom_(static_cast<double>(knots.z.size()) - 2 + priors.noiseDegrees),
      observations_(observationsOf(knots, columns_)) {}

template <class Take>
void LikelihoodPass::filter(const Lanes& amplitude, const Lanes& growth,
                            const std::vector<MaternStep>& steps,
                            std::vector<Innovation>& innovations, Take take) {
  requireGoOn(stop_);
  SquareRootFilter process(amplitude, columns_);
  const bool keepsAll = innovations.size() == steps.size();
  for (std::size_t k = 0; k < steps.size(); ++k) {
    const Knot& knot = knots_.knots[k];
    if (k > 0) process.predict(steps[k]);
    const Lanes variance = noiseVariance(growth, knot.flowFraction);
    Innovation& innovation = innovations[keepsAll ? k : 0];
    process.observe(observations_[k], variance * (1 / static_cast<double>(knot.count)), innovation);
    take(knot, variance, innovation);
  }
}

std::vector<Node> LikelihoodPass::evaluate(NodeGroup group, const std::vector<MaternStep>& steps) {
  const auto of = [&](double Hyperparameters::*member) {
    return lanesOf(group.size(), [&](std::size_t lane) { return group[lane].*member; });
  };
  TrendRegression regression(columns_, knots_.drag, offsets_);
  std::vector<Innovation> last(1);
  filter(of(&Hyperparameters::amplitude), of(&Hyperparameters::growth), steps, last,
         [&](const Knot& knot, const Lanes& variance, const Innovation& innovation) {
           regression.add(innovation);
           regression.addRepeats(static_cast<double>(knot.count), knot.scatter, variance);
         });
  std::vector<Node> nodes;
  for (const Hyperparameters& h : group) {
    Node node;
    node.hyperparameters = h;
    node.trend = regression.finish(nodes.size());
    node.squares = node.trend.squares + priors_.noiseDegrees * priors_.noise * priors_.noise;
    const double off = std::log(h.length / priors_.length) / priors_.lengthSpread;
    node.logWeight =
        -0.5 * (node.trend.logDeterminant + degreesOfFreedom_ * std::log(node.squares) + off * off);
    nodes.push_back(node);
  }
  return nodes;
}

const std::vector<Influence>& LikelihoodPass::influences(std::span<const Node> nodes,
                                                         const std::vector<MaternStep>& steps) {
  const auto of = [&](double Hyperparameters::*member) {
    return lanesOf(nodes.size(),
                   [&](std::size_t lane) { return nodes[lane].hyperparameters.*member; });
  };
  innovations_.resize(steps.size());
  filter(of(&Hyperparameters::amplitude), of(&Hyperparameters::growth), steps, innovations_,
         [](const Knot&, const Lanes&, const Innovation&) {});
  const auto columns = static_cast<unsigned>(columns_);
  const LaneTrend trend(nodes, columns);
  influences_.resize(steps.size());
  // What the later knots say about the state behind this one: score by column, and its variance.
  std::array<LaneVector3, mostColumns> score{};
  LaneMatrix3 information{};
  LaneColumns nextU{};
  LaneVector3 nextCovariance{};  // of the score at the next knot with u there
  for (std::size_t k = steps.size(); k-- > 0;) {
    const Innovation& in = innovations_[k];
    Influence& influence = influences_[k];
    influence.withNext = 0;
    if (k + 1 < steps.size()) {
      const Matrix3& a = steps[k + 1].transition;
      for (unsigned c = 0; c < columns; ++c) score[c] = back(a, score[c]);
      carryBack(a, information);
      influence.withNext = -dot(in.gain, back(a, nextCovariance));
    }
    const LaneVector3 ng = product(information, in.gain);
    const Lanes own = in.weight + dot(in.gain, ng);
    LaneColumns u;
    for (unsigned c = 0; c < columns; ++c) u[c] = in.value[c] * in.weight - dot(in.gain, score[c]);
    influence.u = u[0];
    influence.own = own;
    for (unsigned i = 1; i < columns; ++i) {
      influence.u -= u[i] * trend.coefficients[i];
      Lanes uncertain = 0;
      for (unsigned j = 1; j < columns; ++j) uncertain += trend.covariance[i][j] * u[j];
      influence.own -= u[i] * uncertain;
      influence.withNext -= nextU[i] * uncertain;
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
