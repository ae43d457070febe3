// The selection of a trusted fit: the simplest equation that passes every test.
// SPDX-License-Identifier: MIT
#include "calibration/steps/catalogue_fit.h"

#include <limits>
#include <tuple>

namespace pelmora::calibration::steps {

void CatalogueFit::selectSimplest(const BandTesterFactory& createBandTester,
                                  const SoundTest& isSound, CatalogueSettings& settings,
                                  const Observer& observer) {
  ranking_.assign(1, -1);
  if (slots_.empty()) return;
  const auto tester = makeTester(createBandTester, settings, observer);
  // Without an AICc, which takes two points more than parameters, fewer parameters are simpler.
  const auto complexity = [](const EquationOutcome& outcome) {
    return std::tuple(outcome.Aicc.value_or(std::numeric_limits<double>::infinity()),
                      outcome.Parameters.size());
  };
  std::vector<std::int16_t> passed;
  std::size_t best = slots_.size();
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    Slot& slot = slots_[i];
    if (!slot.dataResult) continue;
    if (!passesTests(*tester, settings, slot)) {
      slot.outcome.Reason = tester->FailureText();
    } else if (const auto why = isSound(i, *slot.model)) {
      slot.outcome.Verdict = EquationVerdict::notSound;
      slot.outcome.Reason = *why;
    } else {
      if (best == slots_.size() || complexity(slot.outcome) < complexity(slots_[best].outcome))
        best = i;
      passed.push_back(static_cast<std::int16_t>(i));
      continue;
    }
    slot.failures += "\r\n\r\n" + slot.outcome.Reason;
  }
  if (best == slots_.size()) return;
  ranking_.clear();
  for (const std::int16_t index : passed) {
    if (static_cast<std::size_t>(index) != best) ranking_.push_back(index);
  }
  ranking_.push_back(static_cast<std::int16_t>(best));
  slots_[best].outcome.Verdict = EquationVerdict::chosen;
}

}  // namespace pelmora::calibration::steps
