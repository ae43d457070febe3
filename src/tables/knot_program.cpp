// SPDX-License-Identifier: MIT
#include "tables/knot_program.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pelmora::tables {
namespace {

// Cells of the grid for each segment, the least number of them in all, and the largest error of a
// segment, in guesses, with which a longer one is not tried.
constexpr std::size_t cellsPerSegment = 24, fewestCells = 240;
constexpr double tooLarge = 3;
// The power that weighs errors: sixteen equal errors and one larger by a tenth differ clearly.
constexpr double power = 48;
// Choices on either side of a knot, and how often they are refined by `refinement`.
constexpr std::ptrdiff_t choices = 8;
constexpr int refinements = 4;
constexpr double refinement = 6;
constexpr int balanceSweeps = 30, balanceHalvings = 25;

using Places = std::vector<double>;

// Candidates of each knot, and the cheapest way through them.
class Layers {
 public:
  Layers(const IntervalSearch& search, double guess) : search_(search), guess_(guess) {}

  [[nodiscard]] Places cheapest(const std::vector<Places>& layers) const {
    std::vector<std::vector<double>> cost;
    std::vector<std::vector<std::size_t>> from;
    cost.push_back(std::vector<double>(layers.front().size(), 0.0));
    from.emplace_back(layers.front().size());
    for (std::size_t k = 1; k < layers.size(); ++k) {
      cost.emplace_back(layers[k].size(), std::numeric_limits<double>::infinity());
      from.emplace_back(layers[k].size());
      for (std::size_t j = 0; j < layers[k].size(); ++j) {
        for (std::size_t i = 0; i < layers[k - 1].size(); ++i) {
          if (layers[k - 1][i] >= layers[k][j]) continue;
          const double added =
              std::pow(search_.errorOf(layers[k - 1][i], layers[k][j]) / guess_, power);
          if (cost[k - 1][i] + added < cost[k][j]) {
            cost[k][j] = cost[k - 1][i] + added;
            from[k][j] = i;
          }
        }
      }
    }
    Places knots(layers.size());
    std::size_t at = 0;
    for (std::size_t k = layers.size(); k-- > 0; at = from[k][at]) knots[k] = layers[k][at];
    return knots;
  }

 private:
  const IntervalSearch& search_;
  double guess_;
};

// The best choice from an even grid; empty if none is good enough.
Places bestOfGrid(const IntervalSearch& search, std::size_t points, double guess) {
  const std::size_t cells = std::max(fewestCells, cellsPerSegment * (points - 1));
  const double width = search.end() / static_cast<double>(cells);
  const auto placeOf = [&](std::size_t cell) {
    return cell == cells ? search.end() : width * static_cast<double>(cell);
  };
  const double none = std::numeric_limits<double>::infinity();
  std::vector<std::vector<double>> weight(cells + 1);  // of the pieces from a cell to later ones
  for (std::size_t i = 0; i < cells; ++i) {
    for (std::size_t j = i + 1; j <= cells; ++j) {
      const double error = search.errorOf(placeOf(i), placeOf(j)) / guess;
      if (error > tooLarge) break;
      weight[i].push_back(std::pow(error, power));
    }
  }
  std::vector<std::vector<std::size_t>> from(points, std::vector<std::size_t>(cells + 1));
  std::vector<double> cost(cells + 1, none);
  cost[0] = 0;
  for (std::size_t k = 1; k < points; ++k) {
    search.requireGoOn();
    std::vector<double> next(cells + 1, none);
    for (std::size_t i = 0; i < cells; ++i) {
      for (std::size_t j = 0; j < weight[i].size() && cost[i] < none; ++j) {
        const double sum = cost[i] + weight[i][j];
        if (sum < next[i + 1 + j]) {
          next[i + 1 + j] = sum;
          from[k][i + 1 + j] = i;
        }
      }
    }
    cost = std::move(next);
  }
  if (cost[cells] == none) return {};
  Places knots(points);
  std::size_t at = cells;
  for (std::size_t k = points; k-- > 0; at = from[k][at]) knots[k] = placeOf(at);
  return knots;
}

}  // namespace

std::vector<double> programKnots(const IntervalSearch& search, std::size_t points, double guess) {
  Places knots = bestOfGrid(search, points, guess);
  const std::size_t cells = std::max(fewestCells, cellsPerSegment * (points - 1));
  double reach = search.end() / static_cast<double>(cells);
  const Layers layers(search, guess);
  for (int round = 0; round < refinements && !knots.empty(); ++round, reach /= refinement) {
    std::vector<Places> candidates;
    for (std::size_t k = 0; k < points; ++k) {
      candidates.push_back({knots[k]});
      if (k == 0 || k + 1 == points) continue;
      for (std::ptrdiff_t c = -choices; c <= choices; ++c) {
        const double place = knots[k] + reach * static_cast<double>(c) / choices;
        if (c != 0 && place > 0 && place < search.end()) candidates.back().push_back(place);
      }
    }
    knots = layers.cheapest(candidates);
  }
  return knots;
}

void balanceKnots(const IntervalSearch& search, std::vector<double>& knots) {
  for (int sweep = 0; sweep < balanceSweeps; ++sweep) {
    for (std::size_t k = 1; k + 1 < knots.size(); ++k) {
      double low = knots[k - 1], high = knots[k + 1];
      for (int i = 0; i < balanceHalvings; ++i) {
        const double middle = (low + high) / 2;
        const bool isLeftLess =
            search.errorOf(knots[k - 1], middle) < search.errorOf(middle, knots[k + 1]);
        (isLeftLess ? low : high) = middle;
      }
      const double moved = (low + high) / 2;
      const auto worse = [&](double place) {
        return std::max(search.errorOf(knots[k - 1], place), search.errorOf(place, knots[k + 1]));
      };
      if (worse(moved) < worse(knots[k])) knots[k] = moved;
    }
  }
}

}  // namespace pelmora::tables
