// SPDX-License-Identifier: MIT
#include "component/clsDataFit.h"

#include "base/file_text.h"
#include "base/number_text.h"
#include "base/run_time_error.h"
#include "base/utf8_text.h"
#include "component/sort_watch.h"
#include "ui/message_box.h"

#include <memory>
#include <utility>

namespace pelmora {
namespace {

void showRunError(const Error& error, const std::string& equation) {
  const bool noEngine = error.number() == static_cast<std::int32_t>(RunTimeError::noEngine);
  const std::string text =
      noEngine ? "Error 429: ActiveX component can't create object. The DataFitX component must be "
                 "installed and registered to run this sample."
               : "Error in clsDataFit:fitCurve " + numberText(error.number()) + ": " + error.what();
  standardMessageBox(text, box_style::critical,
                     noEngine ? "Error" : "Error in Equation " + equation);
}

}  // namespace

clsDataFit::clsDataFit(Platform& platform) : platform_(platform) {
  if (LoadEquations().empty()) fit_.useEquations(steps::builtInEquations());
}

std::string clsDataFit::LoadEquations() {
  const auto path = filePath(platform_.componentFolder) / steps::equationFileName(RatioCurve);
  if (!fileExists(path)) return {};
  steps::EquationFile file = steps::parseEquationFile(utf8FromAnsi(readWholeFile(path)));
  if (file.text.empty()) return {};  // as good as missing
  fit_.useEquations(std::move(file.equations));
  return file.text;
}

PointArray clsDataFit::fitCurve(const PointArray& points, bool& ArrayIsEmpty, double Predicted_Xmin,
                                double Predicted_Xmax, const std::string& Label_Xaxis,
                                const std::string& Label_Yaxis) {
  PointArray curve;
  ArrayIsEmpty = true;
  bool running = false;
  try {
    const steps::Observer watching = observer();
    std::shared_ptr<FitEngine> engine =
        platform_.createFitEngine ? platform_.createFitEngine() : nullptr;
    running = true;
    fit_.run({points,
              Predicted_Xmin,
              Predicted_Xmax,
              {Label_Xaxis, Label_Yaxis},
              std::move(engine),
              &platform_.componentFolder},
             *this, watching);
    findBestFit(watching);
    if (const FitModel* chosen = fit_.model()) {
      curve = fit_.curve();
      ArrayIsEmpty = false;
      raise("Determined bestfit equation: " + chosen->Definition.Name);
    } else {
      raise("All equations failed to fit the data");
    }
  } catch (...) {
    fit_.discard();
    ArrayIsEmpty = true;
    curve = PointArray();
    showRunError(currentError(), running ? fit_.currentEquation() : std::string());
  }
  return curve;
}

void clsDataFit::findBestFit(const steps::Observer& observer) {
  try {
    fit_.select(platform_.createBandTester, *this, observer);
  } catch (...) {
    standardMessageBox(std::string("Error in clsDataFit:findBestFit") + currentError().what(),
                       box_style::critical, "");
  }
}

const ModelDefinition* clsDataFit::dfxModelDefinition() const {
  const FitModel* model = dfxModel();
  return model != nullptr ? &model->Definition : nullptr;
}

double clsDataFit::ResultArray() const {
  if (fit_.predicted() != nullptr) throw makeError(RunTimeError::typeMismatch);
  return 0;
}

// Handlers are copied before they are called: a handler may replace itself.

void clsDataFit::raise(const std::string& message) const {
  if (auto handler = StatusUpdate) handler(message);
}

steps::Observer clsDataFit::observer() const {
  SortWatch sorting = hostsSortWatch();
  return {[this](const std::string& text) { raise(text); },
          [this](std::int16_t finished, std::int16_t of) {
            if (auto handler = Progress) handler(finished, of);
          },
          std::move(sorting.breathe), std::move(sorting.failed)};
}

}  // namespace pelmora
