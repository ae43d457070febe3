// A host with one object whose events go to the journal.
// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/scripted_apartment.h"

#include <pelmora/error.h>
#include <pelmora/raw_data.h>

#include <memory>
#include <string>

namespace pelmora {

class ComponentFixture : public test::ScriptedApartment {
 protected:
  ComponentFixture() {
    data_->NumberOfFittedPoints = 3;
    data_->StatusUpdate = [this](const std::string& text) {
      journal_.push_back("status: " + text);
    };
    data_->FittingProgress = [this](std::int16_t step, std::int16_t steps) {
      journal_.push_back("progress: " + std::to_string(step) + "/" + std::to_string(steps));
    };
  }

  // A series with two raw points, ready for fit().
  void haveFit() {
    haveSeriesToFit();
    havePart(1, {{1, 4}, {10, 5}});
  }
  PointArray fit() {
    double from = 1, to = 10;
    return data_->determineFittedCurve("Rotor A", "4711", isEmpty_, from, to, "Roshko", "Strouhal",
                                       false);
  }
  // Makes the raw table of the series writable by SetRaw.
  void haveRawTarget() {
    script_->answer(
        "SELECT TOP 1 ID, ReCalID, SerialNumberAdjusted from meter where serialnumber='4711' "
        "ORDER BY ReCalID DESC",
        {{"ID", "ReCalID", "SerialNumberAdjusted"},
         {{std::int64_t{3}, std::int64_t{2}, std::string("4711-A")}}});
    script_->answer(
        "select * from series where name = 'Rotor A' and meterid=3",
        {{"ID", "name", "meterid"}, {{std::int64_t{7}, std::string("Rotor A"), std::int64_t{3}}}});
  }

  std::unique_ptr<RawData> data_ = std::make_unique<RawData>();
  bool isEmpty_ = false;
};

}  // namespace pelmora
