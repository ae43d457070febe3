// The tie between a running operation and the RawData object that started it.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/fit_host.h"

#include <pelmora/raw_data.h>

#include <memory>
#include <string>

namespace pelmora {

// Shared by the object and its running operations, so that a handler may destroy the object: events
// then go nowhere and settings are those that it had.
class HostLink : public FitHost, public std::enable_shared_from_this<HostLink> {
 public:
  explicit HostLink(RawData& object) : object_(&object) {}

  // For the object's destructor, while its fields can still be read.
  void cut();

  void raiseStatusUpdate(const std::string& message) const;

  [[nodiscard]] float bandPercent() const { return bandPercent_; }
  // Reaches a fit that is running, too.
  void setBandPercent(float percent);
  [[nodiscard]] const FitOutcome& lastFit() const { return lastFit_; }

  [[nodiscard]] FitSettings settings() const override;
  void attachFitting(clsDataFit* fitting) override;
  void takeResult(const std::string& details, FitOutcome outcome) override;

 private:
  void raiseFittingProgress(std::int16_t finishedStep, std::int16_t maxSteps) const;

  RawData* object_;
  clsDataFit* fitting_ = nullptr;
  float bandPercent_ = 0;
  FitSettings lastSettings_;  // of an object that is gone
  FitOutcome lastFit_;
};

}  // namespace pelmora
