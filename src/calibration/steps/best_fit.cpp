// The selection of the best equation: by adjusted R2, among those that pass the band test.
// SPDX-License-Identifier: MIT
#include "base/run_time_error.h"
#include "calibration/steps/catalogue_fit.h"
#include "curves/curve_checks.h"
#include "curves/outcome_details.h"

#include <algorithm>
#include <utility>

namespace pelmora::calibration::steps {
namespace {

void dropOne(std::vector<std::int16_t>& ranking) {
  if (ranking.size() < 2) {
    ranking.assign(1, -1);
  } else {
    ranking.pop_back();
  }
}

PointArray pointsOf(const FitData& data) {
  PointArray points(data.Columns[0].size());
  for (std::size_t c = 0; c < 2; ++c) std::ranges::copy(data.Columns[c], points.column(c).begin());
  return points;
}

}  // namespace

void CatalogueFit::select(const BandTesterFactory& createBandTester, CatalogueSettings& settings,
                          const Observer& observer) {
  if (slots_.empty()) {
    ranking_.assign(1, -1);
    return;
  }
  PointArray scores(slots_.size());
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    if (slots_[i].model) scores(i, 0) = slots_[i].model->statistics().AdjustedRSquared;
    scores(i, 1) = static_cast<double>(i);
  }
  sortAllPoints(scores, 0, observer.sortWatch());

  std::vector<std::int16_t> ranking = ranking_;
  const auto tester = makeTester(createBandTester, settings, observer);
  std::size_t passed = 0;
  for (std::size_t k = 0; k < slots_.size(); ++k) {
    const auto index = static_cast<std::size_t>(scores(k, 1));
    Slot& slot = slots_[index];
    if (!slot.dataResult) {
      dropOne(ranking);
    } else if (passesTests(*tester, settings, slot)) {
      ranking[passed++] = static_cast<std::int16_t>(index);
    } else {
      const std::string failure = tester->FailureText();
      // At the place in the sorted order, not at the equation that failed: stored reports read so.
      slots_[k].failures += "\r\n\r\n" + failure;
      slot.outcome.Reason = failure;
      dropOne(ranking);
    }
  }
  ranking_ = std::move(ranking);
  if (hasChosen()) {
    slots_[static_cast<std::size_t>(ranking_.back())].outcome.Verdict = EquationVerdict::chosen;
  }
}

std::unique_ptr<BandTester> CatalogueFit::makeTester(const BandTesterFactory& create,
                                                     const CatalogueSettings& settings,
                                                     const Observer& observer) {
  auto tester = create ? create() : nullptr;
  if (!tester) throw makeError(RunTimeError::noEngine);
  tester->StatusUpdate = [&observer](const std::string& message) { observer.status(message); };
  tester->RatioMode = settings.RatioCurve;
  return tester;
}

bool CatalogueFit::passesTests(BandTester& tester, CatalogueSettings& settings, Slot& slot) {
  const std::vector<double>& x = slot.dataResult->Columns[0];
  const std::vector<double>& y = slot.dataResult->Columns[1];
  if (settings.RatioCurve && !tester.TestRatioCurve(x, y)) {
    slot.outcome.Verdict = EquationVerdict::ratioTestFailed;
    return false;
  }
  if (!tester.TestBand(data_->Columns[0], data_->Columns[1], x, y, settings.BandPercent)) {
    slot.outcome.Verdict = EquationVerdict::bandTestFailed;
    return false;
  }
  return true;
}

const CatalogueFit::Slot* CatalogueFit::chosenSlot() const {
  if (failed_ || !hasChosen()) return nullptr;
  const auto index = static_cast<std::size_t>(ranking_.back());
  // A ranking that no selection went through names equations that were never accepted.
  const bool accepted = index < slots_.size() && slots_[index].dataResult;
  return accepted ? &slots_[index] : nullptr;
}

const FitModel* CatalogueFit::model() const {
  const Slot* slot = chosenSlot();
  return slot != nullptr ? slot->model.get() : nullptr;
}

const FitData* CatalogueFit::predicted() const {
  const Slot* slot = chosenSlot();
  return slot != nullptr ? slot->dataResult.get() : nullptr;
}

PointArray CatalogueFit::curve() const {
  const Slot* slot = chosenSlot();
  return slot != nullptr ? slot->result : PointArray();
}

std::string CatalogueFit::rawPointsOf(const Slot& slot) {
  return slot.accepted ? rawListing(slot.accepted->labels, pointsOf(*slot.accepted->data)) : "";
}

std::string CatalogueFit::reportOf(const Slot& slot, const std::string& rawPoints) {
  std::string report = slot.details;
  if (const auto& run = slot.accepted) {
    const std::vector<double>& x = run->data->Columns[0];
    const auto [minX, maxX] = std::minmax_element(x.begin(), x.end());
    report += reportBody({run->labels, *minX, *maxX, slot.outcome.Parameters,
                          slot.outcome.Statistics, run->residualTolerance, run->bandPercent,
                          run->numberOfFittedPoints, run->predictedXmin, run->predictedXmax});
    report += predictedListing(run->labels, slot.outcome.Predicted) + "\r\n\r\n" + rawPoints;
  }
  return report + slot.failures;
}

std::string CatalogueFit::details() const {
  if (failed_) return {};
  if (const Slot* slot = chosenSlot()) return reportOf(*slot, rawPointsOf(*slot));
  std::string all, rawPoints;
  const FitData* listed =
      nullptr;  // most equations were fitted to the same points, often thousands
  for (const Slot& slot : slots_) {
    if (slot.accepted && slot.accepted->data.get() != listed) {
      listed = slot.accepted->data.get();
      rawPoints = rawPointsOf(slot);
    }
    all += reportOf(slot, rawPoints) + "\r\n================================\r\n";
  }
  return all;
}

FitOutcome CatalogueFit::verdicts() const {
  FitOutcome outcome;
  for (const Slot& slot : slots_) outcome.Equations.push_back(slot.outcome);
  if (chosenSlot() != nullptr) outcome.Chosen = static_cast<std::size_t>(ranking_.back());
  return outcome;
}

FitOutcome CatalogueFit::outcome(float BandPercent) const {
  FitOutcome outcome = verdicts();
  const Slot* chosen = chosenSlot();
  if (chosen == nullptr) return outcome;
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

}  // namespace pelmora::calibration::steps
