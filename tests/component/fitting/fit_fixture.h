// A fit from stored raw parts.
// SPDX-License-Identifier: MIT
#pragma once

#include "component/fit_orchestration.h"
#include "tests/component/fitting/fitting_fixture.h"

namespace pelmora {

class StoredFitFixture : public FittingFixture {
 protected:
  StoredFitFixture() { haveSeriesToFit(); }

  PointArray fit() {
    return determineFittedCurve(context_, host_, request_, isEmpty_, xMin_, xMax_);
  }
  const SeriesInfo& record() const { return shared_.fitRecord(); }

  FitRequest request_{"Rotor A", "4711", -1, "Roshko", "Strouhal", false};
  bool isEmpty_ = false;
  double xMin_ = 2, xMax_ = 10;
};

}  // namespace pelmora
