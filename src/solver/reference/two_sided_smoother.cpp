// SPDX-License-Identifier: MIT
#include "solver/reference/two_sided_smoother.h"

#include <algorithm>
#include <cmath>

namespace pelmora::solver::reference {
namespace {

// Three rows of a least-squares problem: unknowns first, then right-hand sides.
template <std::size_t Width>
using Block = std::array<std::array<Lanes, Width>, 3>;

// A Householder reflection that leaves nothing of column k below its head, which is 1 where nothing
// else stands in the head's row.
struct UnitReflection {
  Lanes norm, head, scale;

  template <std::size_t Width>
  UnitReflection(const Block<Width>& a, unsigned k) {
    norm = sqrt(1 + (a[0][k] * a[0][k] + a[1][k] * a[1][k] + a[2][k] * a[2][k]));
    head = 1 + norm;
    scale = 1 / (norm * head);
  }
  // Applies it to column j; returns what the head's row has there now, divided by -head.
  template <std::size_t Width>
  Lanes apply(Block<Width>& a, unsigned k, unsigned j) const {
    const Lanes sum = scale * (a[0][k] * a[0][j] + a[1][k] * a[1][j] + a[2][k] * a[2][j]);
    for (unsigned i = 0; i < 3; ++i) a[i][j] -= sum * a[i][k];
    return sum;
  }
};

// |root s - right|^2 is what the points behind a place say of the state s there.
struct Future {
  LaneMatrix3 root{};
  std::array<LaneColumns, 3> right{};
};

// Over a step, s = transition s0 + amplitude factor w: w takes what is cheapest, and what is left
// says something of s0. The rows of w alone are the identity, in front of these.
void stepBack(Future& future, const MaternStep& step, const Lanes& amplitude, unsigned columns) {
  Block<6 + mostColumns> a;
  for (unsigned i = 0; i < 3; ++i) {
    const LaneVector3& root = future.root[i];
    const Matrix3 &factor = step.factor, &transition = step.transition;
    a[i][0] =
        amplitude * (root[0] * factor[0][0] + root[1] * factor[1][0] + root[2] * factor[2][0]);
    a[i][1] = amplitude * (root[1] * factor[1][1] + root[2] * factor[2][1]);
    a[i][2] = amplitude * (root[2] * factor[2][2]);
    for (unsigned j = 0; j < 3; ++j)
      a[i][3 + j] =
          root[0] * transition[0][j] + root[1] * transition[1][j] + root[2] * transition[2][j];
    for (unsigned c = 0; c < columns; ++c) a[i][6 + c] = future.right[i][c];
  }
  for (unsigned k = 0; k < 3; ++k) {
    const UnitReflection reflection(a, k);
    for (unsigned j = k + 1; j < 6 + columns; ++j) static_cast<void>(reflection.apply(a, k, j));
  }
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) future.root[i][j] = a[i][3 + j];
    for (unsigned c = 0; c < columns; ++c) future.right[i][c] = a[i][6 + c];
  }
}

