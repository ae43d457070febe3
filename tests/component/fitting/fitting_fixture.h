// What the operations of the fitting workflow work with.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/clsDataFit.h"
#include "component/fit_host.h"
#include "component/operation_context.h"
#include "tests/support/scripted_apartment.h"

#include <string>

namespace pelmora {

// The host's object as a fit sees it.
class FakeHost : public FitHost {
 public:
  explicit FakeHost(test::Journal& into) : journal_(into) {}
  FitSettings settings() const override { return current; }
  void attachFitting(clsDataFit* fitting) override {
    attached = fitting;
    if (fitting == nullptr) return;
    fitting->Progress = [this](std::int16_t step, std::int16_t steps) {
      journal_.push_back("progress: " + std::to_string(step) + "/" + std::to_string(steps));
    };
    fitting->StatusUpdate = [this](const std::string& text) {
      journal_.push_back("status: " + text);
    };
  }
  void takeResult(const std::string& text, FitOutcome) override { details = text; }

  FitSettings current;
  clsDataFit* attached = nullptr;
  std::string details = "of an earlier fit";

 private:
  test::Journal& journal_;
};

class FittingFixture : public test::ScriptedApartment {
 protected:
  FittingFixture() {
    shared_.location.FullPath = "curves.db";
    host_.current.NumberOfFittedPoints = 3;
  }

  SharedState shared_;
  FakeHost host_{journal_};
  OperationContext context_{shared_, platform(), [this](const std::string& text) {
                              journal_.push_back("status: " + text);
                            }};
};

}  // namespace pelmora
