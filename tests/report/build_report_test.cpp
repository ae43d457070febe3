// From what is stored and refitted to the model.
// SPDX-License-Identifier: MIT
#include "tests/report/sample_report.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace pelmora::report::test {
namespace {

using testing::Contains;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

SeriesReport seriesOf(const SeriesInput& input) {
  return buildReport(reportOf(input)).series.front();
}

std::vector<std::string> kinds(const SeriesReport& series) {
  std::vector<std::string> list;
  for (const Remark& remark : series.remarks) list.push_back(remark.kind);
  return list;
}

TEST(build_report, a_signature_is_valid_until_the_series_changes) {
  SeriesInput input = straightSeries();
  calibration::SignOff& entry = input.signOffs.emplace_back();
  entry.name = "Ada";
  entry.fingerprint = calibration::signedFingerprint(input.stored);
  EXPECT_TRUE(seriesOf(input).signatures.at(0).isValid);
  input.stored.raw[0](0, 1) *= 1.0001;
  EXPECT_FALSE(seriesOf(input).signatures.at(0).isValid);
}

TEST(build_report, shows_the_state_of_each_point) {
  SeriesInput input = straightSeries();
  input.points[1].state = calibration::PointState::excluded;
  input.points[1].exclusion = calibration::Exclusion{"air", "Ada", "2026-11-20T10:00:00Z"};
  const SeriesReport series = seriesOf(input);
  ASSERT_EQ(series.parts.size(), 2U);
  EXPECT_FALSE(series.parts[0].points[0].isCut());
  EXPECT_TRUE(series.parts[0].points[1].isExcluded());
  EXPECT_EQ(series.parts[0].points[1].exclusion->reason, "air");
  EXPECT_TRUE(series.parts[1].points[0].isCut());
  EXPECT_EQ(series.result.used, 2U);
  EXPECT_EQ(series.result.cut, 1U);
  EXPECT_EQ(series.result.excluded, 1U);
}

TEST(build_report, tells_residuals_in_per_cent_of_the_curve_read_linearly) {
  const SeriesReport series = seriesOf(straightSeries());
  EXPECT_THAT(*series.parts[0].points[1].deviationPercent, DoubleNear(1, 1e-12));    // 505 over 500
  EXPECT_THAT(*series.parts[1].points[0].deviationPercent, DoubleNear(-50, 1e-12));  // 100 over 200
  EXPECT_THAT(*series.merged[1].deviationPercent, DoubleNear(1, 1e-12));
}

TEST(build_report, tells_no_residual_beyond_the_curve) {
  SeriesInput input = straightSeries();
  input.points = {rawPoint(1, 1, "water", 0.5, 5), rawPoint(1, 2, "water", 101, 1010)};
  const SeriesReport series = seriesOf(input);
  EXPECT_FALSE(series.parts[0].points[0].deviationPercent.has_value());
  EXPECT_FALSE(series.parts[0].points[1].deviationPercent.has_value());
}

TEST(build_report, has_nothing_to_remark_on_a_curve_that_is_repeated) {
  const SeriesReport series = seriesOf(straightSeries());
  EXPECT_THAT(series.remarks, IsEmpty());
  EXPECT_EQ(series.chosen, "Line");
  EXPECT_EQ(series.curve[1].confidence, 20);
  EXPECT_EQ(series.curve[1].prediction, 40);
}

TEST(build_report, says_that_a_refit_gives_another_curve_and_draws_no_bands_then) {
  SeriesInput input = straightSeries();
  input.refit.curve(1, 1) = 1001;
  const SeriesReport series = seriesOf(input);
  ASSERT_THAT(kinds(series), ElementsAre("notRepeated"));
  EXPECT_THAT(series.remarks[0].text, HasSubstr("up to 0.1 % from it"));
  EXPECT_EQ(series.curve[1].strouhal, 1000);
  EXPECT_FALSE(series.curve[1].confidence.has_value());
}

TEST(build_report, takes_last_digits_for_the_same_curve) {
  SeriesInput input = straightSeries();
  input.refit.curve(1, 1) = 1000 * (1 + 1e-12);
  EXPECT_THAT(seriesOf(input).remarks, IsEmpty());
}

TEST(build_report, says_that_a_refit_fails_where_a_curve_is_stored) {
  SeriesInput input = straightSeries();
  input.refit = Refit{};
  input.refit.trouble = "no equation passed (worst at x = 1577.69675128747)";
  const SeriesReport series = seriesOf(input);
  EXPECT_THAT(kinds(series), ElementsAre("notFitted", "notRepeated"));
  EXPECT_EQ(series.remarks[0].text, "No equation passed (worst at x = 1577.7).");
}

TEST(build_report, shows_a_fit_that_is_not_stored_and_says_so) {
  SeriesInput input = straightSeries();
  input.stored.curve = input.stored.merged = {};
  const SeriesReport series = seriesOf(input);
  EXPECT_THAT(kinds(series), ElementsAre("noCurve", "notStored"));
  EXPECT_EQ(series.parts[0].points.size(), 2U);
  EXPECT_THAT(series.curve, IsEmpty());
  ASSERT_TRUE(series.attempt.has_value());
  EXPECT_TRUE(series.attempt->isAccepted);
  EXPECT_EQ(series.attempt->equation, "Line");
}

TEST(build_report, shows_the_best_attempt_of_a_series_that_has_no_fit) {
  SeriesInput input = straightSeries();
  input.stored.curve = input.stored.merged = input.refit.curve = {};
  EquationOutcome& equation = input.refit.outcome.Equations[0];
  equation.Verdict = EquationVerdict::bandTestFailed;
  equation.Reason = "1 point outside";
  input.refit.outcome.Chosen.reset();
  ReportInput whole = reportOf(input);
  whole.details = {{"limit", "100 %"}};
  const SeriesReport series = buildReport(whole).series[0];
  ASSERT_TRUE(series.attempt.has_value());
  EXPECT_FALSE(series.attempt->isAccepted);
  EXPECT_THAT(series.attempt->reason, HasSubstr("1 point outside"));
  EXPECT_THAT(*series.parts[0].points[1].deviationPercent, DoubleNear(1, 1e-12));
  // Nothing passes by a curve that nobody accepted.
  EXPECT_FALSE(series.result.passes.has_value());
}

TEST(build_report, finds_raw_points_that_have_changed_since_the_merge) {
  SeriesInput input = straightSeries();
  input.stored.raw[0](1, 1) = 506;
  const SeriesReport series = seriesOf(input);
  EXPECT_THAT(kinds(series), Contains("otherRawPoints"));
  EXPECT_THAT(series.remarks[0].text, HasSubstr("1 of 3 merged points"));
}

TEST(build_report, puts_the_warnings_of_the_fit_into_the_remarks) {
  SeriesInput input = straightSeries();
  input.refit.outcome.Warnings.push_back(
      {CurveWarningKind::fewLevels, 1, 100, 0, "2 parameters for 2 levels"});
  const SeriesReport series = seriesOf(input);
  ASSERT_THAT(kinds(series), ElementsAre("fewLevels"));
  EXPECT_EQ(series.remarks[0].text, "2 parameters for 2 levels.");
}

TEST(build_report, compares_with_the_earlier_calibration) {
  SeriesInput input = straightSeries();
  input.previous = PreviousSeries{4, "2025-01-02", PointArray{{10, 200}, {200, 4000}}};
  const SeriesReport series = seriesOf(input);
  ASSERT_TRUE(series.previous.has_value());
  EXPECT_EQ(series.previous->calibration, 4);
  EXPECT_EQ(series.previous->date, "2025-01-02");
  EXPECT_THAT(series.previous->meanPercent, DoubleNear(-50, 1e-12));
}

TEST(build_report, keeps_the_stored_report_with_plain_line_ends) {
  EXPECT_EQ(seriesOf(straightSeries()).storedText, "Results for model: \nDescription: Line\n");
}

// printf 'Rotor A\t1\t1\t10\nRotor A\t1\t50\t505\nRotor A\t2\t20\t100\nRotor A\t2\t100\t1000\n' |
// sha256sum
TEST(build_report, hashes_the_raw_points_as_the_documentation_says) {
  const Report report = buildReport(reportOf(straightSeries()));
  EXPECT_EQ(report.rawDataHash, "ebbb745bb9dd047168972ecbc76bbd60158c8db3e98082a209825487ddd0e468");
  EXPECT_EQ(report.series[0].rawDataHash, report.rawDataHash);
}

}  // namespace
}  // namespace pelmora::report::test
