// SPDX-License-Identifier: MIT
#include "solver/reference/left_out.h"

#include "base/student_t.h"

#include <cmath>
#include <limits>

namespace pelmora::solver::reference {
namespace {

// Weighted sums of what nodes say, weights given by their logarithms.
class LogWeightedMean {
 public:
  void add(double logWeight, double a, double b, double c) {
    double weight = 1;
    if (logWeight > top_) {
      const double shrink = std::exp(top_ - logWeight);
      weight_ *= shrink;
      a_ *= shrink;
      b_ *= shrink;
      c_ *= shrink;
      top_ = logWeight;
    } else {
      weight = std::exp(logWeight - top_);
    }
    weight_ += weight;
    a_ += weight * a;
    b_ += weight * b;
    c_ += weight * c;
  }
  [[nodiscard]] double a() const { return a_ / weight_; }
  [[nodiscard]] double b() const { return b_ / weight_; }
  [[nodiscard]] double c() const { return c_ / weight_; }

 private:
  double top_ = -std::numeric_limits<double>::infinity();
  double weight_ = 0, a_ = 0, b_ = 0, c_ = 0;
};

// A raw point's part in M z and in M.
struct PointInfluence {
  double u, own;
};

PointInfluence pointInfluence(const Knots& knots, const Knot& knot, const Influence& influence,
                              double noise, std::size_t place) {
  const auto count = static_cast<double>(knot.count);
  return {(knots.z[place] - knot.mean) / noise + influence.u / count,
          (1 - 1 / count) / noise + influence.own / (count * count)};
}

struct Candidate {
  LeftOutPair pair;
  std::size_t firstKnot, secondKnot;
};

std::vector<Candidate> candidates(const Knots& knots) {
  std::vector<Candidate> found;
  for (std::size_t k = 0; k < knots.knots.size(); ++k) {
    const Knot& knot = knots.knots[k];
    for (std::size_t i = 1; i < knot.count; ++i)
      found.push_back({{knot.first + i - 1, knot.first + i, 1}, k, k});
    if (k + 1 == knots.knots.size()) continue;
    const Knot& next = knots.knots[k + 1];
    found.push_back({{knot.first, next.first, 1}, k, k + 1});
    if (knot.count > 1 || next.count > 1) {
      found.push_back({{knot.first + knot.count - 1, next.first + next.count - 1, 1}, k, k + 1});
    }
  }
  return found;
}

}  // namespace

LeftOut leaveOut(const Knots& knots, const ReferencePriors& priors, double offsets,
                 const std::vector<SharedNode>& nodes, bool withPairs, const StopRequested& stop) {
  LikelihoodPass pass(knots, priors, offsets, stop);
  const double freedom = pass.degreesOfFreedom();
  const auto pairs = withPairs && freedom > 3 ? candidates(knots) : std::vector<Candidate>{};
  std::vector<LogWeightedMean> points(knots.z.size()), pairTails(pairs.size());
  std::vector<PointInfluence> own(knots.z.size());
  LeftOut result;
  result.degreesOfFreedom = freedom;
  result.points.resize(points.size());
  std::vector<MaternStep> steps;
  double stepsOf = 0;
  for (const SharedNode& shared : nodes) {
    const Hyperparameters& h = shared.node.hyperparameters;
    if (h.length != stepsOf) {
      steps = stepsBetween(knots, h.length);
      stepsOf = h.length;
    }
    const Node node = pass.evaluate(h, steps);
    const auto& influences = pass.influences(steps, node.trend);
    const auto logWeight = [&](double determinant, double squares, double left) {
      return node.logWeight + 0.5 * (freedom * std::log(node.squares) -
                                     (freedom - left) * std::log(squares) - std::log(determinant));
    };
    for (std::size_t k = 0; k < influences.size(); ++k) {
      const Knot& knot = knots.knots[k];
      const double noise = noiseVariance(h.growth, knot.flowFraction);
      for (std::size_t i = knot.first; i < knot.first + knot.count; ++i) {
        own[i] = pointInfluence(knots, knot, influences[k], noise, i);
        const double error = own[i].u / own[i].own;
        const double squares = node.squares - own[i].u * error;
        points[i].add(logWeight(own[i].own, squares, 1), error, error * error,
                      squares / ((freedom - 1) * own[i].own));
        result.points[i].residual += shared.share * noise * own[i].u;
        result.points[i].leverage += shared.share * (1 - noise * own[i].own);
      }
    }
    for (std::size_t c = 0; c < pairs.size(); ++c) {
      const Candidate& pair = pairs[c];
      const Knot& knot = knots.knots[pair.firstKnot];
      const Knot& next = knots.knots[pair.secondKnot];
      const Influence& influence = influences[pair.firstKnot];
      const auto count = static_cast<double>(knot.count);
      const double between = pair.firstKnot == pair.secondKnot
                                 ? influence.own / (count * count) -
                                       1 / (count * noiseVariance(h.growth, knot.flowFraction))
                                 : influence.withNext / (count * static_cast<double>(next.count));
      const PointInfluence a = own[pair.pair.first], b = own[pair.pair.second];
      const double determinant = a.own * b.own - between * between;
      const double explained =
          (a.u * a.u * b.own - 2 * a.u * b.u * between + b.u * b.u * a.own) / determinant;
      const double left = std::log1p(-explained / node.squares);
      const double logOfWeight =
          node.logWeight +
          0.5 * (2 * std::log(node.squares) - (freedom - 2) * left - std::log(determinant));
      pairTails[c].add(logOfWeight, std::exp(0.5 * (freedom - 2) * left), 0, 0);
    }
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    LeftOutPoint& point = result.points[i];
    point.error = points[i].a();
    point.scale =
        std::sqrt(points[i].c() + std::fmax(0, points[i].b() - point.error * point.error));
    point.tail = twoSidedStudentTail(std::abs(point.error) / point.scale, freedom - 1);
  }
  for (std::size_t c = 0; c < pairs.size(); ++c) {
    result.pairs.push_back(pairs[c].pair);
    result.pairs.back().tail = pairTails[c].a();
  }
  return result;
}

}  // namespace pelmora::solver::reference
