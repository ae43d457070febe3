// One fit of a catalogue of equations to the points of a series, and the best equation of it.
// SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/equation_catalogue.h"
#include "calibration/steps/fit_report.h"
#include "calibration/steps/observer.h"

#include <pelmora/band_tester.h>
#include <pelmora/fit_engine.h>
#include <pelmora/fit_outcome.h>
#include <pelmora/types.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelmora::calibration::steps {

// Read whenever they are needed: an observer may change them while a fit runs.
struct CatalogueSettings {
  float BandPercent = 0;
  std::int16_t NumberOfFittedPoints = 0;
  std::string MeterSerialNumber, SeriesName;
  bool RatioCurve = false, IgnoreResiduals = false;
};

// What a run works with. References last as long as the run.
struct CatalogueRun {
  const PointArray& points;  // sorted by x
  double Predicted_Xmin, Predicted_Xmax;
  FitLabels labels;
  std::shared_ptr<FitEngine> engine;
  // Where the engine writes log.txt about an equation without a solution; null: nowhere.
  const std::string* logFolder = nullptr;
  // Asked before each equation and while one is fitted; true ends the run. Empty: never.
  std::function<bool()> stopRequested = {};
  // Where accepted equations are predicted. Empty: NumberOfFittedPoints rows evenly spaced in
  // log10.
  std::span<const double> grid = {};
  bool triesAll = false;  // an equation with R2 >= 0.9999 does not end the run
};

enum class RunEnd { complete, stopped };

// Call run(), then select(). After an error in run(), nothing is chosen and there is no report.
// After an error in select(), the ranking is as it was before.
class CatalogueFit {
 public:
  using BandTesterFactory = std::function<std::unique_ptr<BandTester>()>;

  // Replaces the catalogue and forgets the last run.
  void useEquations(std::vector<Equation> equations);
  [[nodiscard]] const std::vector<Equation>& equations() const { return equations_; }

  // Fits every equation to the points, from the last of the catalogue to the first, up to one with
  // R2 >= 0.9999. An accepted equation is predicted at NumberOfFittedPoints x values spaced evenly
  // in log10 over Predicted_Xmin..Predicted_Xmax.
  //
  // Errors: Error 429 without an engine or a model, 6 for more than 32767 equations, 9 without
  //         points, 11 for an observed value of zero, and what engine and observer throw.
  RunEnd run(const CatalogueRun& run, CatalogueSettings& settings, const Observer& observer = {});

  // Ranks the accepted equations by adjusted R2 and chooses the best one that passes the ratio and
  // the band test. The tester may change BandPercent.
  //
  // Errors: Error 429 without a tester; what the tester and the observer throw.
  void select(const BandTesterFactory& createBandTester, CatalogueSettings& settings,
              const Observer& observer = {});

  // Of the accepted equations that pass the ratio and the band test and `isSound`, chooses the one
  // with the smallest AICc. isSound: called with an equation's index; nothing if it is sound, else
  // why it is not.
  //
  // Errors: as select(), and what `isSound` throws.
  using SoundTest = std::function<std::optional<std::string>(std::size_t, const FitModel&)>;
  void selectSimplest(const BandTesterFactory& createBandTester, const SoundTest& isSound,
                      CatalogueSettings& settings, const Observer& observer = {});

  // Nothing counts as chosen or reported until the next run.
  void discard() { failed_ = true; }

  // Of the chosen equation; null or no bounds where none is.
  [[nodiscard]] const FitModel* model() const;
  [[nodiscard]] const FitData* predicted() const;
  [[nodiscard]] PointArray curve() const;
  // Report of the chosen equation, or the reports of all.
  [[nodiscard]] std::string details() const;
  // Equation indices that passed, the chosen one last; a single -1 where none did.
  [[nodiscard]] const std::vector<std::int16_t>& ranking() const { return ranking_; }
  [[nodiscard]] FitOutcome outcome(float BandPercent) const;
  // The same without bands and warnings.
  [[nodiscard]] FitOutcome verdicts() const;
  // The equation that the run has reached.
  [[nodiscard]] const std::string& currentEquation() const { return currentEquation_; }

 private:
  // What the report of an accepted equation says of its run. Only one report is read as a rule, so
  // it is written when it is asked for.
  struct ReportedRun {
    FitLabels labels;
    std::shared_ptr<const FitData> data;
    double residualTolerance;
    float bandPercent;
    std::int16_t numberOfFittedPoints;
    double predictedXmin, predictedXmax;
  };
  // What a run leaves for one equation.
  struct Slot {
    std::shared_ptr<FitEngine> engine;  // outlives its model
    std::unique_ptr<FitModel> model;
    std::string details;  // the report up to `accepted`
    std::optional<ReportedRun> accepted;
    std::string failures;  // ends the report
    PointArray result;
    std::unique_ptr<FitData> dataResult;
    EquationOutcome outcome;
  };
  struct Running;  // a run with its settings and its observer

  void resetSlots();
  [[nodiscard]] bool hasChosen() const { return !ranking_.empty() && ranking_.front() != -1; }
  [[nodiscard]] const Slot* chosenSlot() const;
  [[nodiscard]] static std::string rawPointsOf(const Slot& slot);
  [[nodiscard]] static std::string reportOf(const Slot& slot, const std::string& rawPoints);

  // The run, in catalogue_fit.cpp.
  RunEnd runEquations(const Running& running);
  bool fitEquation(const Running& running, std::size_t index);
  static std::vector<double> scanResiduals(Slot& slot);
  void acceptSolution(const Running& running, std::size_t index);
  [[nodiscard]] static bool endsRun(const Running& running, const Slot& slot);

  // The selection, in best_fit.cpp.
  [[nodiscard]] static std::unique_ptr<BandTester> makeTester(const BandTesterFactory& create,
                                                              const CatalogueSettings& settings,
                                                              const Observer& observer);
  bool passesTests(BandTester& tester, CatalogueSettings& settings, Slot& slot);

  std::vector<Equation> equations_;
  std::vector<Slot> slots_;
  std::vector<std::int16_t> ranking_;
  FitLabels labels_;
  std::shared_ptr<const FitData> data_;
  std::string currentEquation_;
  bool failed_ = false;
};

}  // namespace pelmora::calibration::steps
