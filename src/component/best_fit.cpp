// The selection of the best equation: by adjusted R2, among those that pass the band test.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "component/clsDataFit.h"
#include "ui/message_box.h"

namespace pelmora {
namespace {

void dropOne(std::vector<std::int16_t>& ranking) {
  if (ranking.size() < 2) {
    ranking.assign(1, -1);
  } else {
    ranking.pop_back();
  }
}

}  // namespace

void clsDataFit::findBestFit() {
  try {
    rankEquations();
  } catch (...) {
    standardMessageBox(std::string("Error in clsDataFit:findBestFit") + currentError().what(),
                       box_style::critical, "");
  }
}

void clsDataFit::rankEquations() {
  if (slots_.empty()) {
    ranking_.assign(1, -1);
    return;
  }
  PointArray scores(slots_.size());
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].model) scores(i, 0) = slots_[i].model->statistics().AdjustedRSquared;
    scores(i, 1) = static_cast<double>(i);
  }
  quickSortPoints(scores, 0, 1, 0, pointUpperBound(scores), true);

  std::vector<std::int16_t> ranking = ranking_;
  const auto tester = platform_.createBandTester ? platform_.createBandTester() : nullptr;
  if (!tester) throw makeError(RunTimeError::noEngine);
  tester->StatusUpdate = [this](const std::string& message) { raise(message); };
  tester->RatioMode = RatioCurve;
  std::size_t passed = 0;
  for (std::size_t k = 0; k < slots_.size(); ++k) {
    const auto index = static_cast<std::size_t>(scores(k, 1));
    Slot& slot = slots_[index];
    if (!slot.dataResult) {
      dropOne(ranking);
    } else if (passesTests(*tester, slot)) {
      ranking[passed++] = static_cast<std::int16_t>(index);
    } else {
      const std::string failure = tester->FailureText();
      // At the place in the sorted order, not at the equation that failed: stored reports read so.
      slots_[k].details += "\r\n\r\n" + failure;
      slot.outcome.Reason = failure;
      dropOne(ranking);
    }
  }
  ranking_ = std::move(ranking);
  if (hasChosen()) {
    slots_[static_cast<std::size_t>(ranking_.back())].outcome.Verdict = EquationVerdict::chosen;
  }
}

bool clsDataFit::passesTests(BandTester& tester, Slot& slot) {
  const std::vector<double>& x = slot.dataResult->Columns[0];
  const std::vector<double>& y = slot.dataResult->Columns[1];
  if (RatioCurve && !tester.TestRatioCurve(x, y)) {
    slot.outcome.Verdict = EquationVerdict::ratioTestFailed;
    return false;
  }
  if (!tester.TestBand(data_->Columns[0], data_->Columns[1], x, y, BandPercent)) {
    slot.outcome.Verdict = EquationVerdict::bandTestFailed;
    return false;
  }
  return true;
}

}  // namespace pelmora
