// What a fit needs of the object that the host holds.
// SPDX-License-Identifier: MIT
#pragma once

#include <pelmora/fit_outcome.h>

#include <cstdint>
#include <string>

namespace pelmora {

class clsDataFit;

// The public settings of the object, as they stand when they are asked for.
struct FitSettings {
  std::int16_t NumberOfFittedPoints = 40;
  float BandPercent = 0;
  bool Unattended = false, RatioCurve = false, IgnoreResiduals = false;
};

// The RawData object behind a fit. Every function is safe to call after the host destroyed that
// object: settings are then the last that it had, and what is handed over is dropped.
class FitHost {
 public:
  virtual ~FitHost() = default;
  [[nodiscard]] virtual FitSettings settings() const = 0;
  // Makes the object pass the fitting object's events on to the host, and hand it a new
  // BandPercent; null detaches it.
  virtual void attachFitting(clsDataFit* fitting) = 0;
  // The report and the outcome of the fit that has ended.
  virtual void takeResult(const std::string& details, FitOutcome outcome) = 0;
};

}  // namespace pelmora
