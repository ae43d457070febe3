// SPDX-License-Identifier: MIT
#include "solver/reference/two_sided_smoother.h"

#include <algorithm>
#include <cmath>

namespace pelmora::solver::reference {
namespace {

// Rows of a least-squares problem: unknowns first, then right-hand sides.
template <std::size_t Rows, std::size_t Width>
using Block = std::array<std::array<double, Width>, Rows>;

// Householder reflections that leave nothing below the diagonal of the first `Pivots` columns.
template <std::size_t Pivots, std::size_t Rows, std::size_t Width>
void triangularise(Block<Rows, Width>& a, unsigned used) {
  for (unsigned k = 0; k < Pivots; ++k) {
    double squares = 0;
    for (unsigned i = k + 1; i < Rows; ++i) squares += a[i][k] * a[i][k];
    if (squares <= 0) continue;
    const double norm = std::sqrt(squares + a[k][k] * a[k][k]);
    const double diagonal = a[k][k] > 0 ? -norm : norm;
    const double head = a[k][k] - diagonal;
    const double scale = 2 / (squares + head * head);
    for (unsigned j = k + 1; j < used; ++j) {
      double sum = head * a[k][j];
      for (unsigned i = k + 1; i < Rows; ++i) sum += a[i][k] * a[i][j];
      sum *= scale;
      a[k][j] -= sum * head;
      for (unsigned i = k + 1; i < Rows; ++i) a[i][j] -= sum * a[i][k];
    }
    a[k][k] = diagonal;
    for (unsigned i = k + 1; i < Rows; ++i) a[i][k] = 0;
  }
}

// |root s - right|^2 is what the points behind a place say of the state s there.
struct Future {
  Matrix3 root{};
  std::array<Columns, 3> right{};
};

void stepBack(Future& future, const MaternStep& step, double amplitude, unsigned columns) {
  Block<6, 6 + mostColumns> a{};
  for (unsigned i = 0; i < 3; ++i) {
    a[i][i] = 1;
    for (unsigned j = 0; j < 3; ++j) {
      for (unsigned k = 0; k < 3; ++k) {
        a[3 + i][j] += amplitude * future.root[i][k] * step.factor[k][j];
        a[3 + i][3 + j] += future.root[i][k] * step.transition[k][j];
      }
    }
    for (unsigned c = 0; c < columns; ++c) a[3 + i][6 + c] = future.right[i][c];
  }
  triangularise<3>(a, 6 + columns);
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) future.root[i][j] = a[3 + i][3 + j];
    for (unsigned c = 0; c < columns; ++c) future.right[i][c] = a[3 + i][6 + c];
  }
}

void readPoint(Future& future, const Columns& observed, double noise, unsigned columns) {
  const double weight = 1 / std::sqrt(noise);
  Block<4, 3 + mostColumns> a{};
  a[0][0] = weight;
  for (unsigned c = 0; c < columns; ++c) a[0][3 + c] = weight * observed[c];
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) a[1 + i][j] = future.root[i][j];
    for (unsigned c = 0; c < columns; ++c) a[1 + i][3 + c] = future.right[i][c];
  }
  triangularise<3>(a, 3 + columns);
  for (unsigned i = 0; i < 3; ++i) {
    for (unsigned j = 0; j < 3; ++j) future.root[i][j] = a[i][j];
    for (unsigned c = 0; c < columns; ++c) future.right[i][c] = a[i][3 + c];
  }
}

// What the points before a place say of the state there.
struct Past {
  Matrix3 factor;
  std::array<Columns, 3> mean;
};

// Mean by column of the process and of its slope, and the process's variance.
struct Joined {
  Columns value{}, slope{};
  double variance = 0;
};

