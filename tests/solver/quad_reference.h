// Least squares in quadruple precision, by another way than the engine's: the equation's own terms,
// orthogonalised one after the other.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace pelmora::test {

__extension__ using Quad = __float128;

// A fit of the first p terms for some p. Shape: p parameters; the rest as FitStatistics has them.
struct QuadFit {
  std::vector<Quad> parameters, standardErrors;
  Quad residualSquares = 0, residualError = 0, rSquared = 0, adjustedRSquared = 0,
       regressionSquares = 0;
};

class QuadReference {
 public:
  // Term j is l^exponents[j], where l is log10(x) or ln(x).
  QuadReference(const std::vector<double>& x, const std::vector<double>& y, bool decimal,
                std::vector<int> exponents);
  // The fit of the first p terms.
  [[nodiscard]] QuadFit fit(std::size_t p) const;
  [[nodiscard]] Quad valueAt(const QuadFit& fit, double x) const;

 private:
  [[nodiscard]] std::vector<Quad> termsAt(double x) const;

  bool decimal_;
  std::vector<int> exponents_;
  std::size_t n_;
  std::vector<std::vector<Quad>> r_;  // r_[k][j], j >= k
  std::vector<Quad> z_, residualSquares_;
  Quad totalSquares_ = 0;
};

// -log10 of the relative error, at most 15.9.
[[nodiscard]] double agreeingDigits(double value, Quad reference);

}  // namespace pelmora::test
