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

// Where chance plays a part, this many different faults of a kind meet each call. Without the
// variable the run is short: one fault, and not at every call.
inline std::uint32_t faultRounds() {
  const char* text = std::getenv("PELMORA_FAULT_ROUNDS");
  return text == nullptr ? 1 : static_cast<std::uint32_t>(std::stoul(text));
}
// The distance from one interrupted call to the next.
inline std::size_t callsApart() { return std::getenv("PELMORA_FAULT_ROUNDS") == nullptr ? 5 : 1; }

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
    storeFit(lab, 40);
    storeFit(lab, 20);
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
