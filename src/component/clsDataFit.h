// The fitting object: one catalogue of equations, one fit at a time, the best equation of the last
// fit. SPDX-License-Identifier: MIT
#pragma once

#include "calibration/steps/catalogue_fit.h"

#include <pelmora/error.h>
#include <pelmora/fit_outcome.h>
#include <pelmora/platform.h>
#include <pelmora/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace pelmora {

using steps::Equation;

// A CatalogueFit with its boxes, its events and the equation files of a platform's folder. The
// settings are those of the next run and reach one that is running.
class clsDataFit : public steps::CatalogueSettings {
 public:
  // Loads the equation file of the platform's component folder, or the built-in list where there is
  // none. Errors: Error 75 if a file exists and cannot be read.
  explicit clsDataFit(Platform& platform);

  // Events.
  std::function<void(std::int16_t finishedStep, std::int16_t maxSteps)> Progress;
  std::function<void(const std::string& sMessage)> StatusUpdate;

  // Loads the equation file that fits RatioCurve; returns its cleaned text. Without a file the text
  // is empty and the catalogue stays as it is.
  std::string LoadEquations();
  [[nodiscard]] const std::vector<Equation>& equations() const { return fit_.equations(); }

  // Fits every equation to the points, from the last of the catalogue to the first, up to one with
  // R2 >= 0.9999, and selects the best. Returns its curve at NumberOfFittedPoints x values spaced
  // evenly in log10 over Predicted_Xmin..Predicted_Xmax; no bounds, and ArrayIsEmpty true, where
  // none was chosen.
  //
  // Errors: shown in a message box; the run then ends.
  PointArray fitCurve(const PointArray& points, bool& ArrayIsEmpty, double Predicted_Xmin,
                      double Predicted_Xmax, const std::string& Label_Xaxis,
                      const std::string& Label_Yaxis);

  // Of the chosen equation; null if none is.
  [[nodiscard]] const ModelDefinition* dfxModelDefinition() const;
  [[nodiscard]] const FitModel* dfxModel() const { return fit_.model(); }
  [[nodiscard]] const FitData* DataResult() const { return fit_.predicted(); }
  // Report of the chosen equation, or the reports of all. Empty after a run that ended in its error
  // box.
  [[nodiscard]] std::string ResultDetails() const { return fit_.details(); }
  // 0 if no equation is chosen. Errors: Error 13 otherwise: a curve is not a number.
  [[nodiscard]] double ResultArray() const;
  // Equation indices that passed, the chosen one last; a single -1 where none did.
  [[nodiscard]] const std::vector<std::int16_t>& ranking() const { return fit_.ranking(); }
  [[nodiscard]] FitOutcome outcome() const { return fit_.outcome(BandPercent); }

 private:
  void raise(const std::string& message) const;
  [[nodiscard]] steps::Observer observer() const;
  void findBestFit(const steps::Observer& observer);

  Platform& platform_;
  steps::CatalogueFit fit_;
};

}  // namespace pelmora
