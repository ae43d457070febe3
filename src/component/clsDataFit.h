// The fitting object: one catalogue of equations, one fit at a time, the best equation of the last
// fit. SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/equation_catalogue.h"
#include "calibration/steps/fit_report.h"

#include <pelmora/error.h>
#include <pelmora/fit_outcome.h>
#include <pelmora/platform.h>
#include <pelmora/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pelmora {

using calibration::Equation;

class clsDataFit {
 public:
  // Loads the equation file of the platform's component folder, or the built-in list where there is
  // none. Errors: Error 75 where a file exists and cannot be read.
  explicit clsDataFit(Platform& platform);

  // Settings of the next run.
  float BandPercent = 0;
  std::int16_t NumberOfFittedPoints = 0;
  std::string MeterSerialNumber, SeriesName;
  bool RatioCurve = false, IgnoreResiduals = false;

  // Events.
  std::function<void(std::int16_t finishedStep, std::int16_t maxSteps)> Progress;
  std::function<void(const std::string& sMessage)> StatusUpdate;

  // Loads the equation file that fits RatioCurve; returns its cleaned text. Without a file the text
  // is empty and the catalogue stays as it is.
  std::string LoadEquations();
  [[nodiscard]] const std::vector<Equation>& equations() const { return equations_; }

  // Fits every equation to the points, from the last of the catalogue to the first, up to one with
  // R2 >= 0.9999, and selects the best. Returns its curve at NumberOfFittedPoints x values spaced
  // evenly in log10 over Predicted_Xmin..Predicted_Xmax; no bounds, and ArrayIsEmpty true, where
  // none was chosen.
  //
  // Errors: shown in a message box; the run then ends.
  PointArray fitCurve(const PointArray& points, bool& ArrayIsEmpty, double Predicted_Xmin,
                      double Predicted_Xmax, const std::string& Label_Xaxis,
                      const std::string& Label_Yaxis);

  // Of the chosen equation; null where none is.
  [[nodiscard]] const ModelDefinition* dfxModelDefinition() const;
  [[nodiscard]] const FitModel* dfxModel() const;
  [[nodiscard]] const FitData* DataResult() const;
  // Report of the chosen equation, or the reports of all. Empty after a run that ended in its error
  // box.
  [[nodiscard]] std::string ResultDetails() const;
  // 0 where no equation is chosen. Errors: Error 13 otherwise: a curve is no number.
  [[nodiscard]] double ResultArray() const;
  // Equation indices that passed, the chosen one last; a single -1 where none did.
  [[nodiscard]] const std::vector<std::int16_t>& ranking() const { return ranking_; }
  [[nodiscard]] FitOutcome outcome() const;

 private:
  // What a run leaves for one equation.
  struct Slot {
    std::shared_ptr<FitEngine> engine;  // outlives its model
    std::unique_ptr<FitModel> model;
    std::string details;
    PointArray result;
    std::unique_ptr<FitData> dataResult;
    EquationOutcome outcome;
  };
  struct Run;  // the arguments of one run

  void resetSlots();
  [[nodiscard]] bool hasChosen() const { return !ranking_.empty() && ranking_.front() != -1; }
  [[nodiscard]] const Slot* chosenSlot() const;
  void raise(const std::string& message) const;

  // The run, in fit_run.cpp.
  void runEquations(const Run& run);
  bool fitEquation(const Run& run, std::size_t index);
  std::vector<double> scanResiduals(Slot& slot) const;
  void acceptSolution(const Run& run, std::size_t index);
  [[nodiscard]] bool endsRun(const Slot& slot) const;
  void showRunError(const Error& error) const;

  // The selection, in best_fit.cpp.
  void findBestFit();
  void rankEquations();
  bool passesTests(BandTester& tester, Slot& slot);

  Platform& platform_;
  std::vector<Equation> equations_;
  std::vector<Slot> slots_;
  std::vector<std::int16_t> ranking_;
  calibration::FitLabels labels_;
  std::string rawListing_;
  std::shared_ptr<const FitData> data_;
  std::string currentEquation_;
  bool failed_ = false;
};

}  // namespace pelmora
