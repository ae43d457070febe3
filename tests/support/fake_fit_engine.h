// A fitting engine that says what the test tells it to say.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/journal.h"

#include <pelmora/fit_engine.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pelmora::test {

// What the engine finds for one equation.
struct FakeSolution {
  bool found = true;
  FitData table;  // the fitted table; columns 1 x, 2 observed y, 3 residual
  std::vector<FitParameter> parameters;
  FitStatistics statistics;
  std::function<double(double)> curve = [](double x) { return x; };
  std::function<void()> onAttach;                          // may throw
  std::function<void(std::vector<double>& y)> onEvaluate;  // may change the values or throw
  std::function<void(std::vector<double>& y)>
      onSample;  // so may this; without it there are no samples
};

// One table row whose residual ratio is `ratio`.
inline FitData tableOfRatio(double ratio) { return {{}, {}, {{1}, {2}, {2 * ratio}}}; }

// A solution with these R2 figures whose residuals are zero.
inline FakeSolution solutionOf(double RSquared, double AdjustedRSquared) {
  FakeSolution solution;
  solution.table = tableOfRatio(0);
  solution.statistics.RSquared = RSquared;
  solution.statistics.AdjustedRSquared = AdjustedRSquared;
  return solution;
}

// What a model was given when it was fitted.
struct FakeFit {
  ModelDefinition definition;
  SolverSettings settings;
  std::shared_ptr<const FitData> data;
};

// Journal lines: "fit: name", "log: path".
struct FakeFitScript {
  Journal& journal;
  std::map<std::string, FakeSolution> solutions{};  // by the equation's name
  FakeSolution otherwise = solutionOf(0.5, 0.5);
  std::vector<FakeFit> fits{};
  int enginesAlive = 0, modelsAlive = 0;
  std::function<void()> onCreateModel{};  // may throw

  [[nodiscard]] const FakeSolution& solution(const std::string& name) const {
    const auto found = solutions.find(name);
    return found != solutions.end() ? found->second : otherwise;
  }
};

class FakeFitModel : public FitModel {
 public:
  explicit FakeFitModel(FakeFitScript& script) : script_(script) { ++script_.modelsAlive; }
  ~FakeFitModel() override { --script_.modelsAlive; }

  void attach(const std::shared_ptr<const FitData>& data) override {
    script_.journal.push_back("fit: " + Definition.Name);
    script_.fits.push_back({Definition, Settings, data});
    if (solution().onAttach) solution().onAttach();
  }
  bool solutionFound() const override { return solution().found; }
  FitData results() const override { return solution().table; }
  std::vector<double> evaluate(std::span<const double> x) const override {
    std::vector<double> y = curveAt(x);
    if (solution().onEvaluate) solution().onEvaluate(y);
    return y;
  }
  std::vector<double> sampleCurve(std::span<const double> x) const override {
    if (!solution().onSample) return {};
    std::vector<double> y = curveAt(x);
    solution().onSample(y);
    return y;
  }
  std::vector<FitParameter> parameters() const override { return solution().parameters; }
  FitStatistics statistics() const override { return solution().statistics; }
  void writeLog(const std::string& path) const override {
    script_.journal.push_back("log: " + path);
  }

 private:
  const FakeSolution& solution() const { return script_.solution(Definition.Name); }
  std::vector<double> curveAt(std::span<const double> x) const {
    std::vector<double> y;
    for (const double value : x) y.push_back(solution().curve(value));
    return y;
  }
  FakeFitScript& script_;
};

class FakeFitEngine : public FitEngine {
 public:
  explicit FakeFitEngine(FakeFitScript& script) : script_(script) { ++script_.enginesAlive; }
  ~FakeFitEngine() override { --script_.enginesAlive; }
  std::unique_ptr<FitModel> createModel() override {
    if (script_.onCreateModel) script_.onCreateModel();
    return std::make_unique<FakeFitModel>(script_);
  }

 private:
  FakeFitScript& script_;
};

}  // namespace pelmora::test
