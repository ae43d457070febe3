// What a digital certificate takes from a report.
// SPDX-License-Identifier: MIT
#include "report/dcc_report.h"

#include "tests/report/sample_report.h"

#include <pelmora/calibration/failure.h>

#include <gmock/gmock.h>

namespace pelmora::report::test {
namespace {

using calibration::PointState;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

ReportInput completeInput() {
  ReportInput input = reportOf(straightSeries());
  input.laboratory = {{"name", "Laboratory"}, {"city", "Town"}, {"country", "DE"}};
  input.details = {{"certificate-number", "2026-17"},
                   {"date", "2026-11-20"},
                   {"customer", "Customer"},
                   {"customer-city", "City"},
                   {"signatory", "A. Signer, head of laboratory\nB. Operator"},
                   {"roshko-unit", "Hz/cSt"},
                   {"strouhal-unit", "pulses/l"},
                   {"limit", "0.5 %"},
                   {"ambient-temperature", "21.5 C"}};
  return input;
}

std::vector<std::string> namesOf(const dcc::Result& result) {
  std::vector<std::string> names;
  for (const dcc::Column& column : result.columns) names.push_back(column.name);
  return names;
}

TEST(dcc_report, has_the_used_points_and_the_curve) {
  const dcc::Certificate made = certificateOf(buildReport(completeInput()));
  ASSERT_THAT(made.results, SizeIs(2));
  EXPECT_THAT(namesOf(made.results[0]), ElementsAre("Roshko number", "Strouhal number (K factor)",
                                                    "Deviation from the curve"));
  // The cut point is not among them.
  EXPECT_THAT(made.results[0].columns[0].values, ElementsAre("1.000000", "50.00000", "100.0000"));
  EXPECT_THAT(made.results[0].columns[2].values, ElementsAre("0.000", "1.000", "0.000"));
  EXPECT_THAT(made.results[1].columns[1].values, ElementsAre("10.00000", "1000.000"));
  EXPECT_EQ(made.results[1].columns[1].unit, "pulses/l");
}

TEST(dcc_report, counts_points_that_the_fit_left_out_and_does_not_list_them) {
  ReportInput input = completeInput();
  for (calibration::RawPoint& point : input.series[0].points) {
    if (point.roshko == 50) point.state = PointState::distrusted;
  }
  const dcc::Certificate made = certificateOf(buildReport(input));
  EXPECT_THAT(made.results[0].columns[0].values, ElementsAre("1.000000", "100.0000"));
  EXPECT_THAT(made.statements,
              Contains(AllOf(
                  HasSubstr("2 points used, 1 cut"), HasSubstr("1 distrusted (contradicting"),
                  HasSubstr("+1.000 %, of a distrusted point"), HasSubstr("FAIL, limit 0.5 %"))));
}

TEST(dcc_report, has_readings_whose_units_are_recorded) {
  ReportInput input = completeInput();
  for (calibration::RawPoint& point : input.series[0].points)
    point.reading = calibration::StandReading{.frequency = 12.5, .viscosity = 1.2};
  input.details["frequency-unit"] = "Hz";
  const dcc::Certificate made = certificateOf(buildReport(input));
  EXPECT_THAT(namesOf(made.results[0]), Contains("Frequency"));
  EXPECT_THAT(namesOf(made.results[0]), Not(Contains("Kinematic viscosity")));
}

TEST(dcc_report, says_who_signs_and_what_was_decided) {
  const dcc::Certificate made = certificateOf(buildReport(completeInput()));
  ASSERT_THAT(made.signatories, SizeIs(2));
  EXPECT_EQ(made.signatories[0].name, "A. Signer");
  EXPECT_EQ(made.signatories[0].role, "head of laboratory");
  EXPECT_TRUE(made.signatories[0].isMain);
  EXPECT_EQ(made.lastDate, "2026-11-20");
  ASSERT_THAT(made.conditions, SizeIs(1));
  EXPECT_EQ(made.conditions[0].value, "21.5");
  EXPECT_EQ(made.conditions[0].unit, "C");
  EXPECT_THAT(made.statements, Contains(HasSubstr("FAIL, limit 0.5 %")));
}

TEST(dcc_report, states_signatures_and_whether_they_are_void) {
  ReportInput input = completeInput();
  calibration::SignOff valid, isVoid;
  valid.name = "Ada", valid.remark = "as found", valid.signedAt = "2026-11-22T09:15:00Z";
  valid.fingerprint = calibration::signedFingerprint(input.series[0].stored);
  isVoid.name = "Bob", isVoid.signedAt = "2026-11-21T09:15:00Z", isVoid.fingerprint = "0123";
  input.series[0].signOffs = {valid, isVoid};
  const dcc::Certificate made = certificateOf(buildReport(input));
  EXPECT_THAT(made.statements,
              Contains("Rotor A: Signed off by Ada, 2026-11-22T09:15:00Z: as found. Fingerprint " +
                       valid.fingerprint));
  EXPECT_THAT(made.statements, Contains("Rotor A: Void, changed since it was signed off by Bob, "
                                        "2026-11-21T09:15:00Z. Fingerprint 0123"));
}

TEST(dcc_report, names_everything_that_is_missing_at_once) {
  ReportInput input = completeInput();
  input.details.erase("customer-city");
  input.details.erase("strouhal-unit");
  input.laboratory.erase("country");
  try {
    (void)dccReport(buildReport(input));
    FAIL() << "nothing was refused";
  } catch (const calibration::BadData& failure) {
    const std::string text = failure.what();
    for (const char* gap : {"the city of the customer", "the unit of Strouhal", "the country"})
      EXPECT_THAT(text, HasSubstr(gap));
  }
}

}  // namespace
}  // namespace pelmora::report::test
