// SPDX-License-Identifier: MIT
#include "component/clsDataFit.h"

#include "base/file_text.h"
#include "base/run_time_error.h"
#include "base/utf8_text.h"
#include "curves/curve_checks.h"
#include "curves/outcome_details.h"

#include <filesystem>

namespace pelmora {

using namespace calibration;

clsDataFit::clsDataFit(Platform& platform) : platform_(platform) {
  if (LoadEquations().empty()) {
    equations_ = builtInEquations();
    resetSlots();
  }
  labels_ = {"Roshko", "Strouhal"};
}

std::string clsDataFit::LoadEquations() {
  const auto path = filePath(platform_.componentFolder) / equationFileName(RatioCurve);
  if (!fileExists(path)) return {};
  EquationFile file = parseEquationFile(utf8FromAnsi(readWholeFile(path)));
  if (file.text.empty()) return {};  // as good as missing
  equations_ = std::move(file.equations);
  resetSlots();
  return file.text;
}

void clsDataFit::resetSlots() {
  slots_ = std::vector<Slot>(equations_.size());
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    slots_[i].outcome.Name = equations_[i].name;
    slots_[i].outcome.Expression = equations_[i].expression;
  }
  ranking_.assign(equations_.size(), 0);
}

const clsDataFit::Slot* clsDataFit::chosenSlot() const {
  if (failed_ || !hasChosen()) return nullptr;
  const auto index = static_cast<std::size_t>(ranking_.back());
  // A ranking that no selection went through names equations that were never accepted.
  const bool accepted = index < slots_.size() && slots_[index].dataResult;
  return accepted ? &slots_[index] : nullptr;
}

const ModelDefinition* clsDataFit::dfxModelDefinition() const {
  const FitModel* model = dfxModel();
  return model != nullptr ? &model->Definition : nullptr;
}

const FitModel* clsDataFit::dfxModel() const {
  const Slot* slot = chosenSlot();
  return slot != nullptr ? slot->model.get() : nullptr;
}

const FitData* clsDataFit::DataResult() const {
  const Slot* slot = chosenSlot();
  return slot != nullptr ? slot->dataResult.get() : nullptr;
}

double clsDataFit::ResultArray() const {
  if (chosenSlot() != nullptr) throw makeError(RunTimeError::typeMismatch);
  return 0;
}

std::string clsDataFit::ResultDetails() const {
  if (failed_) return {};
  if (const Slot* slot = chosenSlot()) return slot->details;
  std::string all;
  for (const Slot& slot : slots_) {
    all += slot.details + "\r\n================================\r\n";
  }
  return all;
}

FitOutcome clsDataFit::outcome() const {
  FitOutcome outcome;
  for (const Slot& slot : slots_) outcome.Equations.push_back(slot.outcome);
  const Slot* chosen = chosenSlot();
  if (chosen == nullptr) return outcome;
  outcome.Chosen = static_cast<std::size_t>(ranking_.back());
  const std::vector<double>& x = chosen->dataResult->Columns[0];
  const std::vector<double>& y = chosen->dataResult->Columns[1];
  try {
    describeBands(*chosen->model, x, outcome);
    outcome.Warnings =
        checkCurve({*chosen->model, chosen->outcome.Statistics, chosen->outcome.Parameters.size(),
                    data_->Columns[0], x, y, BandPercent});
  } catch (...) {  // an engine that cannot look closer at its curve has fitted it all the same
  }
  return outcome;
}

void clsDataFit::raise(const std::string& message) const {
  if (auto handler = StatusUpdate) handler(message);
}

}  // namespace pelmora
