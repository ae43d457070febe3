// SPDX-License-Identifier: MIT
#include "solver/reference/trend_regression.h"

#include <cmath>

namespace pelmora::solver::reference {

TrendRegression::TrendRegression(int columns, double drag, double offsets) : columns_(columns) {
  for (unsigned c = 3; c < static_cast<unsigned>(columns); ++c) {
    const double deviation = c == 3 && drag > 0 ? drag : offsets;
    gram_[c][c] = 1 / (deviation * deviation);
    logDeterminant_ += 2 * std::log(deviation);
  }
}

void TrendRegression::multiply(const Lanes& factor) {
  constexpr double large = 1e100, small = 1e-100;
  product_ *= factor;
  bool isExtreme = false;
  for (std::size_t lane = 0; lane < laneCount; ++lane)
    isExtreme = isExtreme || product_[lane] > large || product_[lane] < small;
  if (!isExtreme) return;
  logDeterminant_ += log(product_);
  product_ = 1;
}

void TrendRegression::add(const Innovation& innovation) {
  for (unsigned a = 0; a < static_cast<unsigned>(columns_); ++a) {
    const Lanes weighted = innovation.value[a] * innovation.weight;
    for (unsigned b = 0; b <= a; ++b) gram_[a][b] += weighted * innovation.value[b];
  }
  multiply(innovation.variance);
}

void TrendRegression::addRepeats(double count, double scatter, const Lanes& variance) {
  if (count <= 1) return;
  gram_[0][0] += scatter / variance;
  multiply(count);
  constexpr double few = 9;  // factors cost less than their logarithms
  if (count > few) {
    logDeterminant_ += (count - 1) * log(variance);
  } else {
    for (double left = count - 1; left > 0; --left) multiply(variance);
  }
}

TrendFit TrendRegression::finish(std::size_t lane) const {
  const auto p = static_cast<unsigned>(columns_);
  TrendFit fit;
  fit.columns = columns_;
  // The lower Cholesky factor of the trend's part, and its inverse.
  ColumnMatrix l{}, inverse{};
  double determinant = 1;
  for (unsigned i = 1; i < p; ++i) {
    for (unsigned j = 1; j <= i; ++j) {
      double sum = gram_[i][j][lane];
      for (unsigned k = 1; k < j; ++k) sum -= l[i][k] * l[j][k];
      l[i][j] = i == j ? std::sqrt(sum) : sum / l[j][j];
    }
    determinant *= l[i][i];
    for (unsigned j = 1; j <= i; ++j) {
      double sum = i == j ? 1 : 0;
      for (unsigned k = j; k < i; ++k) sum -= l[i][k] * inverse[k][j];
      inverse[i][j] = sum / l[i][i];
    }
  }
  Columns half{};  // l^-1 X'V^-1 y
  fit.squares = gram_[0][0][lane];
  for (unsigned i = 1; i < p; ++i) {
    for (unsigned j = 1; j <= i; ++j) half[i] += inverse[i][j] * gram_[j][0][lane];
    fit.squares -= half[i] * half[i];
  }
  for (unsigned i = 1; i < p; ++i) {
    for (unsigned k = i; k < p; ++k) fit.coefficients[i] += inverse[k][i] * half[k];
    for (unsigned j = 1; j < p; ++j) {
      for (unsigned k = i > j ? i : j; k < p; ++k)
        fit.covariance[i][j] += inverse[k][i] * inverse[k][j];
    }
  }
  fit.logDeterminant = logDeterminant_[lane] + std::log(product_[lane]) + 2 * std::log(determinant);
  return fit;
}

}  // namespace pelmora::solver::reference
