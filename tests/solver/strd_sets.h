// The certified regression sets of tests/data/strd, and the count of agreeing digits.
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace pelmora::test {

struct StrdSet {
  std::string name, model, response;
  bool linear = false, singleX = true;
  std::vector<std::vector<double>> x;  // one column for each predictor
  std::vector<double> y;
  std::vector<double> start1, start2;
  // Of the 120-digit solution.
  std::vector<long double> parameters, standardErrors;
  long double residualSquares = 0, residualError = 0, rSquared = 0, adjustedRSquared = 0,
              regressionSquares = 0;
  // Digits that survive the rounding of the data; 15.9 where the reference is zero.
  double attainableParameters = 15.9, attainableErrors = 15.9;
};

[[nodiscard]] std::vector<StrdSet> strdSets(bool linear);
[[nodiscard]] StrdSet strdSet(const std::string& name);

// The nonlinear sets of tests/data/strd_more, whose references are the certified values of 11
// digits.
[[nodiscard]] std::vector<StrdSet> moreStrdSets();

// -log10 of the relative error, of the absolute error where the reference is zero; at most 15.9.
[[nodiscard]] double agreeingDigits(double value, long double reference);

}  // namespace pelmora::test
