// The run over the catalogue: fit, test the residuals, predict, report.
// SPDX-License-Identifier: MIT
#include "calibration/steps/catalogue_fit.h"

#include "base/file_text.h"
#include "base/number_text.h"
#include "base/run_time_error.h"
#include "curves/outcome_details.h"
#include "curves/predicted_curve.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

namespace pelmora::calibration::steps {

struct CatalogueFit::Running {
  const CatalogueRun& run;
  CatalogueSettings& settings;
  const Observer& observer;
};

namespace {

constexpr std::int32_t iterationLimit = 250;
constexpr std::int32_t numberOfStarts = 10;
constexpr double residualTolerance = 1e-15;
// A ratio, not a per cent figure, though the report speaks of 10%: that is how it always rejected.
constexpr double largestResidualRatio = 10.0;
constexpr double nearPerfectRSquared = 0.9999;
constexpr std::size_t mostEquations = 32767;  // 16-bit indices

std::shared_ptr<const FitData> makeFitData(const FitLabels& labels, const PointArray& points) {
  auto data = std::make_shared<FitData>();
  data->Names = {labels.x, labels.y};
  data->Symbols = {"", ""};
  const auto setSymbol = [&](const std::string& name, const char* symbol) {
    const auto found = std::find(data->Names.begin(), data->Names.end(), name);
    data->Symbols[static_cast<std::size_t>(found - data->Names.begin())] = symbol;
  };
  setSymbol(labels.x, "X");
  setSymbol(labels.y, "Y");
  for (std::size_t c = 0; c < 2; ++c) {
    std::vector<double> values;
    if (!points.empty()) {
      const auto column = points.column(c);
      values.assign(column.begin(), column.end());
    }
    data->Columns.push_back(std::move(values));
  }
  return data;
}

double ratioOf(double residual, double observed) {
  if (observed == 0) throw makeError(RunTimeError::divisionByZero);
  const double ratio = residual / observed;
  if (std::isinf(ratio) && std::isfinite(residual)) throw makeError(RunTimeError::overflow);
  return ratio;
}

}  // namespace

void CatalogueFit::useEquations(std::vector<Equation> equations) {
  equations_ = std::move(equations);
  resetSlots();
}

void CatalogueFit::resetSlots() {
  slots_ = std::vector<Slot>(equations_.size());
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    slots_[i].outcome.Name = equations_[i].name;
    slots_[i].outcome.Expression = equations_[i].expression;
  }
  ranking_.assign(equations_.size(), 0);
}

RunEnd CatalogueFit::run(const CatalogueRun& run, CatalogueSettings& settings,
                         const Observer& observer) {
  failed_ = false;
  currentEquation_.clear();
  try {
    labels_ = run.labels;
    if (!run.engine) throw makeError(RunTimeError::noEngine);
    if (equations_.size() > mostEquations) throw makeError(RunTimeError::overflow);
    data_ = makeFitData(labels_, run.points);
    ranking_.assign(equations_.size(), 0);
    return runEquations({run, settings, observer});
  } catch (...) {
    failed_ = true;
    throw;
  }
}

RunEnd CatalogueFit::runEquations(const Running& running) {
  const auto last = static_cast<std::int16_t>(equations_.size()) - 1;
  for (int i = last; i >= 0; --i) {
    if (running.run.stopRequested && running.run.stopRequested()) return RunEnd::stopped;
    const auto index = static_cast<std::size_t>(i);
    currentEquation_ = equations_[index].name;
    running.observer.progress(static_cast<std::int16_t>(last - i + 1),
                              static_cast<std::int16_t>(last + 1));
    if (fitEquation(running, index) && endsRun(running, slots_[index])) break;
  }
  // The last equation may have been the one that was stopped.
  if (running.run.stopRequested && running.run.stopRequested()) return RunEnd::stopped;
  return RunEnd::complete;
}

