// SPDX-License-Identifier: MIT
#include "solver/nonlinear/trust_region.h"

#include "solver/linear/householder.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pelmora::solver {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
// A projected direction is left alone where its column is this near to the others.
constexpr double nearDependence = 1e-13;
// Rounding of model values, as a share of y, with room to spare. A fall of the squares below what
// that makes of them cannot be seen; `polish` goes on from there in higher precision.
constexpr double roundingOfValues = 1e-14;

bool allFinite(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

class Search {
 public:
  Search(const RegressionModel& model, std::vector<double> start, const SearchSettings& settings)
      : model_(model), settings_(settings), now_(std::move(start)) {
    for (std::size_t k = 0; k < model.parameters(); ++k) {
      const bool projected = !settings.projected.empty() && settings.projected[k];
      (projected ? projected_ : free_).push_back(k);
    }
    scales_.assign(free_.size(), 0.0);
  }

  SearchEnd run() {
    squares_ = project(now_);
    int iteration = 0;
    if (std::isfinite(squares_)) {
      while (iteration < settings_.iterations && !isExhausted() && step()) ++iteration;
    }
    return {now_, squares_, iteration};
  }

 private:
  void evaluate(const std::vector<double>& point, std::vector<std::vector<double>>* slopes) {
    if (settings_.evaluationsLeft != nullptr) *settings_.evaluationsLeft -= 1;
    model_.evaluate(point, residuals_, slopes);
  }
  [[nodiscard]] bool isExhausted() const {
    if (settings_.evaluationsLeft != nullptr && *settings_.evaluationsLeft <= 0) return true;
    return settings_.stopRequested && settings_.stopRequested();
  }

  // Solves for the projected parameters at `point`; the residual squares there, infinite where the
  // model is not finite.
  double project(std::vector<double>& point) {
    if (!projected_.empty()) {
      // Twice: the second time repairs what rounding left of a first step from far away.
      for (int pass = 0; pass < 2; ++pass) {
        evaluate(point, &slopes_);
        std::vector<std::vector<double>> columns;
        for (const std::size_t k : projected_) columns.push_back(slopes_[k]);
        for (const auto& column : columns) {
          if (!allFinite(column)) return infinite;
        }
        if (!allFinite(residuals_)) return infinite;
        std::vector<double> right = residuals_;
        triangularise(columns, right);
        const auto change = backSubstitute(columns, right, 0, columns.size(), nearDependence);
        for (std::size_t k = 0; k < change.size(); ++k) point[projected_[k]] += change[k];
      }
    }
    evaluate(point, nullptr);
    if (!allFinite(residuals_)) return infinite;
    const double length = lengthOf(residuals_);
    return length * length;
  }

  // One accepted step; false where the search has come to its end.
  bool step() {
    evaluate(now_, &slopes_);
    std::vector<std::vector<double>> columns;
    for (const std::size_t k : projected_) columns.push_back(slopes_[k]);
    for (const std::size_t k : free_) columns.push_back(slopes_[k]);
    for (const auto& column : columns) {
      if (!allFinite(column)) return false;
    }
    std::vector<double> right = residuals_;
    triangularise(columns, right);
    const std::size_t first = projected_.size(), last = columns.size();
    for (std::size_t k = 0; k < free_.size(); ++k) {
      double sum = 0;
      for (std::size_t i = first; i <= first + k; ++i)
        sum += columns[first + k][i] * columns[first + k][i];
      scales_[k] = std::max(scales_[k], std::sqrt(sum));
    }
    for (int attempt = 0; attempt < 40 && !isExhausted(); ++attempt) {
      const std::vector<double> change = damped(columns, right, first, last);
      double predicted = 0;
      for (std::size_t i = first; i < last; ++i) {
        double moved = 0;
        for (std::size_t j = i; j < last; ++j) moved += columns[j][i] * change[j - first];
        predicted += moved * (2 * right[i] - moved);
      }
      if (predicted <= roundingOfValues * model_.responseLength() * std::sqrt(squares_))
        return false;
      std::vector<double> trial = now_;
      for (std::size_t k = 0; k < free_.size(); ++k) trial[free_[k]] += change[k];
      if (!projected_.empty()) {  // the projected ones follow to first order
        const auto follow = followed(columns, right, change, first, last);
        for (std::size_t k = 0; k < projected_.size(); ++k) trial[projected_[k]] += follow[k];
      }
      const double squares = project(trial);
      const double gain = predicted > 0 ? (squares_ - squares) / predicted : -1;
      if (squares < squares_) {
        const bool isAtEnd = squares_ - squares <= settings_.tolerance * squares_;
        now_ = trial;
        squares_ = squares;
        adapt(gain);
        return !isAtEnd;
      }
      damping_ *= growth_;
      growth_ *= 2;
      if (!(predicted > 1e-17 * squares_) || damping_ > 1e30) return false;
    }
    return false;
  }

  void adapt(double gain) {  // after Nielsen 1999
    const double bend = 2 * std::min(gain, 1.0) - 1;
    damping_ *= std::max(1.0 / 9, 1 - bend * bend * bend);
    damping_ = std::max(damping_, 1e-20);
    growth_ = 2;
  }

  // Minimises |R22 s - q2|^2 + damping |scale s|^2.
  std::vector<double> damped(const std::vector<std::vector<double>>& columns,
                             const std::vector<double>& right, std::size_t first,
                             std::size_t last) {
    const std::size_t m = last - first;
    std::vector<std::vector<double>> stacked(m, std::vector<double>(2 * m, 0.0));
    std::vector<double> target(2 * m, 0.0);
    for (std::size_t j = 0; j < m; ++j) {
      for (std::size_t i = 0; i <= j; ++i) stacked[j][i] = columns[first + j][first + i];
      stacked[j][m + j] = std::sqrt(damping_) * (scales_[j] > 0 ? scales_[j] : 1);
      target[j] = right[first + j];
    }
    triangularise(stacked, target);
    return backSubstitute(stacked, target, 0, m, 0);
  }

  static std::vector<double> followed(const std::vector<std::vector<double>>& columns,
                                      std::vector<double> right, const std::vector<double>& change,
                                      std::size_t first, std::size_t last) {
    for (std::size_t i = 0; i < first; ++i) {
      for (std::size_t j = first; j < last; ++j) right[i] -= columns[j][i] * change[j - first];
    }
    return backSubstitute(columns, right, 0, first, nearDependence);
  }

  const RegressionModel& model_;
  const SearchSettings& settings_;
  std::vector<double> now_, residuals_, scales_;
  std::vector<std::vector<double>> slopes_;
  std::vector<std::size_t> projected_, free_;
  double squares_ = infinite, damping_ = 1e-3, growth_ = 2;
};

}  // namespace

SearchEnd searchFrom(const RegressionModel& model, std::vector<double> start,
                     const SearchSettings& settings) {
  return Search(model, std::move(start), settings).run();
}

}  // namespace pelmora::solver