Joined join(const Past& past, const Future& future, unsigned columns) {
  // s = mean + factor w minimises |w|^2 + |root s - right|^2.
  Block<6, 3 + mostColumns> a{};
  for (unsigned i = 0; i < 3; ++i) {
    a[i][i] = 1;
    for (unsigned k = 0; k < 3; ++k) {
      for (unsigned j = 0; j <= k; ++j) a[3 + i][j] += future.root[i][k] * past.factor[k][j];
    }
    for (unsigned c = 0; c < columns; ++c) {
      double sum = future.right[i][c];
      for (unsigned k = 0; k < 3; ++k) sum -= future.root[i][k] * past.mean[k][c];
      a[3 + i][3 + c] = sum;
    }
  }
  triangularise<3>(a, 3 + columns);
  Joined joined;
  for (unsigned c = 0; c < columns; ++c) {
    Vector3 w;
    for (unsigned i = 3; i-- > 0;) {
      double sum = a[i][3 + c];
      for (unsigned k = i + 1; k < 3; ++k) sum -= a[i][k] * w[k];
      w[i] = sum / a[i][i];
    }
    joined.value[c] = past.mean[0][c] + past.factor[0][0] * w[0];
    joined.slope[c] = past.mean[1][c] + past.factor[1][0] * w[0] + past.factor[1][1] * w[1];
  }
  const double g0 = past.factor[0][0] / a[0][0];
  const double g1 = -a[0][1] * g0 / a[1][1];
  const double g2 = -(a[0][2] * g0 + a[1][2] * g1) / a[2][2];
  joined.variance = g0 * g0 + g1 * g1 + g2 * g2;
  return joined;
}

Smoothed withTrend(const Knots& knots, const Joined& joined, const TrendFit& trend, double t,
                   double rate) {
  const auto columns = static_cast<unsigned>(trend.columns);
  Columns trendAt{0, 1, t}, trendSlope{0, 0, 1};
  if (knots.drag > 0) trendSlope[3] = -(trendAt[3] = dragAt(knots, t));
  Columns departure{}, steepness{};
  Smoothed smoothed{joined.value[0], rate * joined.slope[0], joined.variance};
  for (unsigned i = 1; i < columns; ++i) {
    departure[i] = trendAt[i] - joined.value[i];
    steepness[i] = trendSlope[i] - rate * joined.slope[i];
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

std::vector<Smoothed> MergedPlaces::smoothAt(const Node& node, double offsets) const {
  const int columns = columnsOf(knots_, offsets);
  const auto width = static_cast<unsigned>(columns);
  const Hyperparameters& h = node.hyperparameters;
  const auto noiseOf = [&](const Knot& knot) {
    return noiseVariance(h.growth, knot.flowFraction) / static_cast<double>(knot.count);
  };
  std::vector<Past> pasts;
  pasts.reserve(places_);
  SquareRootFilter filter(h.amplitude, columns);
  for (std::size_t k = 0; k < entries_.size(); ++k) {
    if (k > 0) filter.predict(steps_[k]);
    if (entries_[k].knot < 0) {
      pasts.push_back({filter.factor(), {filter.mean(0), filter.mean(1), filter.mean(2)}});
      continue;
    }
    const Knot& knot = knots_.knots[static_cast<std::size_t>(entries_[k].knot)];
    static_cast<void>(filter.observe(observationAt(knots_, knot, columns), noiseOf(knot)));
  }
  std::vector<Smoothed> smoothed(places_);
  Future future;
  std::size_t place = places_;
  for (std::size_t k = entries_.size(); k-- > 0;) {
    if (entries_[k].knot < 0) {
      --place;
      smoothed[place] =
          withTrend(knots_, join(pasts[place], future, width), node.trend, entries_[k].t, rate_);
    } else {
      const Knot& knot = knots_.knots[static_cast<std::size_t>(entries_[k].knot)];
      readPoint(future, observationAt(knots_, knot, columns), noiseOf(knot), width);
    }
    if (k > 0) stepBack(future, steps_[k], h.amplitude, width);
  }
  return smoothed;
}

}  // namespace pelmora::solver::reference