// Whether the equation was accepted.
bool CatalogueFit::fitEquation(const Running& running, std::size_t index) {
  Slot& slot = slots_[index];
  slot = Slot();
  slot.outcome.Name = equations_[index].name;
  slot.outcome.Expression = equations_[index].expression;
  slot.engine = running.run.engine;
  slot.model = slot.engine->createModel();
  if (!slot.model) throw makeError(RunTimeError::noEngine);
  FitModel& model = *slot.model;
  model.Definition = {equations_[index].name, equations_[index].expression};
  model.Settings.First = iterationLimit;
  model.Settings.Second = numberOfStarts;
  model.Settings.ResidualTolerance = residualTolerance;
  model.Settings.StopRequested = running.run.stopRequested;

  running.observer.status("Started fitting with equation: " + model.Definition.Name);
  model.attach(data_);
  running.observer.status("Finished fitting with equation: " + model.Definition.Name);
  if (!model.solutionFound()) {
    if (const std::string* folder = running.run.logFolder) {
      model.writeLog(utf8Text(filePath(*folder) / "log.txt"));
    }
    slot.details += noSolutionText(running.run.logFolder);
    slot.outcome.Verdict = EquationVerdict::noSolution;
    slot.outcome.Reason = model.failureReason();
    return false;
  }
  describeSolution(model, slot.outcome);
  const std::vector<double> ratios = scanResiduals(slot);
  slot.details +=
      reportHead(running.settings.MeterSerialNumber, running.settings.SeriesName, model.Definition);
  if (std::abs(slot.outcome.WorstResidualRatio) >= largestResidualRatio &&
      !running.settings.IgnoreResiduals) {
    slot.details += residualFailureText(ratios);
    slot.outcome.Verdict = EquationVerdict::residualTestFailed;
    slot.outcome.Reason = "the residual at x = " + numberText(slot.outcome.WorstResidualX) +
                          " is " + numberText(slot.outcome.WorstResidualRatio) +
                          " times the observed value; the limit is " +
                          numberText(largestResidualRatio);
    return false;
  }
  acceptSolution(running, index);
  return true;
}

// The ratios residual / observed y of all rows; leaves the largest with its x in the outcome.
std::vector<double> CatalogueFit::scanResiduals(Slot& slot) {
  const FitData table = slot.model->results();
  if (table.Columns.size() < 3 || table.Columns[1].empty() ||
      table.Columns[2].size() != table.Columns[1].size()) {
    throw makeError(RunTimeError::outOfRange);
  }
  std::vector<double> ratios(table.Columns[1].size());
  std::size_t worst = 0;
  for (std::size_t k = 0; k < ratios.size(); ++k) {
    ratios[k] = ratioOf(table.Columns[2][k], table.Columns[1][k]);
    if (std::abs(ratios[k]) > std::abs(ratios[worst])) worst = k;
  }
  slot.outcome.WorstResidualRatio = ratios[worst];
  if (worst < table.Columns[0].size()) slot.outcome.WorstResidualX = table.Columns[0][worst];
  return ratios;
}

void CatalogueFit::acceptSolution(const Running& running, std::size_t index) {
  const CatalogueRun& run = running.run;
  const CatalogueSettings& settings = running.settings;
  Slot& slot = slots_[index];
  if (data_->Columns[0].empty()) throw makeError(RunTimeError::outOfRange);
  auto predicted = std::make_unique<FitData>();
  predicted->Names = {labels_.x, labels_.y};
  predicted->Symbols = {"", ""};
  predicted->Columns.push_back(
      run.grid.empty()
          ? logSpacedGrid(run.Predicted_Xmin, run.Predicted_Xmax, settings.NumberOfFittedPoints - 1)
          : std::vector<double>(run.grid.begin(), run.grid.end()));
  predicted->Columns.push_back(slot.model->evaluate(predicted->Columns[0]));
  const std::vector<double>& x = predicted->Columns[0];
  const std::vector<double>& y = predicted->Columns[1];
  if (y.size() != x.size()) throw makeError(RunTimeError::outOfRange);

  slot.accepted = ReportedRun{labels_,
                              data_,
                              slot.model->Settings.ResidualTolerance,
                              settings.BandPercent,
                              settings.NumberOfFittedPoints,
                              run.Predicted_Xmin,
                              run.Predicted_Xmax};
  PointArray curve(x.size());
  for (std::size_t j = 0; j < x.size(); ++j) {
    curve(j, 0) = x[j];
    curve(j, 1) = y[j];
  }
  slot.outcome.Predicted = curve;
  slot.outcome.Verdict = EquationVerdict::accepted;
  slot.result = std::move(curve);
  ranking_[index] = static_cast<std::int16_t>(index);
  slot.dataResult = std::move(predicted);
}

bool CatalogueFit::endsRun(const Running& running, const Slot& slot) {
  if (running.run.triesAll || !(slot.outcome.Statistics.RSquared >= nearPerfectRSquared))
    return false;
  return !running.settings.RatioCurve ||
         ratioCurveIsMonotonic(slot.dataResult->Columns[0], slot.dataResult->Columns[1],
                               running.observer.sortWatch());
}

}  // namespace pelmora::calibration::steps
