// A fit from stored raw parts.
// SPDX-License-Identifier: MIT
#pragma once

#include "fitting/fit_orchestration.h"
#include "tests/fitting/fitting_fixture.h"

namespace pelmora {

class StoredFitFixture : public FittingFixture {
 protected:
  StoredFitFixture() {
    script_->answer(seriesStatement(), {{"id", "name", "meterid", "recalid", "serialnumberadjusted"},
                                        {{std::int64_t{7}, std::string("Rotor A"), std::int64_t{3},
                                          std::int64_t{2}, std::string("4711-A")}}});
  }
  static std::string seriesStatement() {
    return "SELECT TOP 1 series.*, meter.recalid, meter.serialnumberadjusted from series left join meter "
           "on series.meterid=meter.id where series.name = 'Rotor A' and meter.serialnumber='4711' ORDER "
           "BY meter.recalid DESC";
  }
  static std::string partStatement(int part) {
    return "Select roshko, strouhal from raw" + std::to_string(part) + " where seriesID = 7";
  }
  void havePart(int part, const PointArray& points) {
    script_->answer(partStatement(part), test::pointRows(points));
  }
  PointArray fit() {
    return determineFittedCurve(context_, host_, request_, isEmpty_, xMin_, xMax_);
  }
  const SeriesInfo& record() const { return shared_.fitRecord(); }

  FitRequest request_{"Rotor A", "4711", -1, "Roshko", "Strouhal", false};
  bool isEmpty_ = false;
  double xMin_ = 2, xMax_ = 10;
};

}  // namespace pelmora
