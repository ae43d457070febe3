// SPDX-License-Identifier: MIT
#include "solver/nonlinear/own_starts.h"

#include "solver/nonlinear/expression_model.h"
#include "solver/nonlinear/parameter_sizes.h"
#include "solver/nonlinear/trust_region.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace pelmora::solver {
namespace {

constexpr std::size_t candidatesPerStart = 300, triedPerStart = 30;
constexpr int trialIterations = 5;
constexpr double sameValley = 1e-4;
constexpr double mostStartWork = 2e7;  // of the candidates, and of the trials, in plain operations
constexpr std::size_t screeningPoints = 60;  // up to twice as many, spread over all

// Splitmix64: a fixed sequence, so that a fit can be repeated.
class Sequence {
 public:
  double next() {  // 0 .. 1
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return static_cast<double>((z ^ (z >> 31U)) >> 11U) * 0x1p-53;
  }

 private:
  std::uint64_t state_ = 1;
};

struct Ranges {
  double lowX = 0, highX = 0, sizeX = 1, sizeY = 1;
};

Ranges rangesOf(std::span<const double> x, std::span<const double> y) {
  Ranges r;
  r.lowX = *std::min_element(x.begin(), x.end());
  r.highX = *std::max_element(x.begin(), x.end());
  const double x1 = std::max(std::fabs(r.lowX), std::fabs(r.highX));
  double y1 = 0;
  for (const double value : y) y1 = std::max(y1, std::fabs(value));
  if (x1 > 0) r.sizeX = x1;
  if (y1 > 0) r.sizeY = y1;
  return r;
}

double guess(Sequence& sequence, const Ranges& r) {
  const double kind = sequence.next() * 8, sign = sequence.next() < 0.7 ? 1 : -1;
  const double spread = std::pow(10.0, 3 * sequence.next() - 1.5);
  switch (static_cast<int>(kind)) {
    case 0:
    case 1: return r.lowX + (r.highX - r.lowX) * sequence.next();
    case 5: return (r.highX - r.lowX) * std::pow(10.0, -2 * sequence.next());
    case 6: return sign * spread * r.sizeX;
    case 2: return sign * spread / r.sizeX * 3;
    case 3: return sign * spread / r.sizeX / 3;
    case 4: return sign * spread * r.sizeY;
    default: return sign * spread;
  }
}

// A guess of a parameter that goes with the unit of x to some power.
double guess(Sequence& sequence, const Ranges& r, double power) {
  const double width = r.highX > r.lowX ? r.highX - r.lowX : r.sizeX;
  const double sign = sequence.next() < 0.7 ? 1 : -1;
  if (power == 1 && sequence.next() < 0.5) return r.lowX + width * sequence.next();
  if (power == 1) return width * std::pow(10.0, -2 * sequence.next());
  if (power == 0) return sign * std::pow(10.0, 3 * sequence.next() - 1.5);
  const double size = sequence.next() < 0.5 ? width : r.sizeX;
  return sign * std::pow(size * std::pow(10.0, 1 - 2 * sequence.next()), power);
}

void keepBest(std::vector<SearchEnd>& ends, std::size_t count) {
  std::erase_if(ends, [](const SearchEnd& end) { return !std::isfinite(end.residualSquares); });
  std::stable_sort(ends.begin(), ends.end(), [](const SearchEnd& a, const SearchEnd& b) {
    return a.residualSquares < b.residualSquares;
  });
  // Ends of nearly the same residuals lie in the same valley: one start of each is enough.
  const auto isAsGood = [](const SearchEnd& a, const SearchEnd& b) {
    return b.residualSquares - a.residualSquares <= sameValley * b.residualSquares;
  };
  ends.erase(std::unique(ends.begin(), ends.end(), isAsGood), ends.end());
  if (ends.size() > count) ends.resize(count);
}

}  // namespace

std::vector<std::vector<double>> ownStarts(const Expression& expression, std::span<const double> x,
                                           std::span<const double> y, std::size_t count) {
  std::vector<double> xs, ys;
  const std::size_t stride = std::max<std::size_t>(1, x.size() / screeningPoints);
  for (std::size_t k = 0; k < x.size(); k += stride) xs.push_back(x[k]), ys.push_back(y[k]);
  const auto model = makeExpressionModel(expression, xs, ys);
  const std::size_t p = model->parameters();
  SearchSettings screening;
  screening.iterations = 0;
  screening.projected = model->isLinearIn();
  const Ranges ranges = rangesOf(xs, ys);
  const std::vector<std::optional<double>> powers = powersOfUnit(expression);
  Sequence sequence;
  std::vector<SearchEnd> ends;
  double evaluationsLeft = mostStartWork / model->work();
  const auto affordable = static_cast<std::size_t>(evaluationsLeft / 4) + count;
  screening.evaluationsLeft = &evaluationsLeft;
  const std::size_t candidates = std::min(count * candidatesPerStart, affordable);
  for (std::size_t k = 0; k < candidates; ++k) {
    std::vector<double> start(p);
    const bool byForm = k % 4 != 3;  // the form of an equation may mislead
    for (std::size_t j = 0; j < p; ++j) {
      if (screening.projected[j]) {
        start[j] = 1;
      } else {
        start[j] =
            byForm && powers[j] ? guess(sequence, ranges, *powers[j]) : guess(sequence, ranges);
      }
    }
    ends.push_back(searchFrom(*model, std::move(start), screening));
  }
  keepBest(ends, std::min(count * triedPerStart, candidates));
  evaluationsLeft = mostStartWork / model->work();
  screening.iterations = trialIterations;  // a few steps tell a valley from a lucky place
  for (SearchEnd& end : ends) end = searchFrom(*model, end.parameters, screening);
  keepBest(ends, count);
  std::vector<std::vector<double>> starts;
  for (SearchEnd& end : ends) starts.push_back(std::move(end.parameters));
  return starts;
}

}  // namespace pelmora::solver
