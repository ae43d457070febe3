// SPDX-License-Identifier: MIT
#include "tests/solver/quad_reference.h"

#include <quadmath.h>

#include <algorithm>
#include <utility>

namespace pelmora::test {
namespace {

Quad dot(const std::vector<Quad>& a, const std::vector<Quad>& b) {
  Quad sum = 0;
  for (std::size_t k = 0; k < a.size(); ++k) sum += a[k] * b[k];
  return sum;
}

void subtract(std::vector<Quad>& a, Quad factor, const std::vector<Quad>& b) {
  for (std::size_t k = 0; k < a.size(); ++k) a[k] -= factor * b[k];
}

Quad power(Quad base, int exponent) {
  Quad result = 1;
  for (int k = 0; k < (exponent < 0 ? -exponent : exponent); ++k) result *= base;
  return exponent < 0 ? 1 / result : result;
}

}  // namespace

std::vector<Quad> QuadReference::termsAt(double x) const {
  const Quad l = decimal_ ? log10q(x) : logq(x);
  std::vector<Quad> terms;
  for (const int exponent : exponents_) terms.push_back(power(l, exponent));
  return terms;
}

QuadReference::QuadReference(const std::vector<double>& x, const std::vector<double>& y,
                             bool decimal, std::vector<int> exponents)
    : decimal_(decimal), exponents_(std::move(exponents)), n_(x.size()) {
  const std::size_t p = exponents_.size();
  std::vector<std::vector<Quad>> columns(p, std::vector<Quad>(n_));
  for (std::size_t i = 0; i < n_; ++i) {
    const auto terms = termsAt(x[i]);
    for (std::size_t j = 0; j < p; ++j) columns[j][i] = terms[j];
  }
  std::vector<Quad> rest(y.begin(), y.end());
  Quad mean = 0;
  for (const double value : y) mean += value;
  mean /= static_cast<double>(n_);
  for (const double value : y) totalSquares_ += (value - mean) * (value - mean);
  r_.assign(p, std::vector<Quad>(p));
  for (std::size_t k = 0; k < p; ++k) {
    // Twice, so that what is left is perpendicular even where little is left.
    for (int pass = 0; pass < 2; ++pass) {
      for (std::size_t j = 0; j < k; ++j) {
        const Quad share = dot(columns[j], columns[k]);
        r_[j][k] += share;
        subtract(columns[k], share, columns[j]);
      }
    }
    r_[k][k] = sqrtq(dot(columns[k], columns[k]));
    for (Quad& value : columns[k]) value /= r_[k][k];
    z_.push_back(dot(columns[k], rest));
    subtract(rest, z_[k], columns[k]);
    residualSquares_.push_back(dot(rest, rest));
  }
}

QuadFit QuadReference::fit(std::size_t p) const {
  QuadFit result;
  result.parameters.resize(p);
  for (std::size_t k = p; k-- > 0;) {
    Quad rest = z_[k];
    for (std::size_t j = k + 1; j < p; ++j) rest -= r_[k][j] * result.parameters[j];
    result.parameters[k] = rest / r_[k][k];
  }
  result.residualSquares = residualSquares_[p - 1];
  const Quad n = static_cast<double>(n_), degrees = static_cast<double>(n_ - p);
  const Quad variance = result.residualSquares / degrees;
  result.residualError = sqrtq(variance);
  result.rSquared = 1 - result.residualSquares / totalSquares_;
  result.adjustedRSquared = 1 - result.residualSquares / totalSquares_ * (n - 1) / degrees;
  result.regressionSquares = totalSquares_ - result.residualSquares;
  std::vector<Quad> sums(p);
  for (std::size_t i = 0; i < p; ++i) {  // column i of the inverse of R
    std::vector<Quad> column(p);
    column[i] = 1 / r_[i][i];
    for (std::size_t k = i; k-- > 0;) {
      Quad rest = 0;
      for (std::size_t j = k + 1; j <= i; ++j) rest -= r_[k][j] * column[j];
      column[k] = rest / r_[k][k];
    }
    for (std::size_t k = 0; k <= i; ++k) sums[k] += column[k] * column[k];
  }
  for (const Quad sum : sums) result.standardErrors.push_back(sqrtq(variance * sum));
  return result;
}

Quad QuadReference::valueAt(const QuadFit& fit, double x) const {
  const auto terms = termsAt(x);
  Quad sum = 0;
  for (std::size_t j = 0; j < fit.parameters.size(); ++j) sum += terms[j] * fit.parameters[j];
  return sum;
}

double agreeingDigits(double value, Quad reference) {
  const Quad error = fabsq(value - reference) / fabsq(reference);
  return error == 0 ? 15.9 : std::min(15.9, static_cast<double>(-log10q(error)));
}

}  // namespace pelmora::test
