// SPDX-License-Identifier: MIT
#include "component/host_link.h"

#include "component/clsDataFit.h"

#include <pelmora/platform.h>

#include <utility>

namespace pelmora {

// Handlers are copied before they are called: a handler may replace itself or destroy the object.

void HostLink::raiseStatusUpdate(const std::string& message) const {
  if (object_ == nullptr) return;
  if (auto handler = object_->StatusUpdate) handler(message);
}

void HostLink::raiseFittingProgress(std::int16_t finishedStep, std::int16_t maxSteps) const {
  if (object_ == nullptr) return;
  if (auto handler = object_->FittingProgress) handler(finishedStep, maxSteps);
}

void HostLink::setBandPercent(float percent) {
  bandPercent_ = percent;
  if (fitting_ != nullptr) fitting_->BandPercent = percent;
}

void HostLink::cut() {
  lastSettings_ = settings();
  object_ = nullptr;
}

FitSettings HostLink::settings() const {
  if (object_ == nullptr) return lastSettings_;
  FitSettings settings;
  settings.NumberOfFittedPoints = object_->NumberOfFittedPoints;
  settings.BandPercent = bandPercent_;
  settings.Unattended = object_->Unattended;
  settings.RatioCurve = object_->RatioCurve;
  settings.IgnoreResiduals = object_->IgnoreResiduals;
  return settings;
}

void HostLink::attachFitting(clsDataFit* fitting) {
  fitting_ = fitting;
  if (fitting == nullptr) return;
  fitting->Progress = [link = shared_from_this()](std::int16_t finishedStep,
                                                  std::int16_t maxSteps) {
    link->raiseFittingProgress(finishedStep, maxSteps);
  };
  fitting->StatusUpdate = [link = shared_from_this()](const std::string& message) {
    link->raiseStatusUpdate(message);
    if (auto pump = platform().pumpMessages) pump();
  };
}

void HostLink::takeResult(const std::string& details, FitOutcome outcome) {
  lastFit_ = std::move(outcome);
  if (object_ != nullptr) object_->DataFitResultDetails = details;
}

}  // namespace pelmora