// A point says (state - observed) / sd of the first part of the state alone.
void readPoint(Future& future, const Columns& observed, const Lanes& noise, unsigned columns) {
  const Lanes weight = 1 / sqrt(noise);
  LaneVector3 row{weight};
  LaneColumns value;
  for (unsigned c = 0; c < columns; ++c) value[c] = weight * observed[c];
  // Reflections of the row against what each column has, down to a triangle: row 0 takes column 0,
  // and so on; what is left of the last row says nothing of the state.
  std::array<LaneVector3, 4> a{row, future.root[0], future.root[1], future.root[2]};
  std::array<LaneColumns, 4> right{value, future.right[0], future.right[1], future.right[2]};
  for (unsigned k = 0; k < 3; ++k) {
    Lanes squares = 0;
    for (unsigned i = k + 1; i < 4; ++i) squares += a[i][k] * a[i][k];
    const Lanes norm = sqrt(squares + a[k][k] * a[k][k]);
    const Lanes diagonal = withOppositeSign(norm, a[k][k]);
    const Lanes head = a[k][k] - diagonal;
    const Lanes scale = 2 * inverseOfPositive(squares + head * head);
    const auto reflect = [&](auto& of, unsigned j) {
      Lanes sum = head * of[k][j];
      for (unsigned i = k + 1; i < 4; ++i) sum += a[i][k] * of[i][j];
      sum *= scale;
      of[k][j] -= sum * head;
      for (unsigned i = k + 1; i < 4; ++i) of[i][j] -= sum * a[i][k];
    };
    for (unsigned j = k + 1; j < 3; ++j) reflect(a, j);
    for (unsigned c = 0; c < columns; ++c) reflect(right, c);
    a[k][k] = diagonal;
    for (unsigned i = k + 1; i < 4; ++i) a[i][k] = 0;
  }
  for (unsigned i = 0; i < 3; ++i) {
    future.root[i] = a[i];
    for (unsigned c = 0; c < columns; ++c) future.right[i][c] = right[i][c];
  }
}

// What the points before a place say of the state there.
struct Past {
  LaneMatrix3 factor;
  std::array<LaneColumns, 3> mean;
};

// Mean by column of the process and of its slope, and the process's variance.
struct Joined {
  LaneColumns value, slope;
  Lanes variance;
};

Joined join(const Past& past, const Future& future, unsigned columns) {
  // s = mean + factor w minimises |w|^2 + |root s - right|^2; the rows of w alone are the identity.
  Block<3 + mostColumns> a;
  for (unsigned i = 0; i < 3; ++i) {
    const LaneVector3& root = future.root[i];
    a[i][0] =
        root[0] * past.factor[0][0] + root[1] * past.factor[1][0] + root[2] * past.factor[2][0];
    a[i][1] = root[1] * past.factor[1][1] + root[2] * past.factor[2][1];
    a[i][2] = root[2] * past.factor[2][2];
    for (unsigned c = 0; c < columns; ++c)
      a[i][3 + c] = future.right[i][c] - (root[0] * past.mean[0][c] + root[1] * past.mean[1][c] +
                                          root[2] * past.mean[2][c]);
  }
  // The triangle that is left in the rows of w, and its right-hand sides; all of it divided by -1.
  LaneMatrix3 triangle;
  std::array<LaneColumns, 3> right;
  for (unsigned k = 0; k < 3; ++k) {
    const UnitReflection reflection(a, k);
    triangle[k][k] = reflection.norm;
    for (unsigned j = k + 1; j < 3; ++j)
      triangle[k][j] = reflection.head * reflection.apply(a, k, j);
    for (unsigned c = 0; c < columns; ++c)
      right[k][c] = reflection.head * reflection.apply(a, k, 3 + c);
  }
  const Lanes i0 = 1 / triangle[0][0], i1 = 1 / triangle[1][1], i2 = 1 / triangle[2][2];
  Joined joined;
  for (unsigned c = 0; c < columns; ++c) {
    const Lanes w2 = right[2][c] * i2;
    const Lanes w1 = (right[1][c] - triangle[1][2] * w2) * i1;
    const Lanes w0 = (right[0][c] - triangle[0][1] * w1 - triangle[0][2] * w2) * i0;
    joined.value[c] = past.mean[0][c] + past.factor[0][0] * w0;
    joined.slope[c] = past.mean[1][c] + past.factor[1][0] * w0 + past.factor[1][1] * w1;
  }
  const Lanes g0 = past.factor[0][0] * i0;
  const Lanes g1 = -triangle[0][1] * g0 * i1;
  const Lanes g2 = -(triangle[0][2] * g0 + triangle[1][2] * g1) * i2;
  joined.variance = g0 * g0 + g1 * g1 + g2 * g2;
  return joined;
}

