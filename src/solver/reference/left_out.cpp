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

// The influences of one node of a group.
struct LaneInfluences {
  const std::vector<Influence>& all;
  std::size_t lane;
  [[nodiscard]] double u(std::size_t k) const { return all[k].u[lane]; }
  [[nodiscard]] double own(std::size_t k) const { return all[k].own[lane]; }
  [[nodiscard]] double withNext(std::size_t k) const { return all[k].withNext[lane]; }
};

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

// Sums over the nodes what each says about every point and pair.
class LeftOutSums {
 public:
  LeftOutSums(const Knots& knots, double freedom, bool withPairs)
      : knots_(knots),
        freedom_(freedom),
        pairs_(withPairs && freedom > 3 ? candidates(knots) : std::vector<Candidate>{}),
        points_(knots.z.size()),
        pairTails_(pairs_.size()),
        own_(knots.z.size()) {
    result_.degreesOfFreedom = freedom;
    result_.points.resize(points_.size());
  }

  void add(const SharedNode& shared, const LaneInfluences& influences) {
    addPoints(shared, influences);
    for (std::size_t c = 0; c < pairs_.size(); ++c) addPair(c, shared.node, influences);
  }

  [[nodiscard]] LeftOut take() {
    for (std::size_t i = 0; i < points_.size(); ++i) {
      LeftOutPoint& point = result_.points[i];
      point.error = points_[i].a();
      point.scale =
          std::sqrt(points_[i].c() + std::fmax(0, points_[i].b() - point.error * point.error));
      point.tail = twoSidedStudentTail(std::abs(point.error) / point.scale, freedom_ - 1);
    }
    for (std::size_t c = 0; c < pairs_.size(); ++c) {
      result_.pairs.push_back(pairs_[c].pair);
      result_.pairs.back().tail = pairTails_[c].a();
    }
    return std::move(result_);
  }

 private:
  void addPoints(const SharedNode& shared, const LaneInfluences& influences) {
    const Node& node = shared.node;
    const double base = node.logWeight + 0.5 * freedom_ * std::log(node.squares);
    for (std::size_t k = 0; k < knots_.knots.size(); ++k) {
      const Knot& knot = knots_.knots[k];
      const double noise = noiseVariance(node.hyperparameters.growth, knot.flowFraction);
      const auto count = static_cast<double>(knot.count);
      const double u = influences.u(k) / count;
      const double own = (1 - 1 / count) / noise + influences.own(k) / (count * count);
      const double logOwn = std::log(own);
      for (std::size_t i = knot.first; i < knot.first + knot.count; ++i) {
        own_[i] = {(knots_.z[i] - knot.mean) / noise + u, own};
        const double error = own_[i].u / own;
        const double squares = node.squares - own_[i].u * error;
        points_[i].add(base - 0.5 * ((freedom_ - 1) * std::log(squares) + logOwn), error,
                       error * error, squares / ((freedom_ - 1) * own));
        result_.points[i].residual += shared.share * noise * own_[i].u;
        result_.points[i].leverage += shared.share * (1 - noise * own);
      }
    }
  }

  void addPair(std::size_t c, const Node& node, const LaneInfluences& influences) {
    const Candidate& pair = pairs_[c];
    const Knot& knot = knots_.knots[pair.firstKnot];
    const Knot& next = knots_.knots[pair.secondKnot];
    const auto count = static_cast<double>(knot.count);
    const double growth = node.hyperparameters.growth;
    const double between =
        pair.firstKnot == pair.secondKnot
            ? influences.own(pair.firstKnot) / (count * count) -
                  1 / (count * noiseVariance(growth, knot.flowFraction))
            : influences.withNext(pair.firstKnot) / (count * static_cast<double>(next.count));
    const PointInfluence a = own_[pair.pair.first], b = own_[pair.pair.second];
    const double determinant = a.own * b.own - between * between;
    const double explained =
        (a.u * a.u * b.own - 2 * a.u * b.u * between + b.u * b.u * a.own) / determinant;
    const double left = std::log1p(-explained / node.squares);
    const double power = 0.5 * (freedom_ - 2) * left;
    pairTails_[c].add(node.logWeight + std::log(node.squares) - power - 0.5 * std::log(determinant),
                      std::exp(power), 0, 0);
  }

  const Knots& knots_;
  double freedom_;
  std::vector<Candidate> pairs_;
  std::vector<LogWeightedMean> points_, pairTails_;
  std::vector<PointInfluence> own_;
  LeftOut result_;
};

}  // namespace

LeftOut leaveOut(const Knots& knots, const ReferencePriors& priors, double offsets,
                 const std::vector<SharedNode>& nodes, bool withPairs, const StopRequested& stop) {
  LikelihoodPass pass(knots, priors, offsets, stop);
  LeftOutSums sums(knots, pass.degreesOfFreedom(), withPairs);
  std::vector<MaternStep> steps;
  double stepsOf = 0;
  for (const auto& group : groupsOf(nodes)) {
    const double length = group.front().node.hyperparameters.length;
    if (length != stepsOf) steps = stepsBetween(knots, stepsOf = length);
    std::vector<Node> together;
    for (const SharedNode& shared : group) together.push_back(shared.node);
    const auto& influences = pass.influences(together, steps);
    for (std::size_t lane = 0; lane < group.size(); ++lane)
      sums.add(group[lane], {influences, lane});
  }
  return sums.take();
}

}  // namespace pelmora::solver::reference
