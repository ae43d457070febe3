// SPDX-License-Identifier: MIT
#include "solver/solver.h"

#include "solver/linear/series.h"
#include "solver/solver_model.h"

namespace pelmora {
namespace {

class Solver : public FitEngine {
 public:
  std::unique_ptr<FitModel> createModel() override {
    return std::make_unique<solver::SolverModel>(cache_);
  }

 private:
  std::shared_ptr<solver::SeriesCache> cache_ = std::make_shared<solver::SeriesCache>();
};

}  // namespace

std::unique_ptr<FitEngine> createSolver() { return std::make_unique<Solver>(); }

}  // namespace pelmora
