// Fits in one line, for the tests of the engine.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/solver.h"

#include <memory>
#include <string>
#include <vector>

namespace pelmora::test {

inline std::shared_ptr<FitData> dataOf(std::vector<double> x, std::vector<double> y) {
  auto data = std::make_shared<FitData>();
  data->Names = {"Roshko", "Strouhal"};
  data->Symbols = {"X", "Y"};
  data->Columns = {std::move(x), std::move(y)};
  return data;
}

// ownStarts: how many of the engine's own; few are enough beside good ones, and quick.
inline std::unique_ptr<FitModel> fitOf(const std::string& expression,
                                       const std::shared_ptr<const FitData>& data,
                                       std::vector<double> starts = {}, int ownStarts = 10) {
  auto model = createSolver()->createModel();
  model->Definition = {"Test", expression};
  model->Settings.First = 250;
  model->Settings.Second = ownStarts;
  model->Settings.ResidualTolerance = 1e-15;
  model->Settings.StartValues = std::move(starts);
  model->attach(data);
  return model;
}

inline std::unique_ptr<FitModel> fitOf(const std::string& expression, std::vector<double> x,
                                       std::vector<double> y, std::vector<double> starts = {},
                                       int ownStarts = 10) {
  return fitOf(expression, dataOf(std::move(x), std::move(y)), std::move(starts), ownStarts);
}

}  // namespace pelmora::test
