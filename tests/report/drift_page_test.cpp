// The page of a drift, from numbers by hand.
// SPDX-License-Identifier: MIT
#include "report/drift_page.h"

#include <gmock/gmock.h>

#include <string>

namespace pelmora::report {
namespace {

using calibration::ControlChart;
using calibration::CurveShift;
using calibration::Drift;
using calibration::DriftPlace;
using calibration::DriftValue;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Four calibrations at one Roshko number: the first one, a significant shift, a value beyond the
// control limits, and one that is both.
Drift fourCalibrations() {
  const calibration::Curve table(
      std::vector<calibration::CurvePoint>{{10, 1300, {}, {}}, {100, 1310, {}, {}}});
  Drift drift;
  DriftPlace place{50, {}, ControlChart{0.1, -0.2, 0.4, 0.1, false}, {}};
  for (int i = 0; i < 4; ++i) {
    drift.calibrations.push_back(
        {i, "202" + std::to_string(i) + "-06-01", {}, calibration::FittedCurve(table, "Rotor A")});
    DriftValue value;
    value.strouhal = 1305;
    value.percent = 0.25 * i;
    calibration::Budget budget;
    budget.value = 1305;
    budget.expandedPercent = budget.cmcPercent = 0.1234;
    value.budget = budget;
    const bool isSignificant = i % 2 == 1;
    if (i > 0) value.sincePrevious = CurveShift{50, 0.25, 0.1, 2, isSignificant ? 2.5 : 0.5};
    value.isBeyondLimits = i > 1;
    place.values.push_back(value);
  }
  drift.places.push_back(place);
  drift.whyNoInterval = "no limit of the drift was given";
  return drift;
}

std::string verdictOn(const std::string& page, const std::string& year) {
  const auto row = page.find(year + "-06-01<td>");
  const auto end = page.find('\n', row);
  if (row == std::string::npos || end == std::string::npos) return "no such row";
  const auto cell = page.rfind('>', end);
  return page.substr(cell + 1, end - cell - 1);
}

TEST(drift_page, gives_every_calibration_its_verdict) {
  const std::string page = driftPage(fourCalibrations(), "Rotor A of meter M1");
  EXPECT_EQ(verdictOn(page, "2020"), "");
  EXPECT_EQ(verdictOn(page, "2021"), "significant");
  EXPECT_EQ(verdictOn(page, "2022"), "beyond the control limits");
  EXPECT_EQ(verdictOn(page, "2023"), "significant, beyond the control limits");
}

// 0.12 would be less than the laboratory's capability of 0.1234 %.
TEST(drift_page, rounds_the_uncertainty_to_two_digits_up_to_the_capability) {
  EXPECT_THAT(driftPage(fourCalibrations(), ""), HasSubstr("<td>1305.000<td>0.13<td>"));
}

TEST(drift_page, says_where_its_control_limits_come_from) {
  Drift drift = fourCalibrations();
  EXPECT_THAT(driftPage(drift, ""), HasSubstr("Control limits -0.200 % to +0.400 %, from the "
                                              "moving range of 4 calibrations."));
  drift.places[0].chart->isFromUncertainty = true;
  EXPECT_THAT(driftPage(drift, ""), HasSubstr("from the uncertainty of a calibration."));
  drift.places[0].chart.reset();
  EXPECT_THAT(driftPage(drift, ""), Not(HasSubstr("Control limits")));
}

TEST(drift_page, shows_names_as_they_are_and_runs_nothing_in_them) {
  EXPECT_THAT(driftPage(fourCalibrations(), "<b>&"),
              AllOf(HasSubstr("<h1>Drift of &lt;b&gt;&amp;</h1>"), Not(HasSubstr("<b>"))));
}

}  // namespace
}  // namespace pelmora::report
