// The run over the catalogue: fit, test the residuals, predict, report.
// SPDX-License-Identifier: MIT
#include "base/file_text.h"
#include "base/number_text.h"
#include "base/run_time_error.h"
#include "component/clsDataFit.h"
#include "curves/outcome_details.h"
#include "curves/predicted_curve.h"
#include "ui/message_box.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace pelmora {

using namespace calibration;

struct clsDataFit::Run {
  std::shared_ptr<FitEngine> engine;
  double predictedXmin, predictedXmax;
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

PointArray clsDataFit::fitCurve(const PointArray& points, bool& ArrayIsEmpty, double Predicted_Xmin,
                                double Predicted_Xmax, const std::string& Label_Xaxis,
                                const std::string& Label_Yaxis) {
  PointArray curve;
  ArrayIsEmpty = true;
  failed_ = false;
  currentEquation_.clear();
  try {
    labels_ = {Label_Xaxis, Label_Yaxis};
    rawListing_ = rawListing(labels_, points);
    std::shared_ptr<FitEngine> engine =
        platform_.createFitEngine ? platform_.createFitEngine() : nullptr;
    if (!engine) throw makeError(RunTimeError::noEngine);
    if (equations_.size() > mostEquations) throw makeError(RunTimeError::overflow);
    data_ = makeFitData(labels_, points);
    ranking_.assign(equations_.size(), 0);
    runEquations({std::move(engine), Predicted_Xmin, Predicted_Xmax});
    findBestFit();
    const Slot* chosen = chosenSlot();
    if (chosen != nullptr) {
      curve = chosen->result;
      ArrayIsEmpty = false;
      raise("Determined bestfit equation: " + chosen->model->Definition.Name);
    } else {
      raise("All equations failed to fit the data");
    }
  } catch (...) {
    failed_ = true;
    ArrayIsEmpty = true;
    curve = PointArray();
    showRunError(currentError());
  }
  return curve;
}

void clsDataFit::runEquations(const Run& run) {
  const auto last = static_cast<std::int16_t>(equations_.size()) - 1;
  for (int i = last; i >= 0; --i) {
    const auto index = static_cast<std::size_t>(i);
    currentEquation_ = equations_[index].name;
    if (auto handler = Progress) {
      handler(static_cast<std::int16_t>(last - i + 1), static_cast<std::int16_t>(last + 1));
    }
    if (fitEquation(run, index) && endsRun(slots_[index])) break;
  }
}

// Whether the equation was accepted.
bool clsDataFit::fitEquation(const Run& run, std::size_t index) {
  Slot& slot = slots_[index];
  slot = Slot();
  slot.outcome.Name = equations_[index].name;
  slot.outcome.Expression = equations_[index].expression;
  slot.engine = run.engine;
  slot.model = run.engine->createModel();
  if (!slot.model) throw makeError(RunTimeError::noEngine);
  FitModel& model = *slot.model;
  model.Definition = {equations_[index].name, equations_[index].expression};
  model.Settings.First = iterationLimit;
  model.Settings.Second = numberOfStarts;
  model.Settings.ResidualTolerance = residualTolerance;

  raise("Started fitting with equation: " + model.Definition.Name);
  model.attach(data_);
  raise("Finished fitting with equation: " + model.Definition.Name);
  if (!model.solutionFound()) {
    model.writeLog(utf8Text(filePath(platform_.componentFolder) / "log.txt"));
    slot.details += noSolutionText(platform_.componentFolder);
    slot.outcome.Verdict = EquationVerdict::noSolution;
    slot.outcome.Reason = model.failureReason();
    return false;
  }
  describeSolution(model, slot.outcome);
  const std::vector<double> ratios = scanResiduals(slot);
  slot.details += reportHead(MeterSerialNumber, SeriesName, model.Definition);
  if (std::abs(slot.outcome.WorstResidualRatio) >= largestResidualRatio && !IgnoreResiduals) {
    slot.details += residualFailureText(ratios);
    slot.outcome.Verdict = EquationVerdict::residualTestFailed;
    slot.outcome.Reason = "the residual at x = " + numberText(slot.outcome.WorstResidualX) +
                          " is " + numberText(slot.outcome.WorstResidualRatio) +
                          " times the observed value; the limit is " +
                          numberText(largestResidualRatio);
    return false;
  }
  acceptSolution(run, index);
  return true;
}

// The ratios residual / observed y of all rows; leaves the largest with its x in the outcome.
std::vector<double> clsDataFit::scanResiduals(Slot& slot) const {
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

void clsDataFit::acceptSolution(const Run& run, std::size_t index) {
  Slot& slot = slots_[index];
  if (data_->Columns[0].empty()) throw makeError(RunTimeError::outOfRange);
  auto predicted = std::make_unique<FitData>();
  predicted->Names = {labels_.x, labels_.y};
  predicted->Symbols = {"", ""};
  predicted->Columns.push_back(
      logSpacedGrid(run.predictedXmin, run.predictedXmax, NumberOfFittedPoints - 1));
  predicted->Columns.push_back(slot.model->evaluate(predicted->Columns[0]));
  const std::vector<double>& x = predicted->Columns[0];
  const std::vector<double>& y = predicted->Columns[1];
  if (y.size() != x.size()) throw makeError(RunTimeError::outOfRange);

  const auto [minX, maxX] = std::minmax_element(data_->Columns[0].begin(), data_->Columns[0].end());
  slot.details +=
      reportBody({labels_, *minX, *maxX, slot.outcome.Parameters, slot.outcome.Statistics,
                  slot.model->Settings.ResidualTolerance, BandPercent, NumberOfFittedPoints,
                  run.predictedXmin, run.predictedXmax});
  PointArray curve(x.size());
  for (std::size_t j = 0; j < x.size(); ++j) {
    curve(j, 0) = x[j];
    curve(j, 1) = y[j];
  }
  slot.details += predictedListing(labels_, curve) + "\r\n\r\n" + rawListing_;
  slot.outcome.Predicted = curve;
  slot.outcome.Verdict = EquationVerdict::accepted;
  slot.result = std::move(curve);
  ranking_[index] = static_cast<std::int16_t>(index);
  slot.dataResult = std::move(predicted);
}

bool clsDataFit::endsRun(const Slot& slot) const {
  if (!(slot.outcome.Statistics.RSquared >= nearPerfectRSquared)) return false;
  return !RatioCurve ||
         ratioCurveIsMonotonic(slot.dataResult->Columns[0], slot.dataResult->Columns[1]);
}

void clsDataFit::showRunError(const Error& error) const {
  const bool noEngine = error.number() == static_cast<std::int32_t>(RunTimeError::noEngine);
  const std::string text =
      noEngine ? "Error 429: ActiveX component can't create object. The DataFitX component must be "
                 "installed and registered to run this sample."
               : "Error in clsDataFit:fitCurve " + numberText(error.number()) + ": " + error.what();
  standardMessageBox(text, box_style::critical,
                     noEngine ? "Error" : "Error in Equation " + currentEquation_);
}

}  // namespace pelmora
