// Changes of a curve database that faults interrupt.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/file_bytes.h"
#include "tests/support/places.h"

#include <pelmora/calibration.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace pelmora::test {

// A survey gives every round a number of its own: it chooses the curves, where a write stops and
// what a power loss takes. Without it the run is short and meets every fifth call.
inline bool isSurvey() { return std::getenv("PELMORA_FAULT_SEED") != nullptr; }
inline std::uint32_t faultSeed() {
  return isSurvey() ? static_cast<std::uint32_t>(std::stoul(std::getenv("PELMORA_FAULT_SEED"))) : 0;
}
// The distance from one interrupted call to the next.
inline std::size_t callsApart() { return isSurvey() ? 1 : 5; }

struct InterruptedChange {
  std::string name;
  std::function<void(calibration::Database&)> run;
};

inline void importTwoFluids(calibration::Database& lab, bool newCalibration) {
  const calibration::Stand stand(sourceFolder() + "/examples/data/stand-dual-rotor.csv");
  auto change = lab.begin("import");
  const calibration::Meter meter = lab.registerMeter("M1", newCalibration);
  (void)lab.importRuns(meter, stand, {{"1001", "Spirit", "Ada"}, {"1002", "Glycol", "Ada"}});
  change.commit();
}

inline void storeFit(calibration::Database& lab, std::int16_t points) {
  (void)lab.store(lab.fit(lab.meter("M1"), "Rotor A", {.points = points}));
}

// A meter with two runs, a curve and a history entry; the bytes of the file.
inline std::string calibratedDatabase(const std::string& path) {
  {
    calibration::Database lab = calibration::create(path);
    importTwoFluids(lab, false);
    storeFit(lab, static_cast<std::int16_t>(40 + faultSeed() % 60));
    storeFit(lab, static_cast<std::int16_t>(20 + faultSeed() % 7));
  }
  return bytesOf(path);
}

inline std::vector<InterruptedChange> interruptedChanges() {
  using calibration::Database;
  return {{"import", [](Database& lab) { importTwoFluids(lab, true); }},
          {"fit", [](Database& lab) { storeFit(lab, 30); }},
          {"restore", [](Database& lab) { (void)lab.restore(lab.history().front().id); }}};
}

}  // namespace pelmora::test