Smoothed withTrend(const Knots& knots, const Joined& joined, std::size_t lane,
                   const TrendFit& trend, double t, double rate) {
  const auto columns = static_cast<unsigned>(trend.columns);
  Columns trendAt{0, 1, t}, trendSlope{0, 0, 1};
  if (knots.drag > 0) trendSlope[3] = -(trendAt[3] = dragAt(knots, t));
  Columns departure{}, steepness{};
  Smoothed smoothed{joined.value[0][lane], rate * joined.slope[0][lane], joined.variance[lane]};
  for (unsigned i = 1; i < columns; ++i) {
    departure[i] = trendAt[i] - joined.value[i][lane];
    steepness[i] = trendSlope[i] - rate * joined.slope[i][lane];
    smoothed.mean += departure[i] * trend.coefficients[i];
    smoothed.slope += steepness[i] * trend.coefficients[i];
  }
  for (unsigned i = 1; i < columns; ++i) {
    for (unsigned j = 1; j < columns; ++j)
      smoothed.variance += departure[i] * trend.covariance[i][j] * departure[j];
  }
  return smoothed;
}

}  // namespace

MergedPlaces::MergedPlaces(const Knots& knots, std::span<const double> t)
    : knots_(knots), places_(t.size()) {
  std::size_t next = 0;
  for (std::size_t k = 0; k < knots.knots.size(); ++k) {
    for (; next < t.size() && t[next] < knots.knots[k].t; ++next) entries_.push_back({t[next], -1});
    entries_.push_back({knots.knots[k].t, static_cast<std::ptrdiff_t>(k)});
  }
  for (; next < t.size(); ++next) entries_.push_back({t[next], -1});
}

void MergedPlaces::setLength(double length) {
  rate_ = maternRate(length);
  steps_.resize(entries_.size());
  for (std::size_t k = 1; k < entries_.size(); ++k)
    steps_[k] = maternStep(rate_ * (entries_[k].t - entries_[k - 1].t));
}

std::vector<std::vector<Smoothed>> MergedPlaces::smoothAt(std::span<const SharedNode> group,
                                                          double offsets) const {
  const int columns = columnsOf(knots_, offsets);
  const auto width = static_cast<unsigned>(columns);
  const std::vector<Columns> observations = observationsOf(knots_, columns);
  const auto of = [&](double Hyperparameters::*member) {
    return lanesOf(group.size(),
                   [&](std::size_t lane) { return group[lane].node.hyperparameters.*member; });
  };
  const Lanes amplitude = of(&Hyperparameters::amplitude), growth = of(&Hyperparameters::growth);
  const auto noiseOf = [&](std::size_t k) {
    const Knot& knot = knots_.knots[k];
    return noiseVariance(growth, knot.flowFraction) * (1 / static_cast<double>(knot.count));
  };
  std::vector<Past> pasts;
  pasts.reserve(places_);
  SquareRootFilter filter(amplitude, columns);
  Innovation unread;
  for (std::size_t k = 0; k < entries_.size(); ++k) {
    if (k > 0) filter.predict(steps_[k]);
    if (entries_[k].knot < 0) {
      pasts.push_back({filter.factor(), {filter.mean(0), filter.mean(1), filter.mean(2)}});
      continue;
    }
    const auto knot = static_cast<std::size_t>(entries_[k].knot);
    filter.observe(observations[knot], noiseOf(knot), unread);
  }
  std::vector<std::vector<Smoothed>> smoothed(group.size(), std::vector<Smoothed>(places_));
  Future future;
  std::size_t place = places_;
  for (std::size_t k = entries_.size(); k-- > 0;) {
    if (entries_[k].knot < 0) {
      --place;
      const Joined joined = join(pasts[place], future, width);
      for (std::size_t lane = 0; lane < group.size(); ++lane)
        smoothed[lane][place] =
            withTrend(knots_, joined, lane, group[lane].node.trend, entries_[k].t, rate_);
    } else {
      const auto knot = static_cast<std::size_t>(entries_[k].knot);
      readPoint(future, observations[knot], noiseOf(knot), width);
    }
    if (k > 0) stepBack(future, steps_[k], amplitude, width);
  }
  return smoothed;
}

}  // namespace pelmora::solver::reference
