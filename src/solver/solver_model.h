// One equation and its fit, as the fit run sees it.
// SPDX-License-Identifier: MIT
#pragma once

#include "solver/linear/series.h"
#include "solver/linear/solution.h"

#include <pelmora/fit_engine.h>

#include <optional>

namespace pelmora::solver {

class SolverModel : public FitModel {
 public:
  explicit SolverModel(std::shared_ptr<SeriesCache> cache);

  void attach(const std::shared_ptr<const FitData>& data) override;
  [[nodiscard]] bool solutionFound() const override { return solution_.has_value(); }
  [[nodiscard]] FitData results() const override;
  [[nodiscard]] std::vector<double> evaluate(std::span<const double> x) const override;
  [[nodiscard]] std::vector<FitParameter> parameters() const override;
  [[nodiscard]] FitStatistics statistics() const override;
  void writeLog(const std::string& path) const override;
  [[nodiscard]] std::string failureReason() const override { return reason_; }
  [[nodiscard]] bool linear() const override { return linear_; }
  [[nodiscard]] std::vector<double> covariance() const override;
  [[nodiscard]] std::vector<double> standardErrorsOfCurve(std::span<const double> x) const override;
  [[nodiscard]] std::vector<double> sampleCurve(std::span<const double> x) const override;

 private:
  [[nodiscard]] Solution solve(const FitData* data);

  std::shared_ptr<SeriesCache> cache_;
  std::shared_ptr<Series> series_;
  std::optional<Solution> solution_;
  std::vector<std::string> names_;  // of the columns X and Y
  std::vector<int> letters_;
  bool linear_ = false;
  std::string reason_ = "nothing has been fitted yet";
};

}  // namespace pelmora::solver
