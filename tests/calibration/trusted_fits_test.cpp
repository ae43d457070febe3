// Fits by Choice::trusted: the curve is near the truth, and what is wrong with the points is named.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"
#include "tests/calibration/shaped_points.h"
#include "tests/support/csv_table.h"

#include <pelmora/calibration/words.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace pelmora::calibration::test {
namespace {

using pelmora::test::CsvRow;
using pelmora::test::readCsv;
using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;
using TrustedFits = ServiceTest;

constexpr const char* jobs[] = {"1007", "1008", "1009"};

// A simulated job of meter M1, see examples/data/README.md.
Fit fitOfJob(const std::string& job, const std::string& rotor, FitSettings settings = {}) {
  std::vector<std::pair<double, double>> rows;
  for (const CsvRow& row : readCsv(exampleData("stand-dual-rotor-truth.csv"))) {
    if (row.at("JobRecordID") == job)
      rows.emplace_back(std::stod(row.at("roshko_" + rotor)),
                        std::stod(row.at("strouhal_" + rotor)));
  }
  PointArray points(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i)
    points(i, 0) = rows[i].first, points(i, 1) = rows[i].second;
  settings.choice = Choice::trusted;
  return calibration::fit(std::vector{points}, settings);
}

// The largest error of the table read linearly against the noise-free curve, in per cent.
double largestError(const Fit& fit, const std::string& fluid, const std::string& rotor) {
  const Curve curve(fit.curve);
  double largest = 0;
  std::size_t places = 0;
  for (const CsvRow& row : readCsv(exampleData("stand-true-curves.csv"))) {
    if (row.at("meter") != "M1" || row.at("fluid") != fluid || row.at("static_bearing_drag") != "1")
      continue;
    const double x = std::stod(row.at("roshko_" + rotor));
    if (x < curve.lowestRoshko() || x > curve.highestRoshko()) continue;
    const double truth = std::stod(row.at("strouhal_" + rotor));
    largest = std::max(largest, 100 * std::abs(curve(x).strouhal / truth - 1));
    ++places;
  }
  EXPECT_GT(places, 50U);
  return largest;
}

TEST_F(TrustedFits, of_the_simulated_jobs_are_near_the_truth_over_their_range) {
  for (const char* job : jobs) {
    for (const char* rotor : {"a", "b"}) {
      const Fit fit = fitOfJob(job, rotor);
      ASSERT_TRUE(fit.accepted()) << job << rotor << ": " << fit.reason();
      const std::string fluid = std::string(job) == "1008" ? "2" : "1";
      EXPECT_LT(largestError(fit, fluid, rotor), 0.15) << job << rotor << ' ' << fit.chosen().Name;
    }
  }
}

TEST_F(TrustedFits, name_the_bad_points_of_a_job) {
  const Fit fit = fitOfJob("1007", "a");
  ASSERT_THAT(fit.outcome.Warnings, SizeIs(2));
  for (const CurveWarning& warning : fit.outcome.Warnings)
    EXPECT_EQ(warning.Kind, CurveWarningKind::distrustedPoint);
  EXPECT_THAT(fit.outcome.Warnings[0].Text,
              AllOf(HasSubstr("Point 6 of part 1 (Roshko 88.906)"), HasSubstr("above")));
  EXPECT_THAT(fit.outcome.Warnings[1].Text,
              AllOf(HasSubstr("Point 19 of part 1"), HasSubstr("below")));
  EXPECT_EQ(fit.fitted.size(), fit.merged.size() - 2);
  // Rotor B has one of them.
  const Fit other = fitOfJob("1007", "b");
  ASSERT_THAT(other.outcome.Warnings, SizeIs(1));
  EXPECT_THAT(other.outcome.Warnings[0].Text, HasSubstr("Point 19"));
  const auto& judged = other.trust->judged;
  const auto bad = std::ranges::find(judged, 19U, &JudgedPoint::number);
  ASSERT_NE(bad, judged.end());
  EXPECT_EQ(bad->use, PointUse::distrusted);
  EXPECT_LT(bad->sigmas(), -5);
}

// Readings 25, 75 ... are up to 1 % off, the more the later.
Fit fitWithBadReadings(std::size_t count, double band) {
  PointArray points = noisy(smoothPoints(count), 2e-4, 3);
  for (std::size_t i = 25; i < count; i += 50)
    points(i, 1) *= 1.004 + 0.006 * static_cast<double>(i) / static_cast<double>(count);
  return calibration::fit(std::vector{points}, {.band = band, .choice = Choice::trusted});
}

TEST_F(TrustedFits, name_the_farthest_of_many_bad_readings_and_count_the_others) {
  const Fit fit = fitWithBadReadings(2000, 0.3);
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  ASSERT_THAT(fit.outcome.Warnings, SizeIs(21));
  for (const CurveWarning& warning : fit.outcome.Warnings)
    EXPECT_EQ(warning.Kind, CurveWarningKind::distrustedPoint);
  EXPECT_THAT(fit.outcome.Warnings[19].Text, HasSubstr("Point 1976 of part 1"));
  const CurveWarning& others = fit.outcome.Warnings[20];
  EXPECT_THAT(others.Text, AllOf(HasSubstr("A further 20 points between Roshko "),
                                 HasSubstr("the curve was fitted without them")));
  EXPECT_LT(others.FromX, others.ToX);
  EXPECT_NEAR(others.Percent, 0.72, 0.1);
  const auto bad = std::ranges::count(fit.trust->judged, PointUse::distrusted, &JudgedPoint::use);
  EXPECT_EQ(bad, 40);
}

TEST_F(TrustedFits, advise_to_check_many_bad_readings_without_naming_each) {
  const std::vector<Advice> list = adviceFor(fitWithBadReadings(2000, 0.3));
  ASSERT_FALSE(list.empty());
  EXPECT_EQ(list[0].kind, AdviceKind::checkPoint);
  EXPECT_THAT(list[0].text, HasSubstr("check 40 points, up to "));
  EXPECT_THAT(list[0].points, SizeIs(40));
}

TEST_F(TrustedFits, choose_the_simplest_equation_that_is_sound) {
  const Fit fit =
      calibration::fit(std::vector{noisy(smoothPoints(24), 3e-4, 1)}, {.choice = Choice::trusted});
  ASSERT_TRUE(fit.accepted());
  EXPECT_LE(fit.chosen().Parameters.size(), 4U) << fit.chosen().Name;
  EXPECT_EQ(fit.trust->equations.size(), fit.outcome.Equations.size());
  EXPECT_TRUE(fit.trust->equations[*fit.outcome.Chosen].isSound);
  // By AICc, none that passed is better.
  for (const EquationOutcome& equation : fit.outcome.Equations) {
    if (equation.Verdict == EquationVerdict::accepted && equation.Aicc) {
      EXPECT_GE(*equation.Aicc, *fit.chosen().Aicc) << equation.Name;
    }
  }
  EXPECT_EQ(fit.equations().front().outcome.Name, fit.chosen().Name);
}

TEST_F(TrustedFits, say_of_each_equation_why_it_is_not_sound) {
  const Fit fit = calibration::fit(std::vector{noisy(steps(40), 2e-4, 2)},
                                   {.band = 5, .choice = Choice::trusted});
  ASSERT_TRUE(fit.accepted());
  std::size_t unsound = 0;
  for (std::size_t i = 0; i < fit.outcome.Equations.size(); ++i) {
    const EquationOutcome& equation = fit.outcome.Equations[i];
    if (equation.Verdict != EquationVerdict::notSound) continue;
    ++unsound;
    EXPECT_THAT(equation.Reason, HasSubstr("departs from the reference curve")) << equation.Name;
    EXPECT_FALSE(fit.trust->equations[i].isSound);
    EXPECT_GT(fit.trust->equations[i].departurePercent, fit.trust->equations[i].allowedPercent);
    EXPECT_EQ(rejection(equation), equation.Reason);
  }
  EXPECT_GT(unsound, 0U);
}

TEST_F(TrustedFits, have_fewer_parameters_than_flows) {
  const Fit fit = fitOfJob("1009", "a");
  ASSERT_TRUE(fit.accepted());
  EXPECT_EQ(fit.trust->flows, 6U);
  for (std::size_t i = 0; i < fit.outcome.Equations.size(); ++i) {
    const EquationOutcome& equation = fit.outcome.Equations[i];
    if (equation.Verdict == EquationVerdict::accepted ||
        equation.Verdict == EquationVerdict::chosen) {
      EXPECT_LT(equation.Parameters.size(), 6U) << equation.Name;
    }
  }
}

TEST_F(TrustedFits, store_the_reference_curve_where_no_equation_is_sound) {
  Database db = lab();
  const Meter meter = db.registerMeter("M1");
  const PointArray points = noisy(steps(40), 2e-4, 3);
  (void)db.storeRaw(meter, "Steps", 1, points);
  const Fit fit = db.fit(meter, "Steps", {.points = 120, .choice = Choice::trusted});
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  EXPECT_EQ(fit.chosen().Name, referenceCurveName);
  EXPECT_EQ(fit.curve.size(), 120U);
  // Every point is within a few noise standard deviations of the table.
  const Curve curve(fit.curve);
  for (std::size_t i = 1; i + 1 < points.size(); ++i)
    EXPECT_NEAR(curve(points(i, 0)).strouhal / points(i, 1), 1, 1e-3) << i;

  (void)db.store(fit);
  const StoredSeries stored = db.series(meter, "Steps");
  EXPECT_EQ(stored.equation, referenceCurveName);
  EXPECT_THAT(stored.report,
              AllOf(HasSubstr("\r\nDescription: Reference curve\r\n\r\n"),
                    HasSubstr("\r\nParameter Results:\r\nLength scale in decades = "),
                    HasSubstr("\r\nNoise at the largest flow in % = 0.0"),
                    HasSubstr("\r\nNumber of Observations = 40\r\n"),
                    HasSubstr("\r\nBand Percentage = 0.3%\r\n"),
                    HasSubstr("\r\nSpecified Number of Fitted Points = 120\r\n"),
                    HasSubstr("\r\n\r\n\r\nPredicted Roshko/Strouhal\r\n0:\t10\t"),
                    HasSubstr("\r\n\r\n\r\nRaw Roshko/Strouhal\r\n0:\t10\t")));
  const Repeated repeated = db.repeat(stored);
  EXPECT_TRUE(repeated.settingsAreKept);
  EXPECT_TRUE(repeated.isStoredCurve());
  EXPECT_TRUE(db.curve(meter, "Steps")(100).confidence.has_value());
}

TEST_F(TrustedFits, refuse_too_few_flows_and_roshko_numbers_that_cannot_be) {
  const Fit few = calibration::fit(std::vector{smoothPoints(3)}, {.choice = Choice::trusted});
  EXPECT_FALSE(few.accepted());
  EXPECT_EQ(few.reason(),
            "3 distinct flows are too few for a curve that can be trusted: measure at 4 or more");
  PointArray wrong = smoothPoints(9);
  wrong(4, 0) = -3;
  const Fit negative = calibration::fit(std::vector{wrong}, {.choice = Choice::trusted});
  EXPECT_EQ(negative.reason(), "point 5 of part 1 has Roshko -3; a Roshko number is above 0");
}

TEST_F(TrustedFits, store_something_for_every_series_of_four_flows_or_more) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    const std::size_t count = 4 + seed % 6;
    const Fit fit = calibration::fit(
        std::vector{noisy(seed % 2 ? steps(count) : smoothPoints(count), 1e-3, seed)},
        {.choice = Choice::trusted});
    EXPECT_TRUE(fit.accepted()) << seed << ": " << fit.reason();
  }
}

TEST_F(TrustedFits, warn_of_a_gap_and_name_the_flow_to_measure) {
  PointArray points = noisy(smoothPoints(5, 5, 2000), 8e-4, 9);
  points(2, 0) *= 6;  // nothing between 22 and 600
  const Fit fit = calibration::fit(std::vector{points}, {.band = 0.1, .choice = Choice::trusted});
  ASSERT_TRUE(fit.accepted());
  const auto& warnings = fit.outcome.Warnings;
  const auto wide = std::find_if(warnings.begin(), warnings.end(), [](const CurveWarning& w) {
    return w.Kind == CurveWarningKind::wideBand;
  });
  ASSERT_NE(wide, warnings.end());
  ASSERT_THAT(wide->Measure, SizeIs(1));
  EXPECT_GE(wide->Measure[0], wide->FromX);
  EXPECT_LE(wide->Measure[0], wide->ToX);
  EXPECT_GT(wide->Percent, 0.1);
  EXPECT_THAT(wide->Text, HasSubstr("measure at Roshko"));
}

TEST_F(TrustedFits, say_how_many_points_the_table_needs) {
  const std::vector parts{noisy(steps(80), 1e-4, 10)};
  const Fit coarse = calibration::fit(parts, {.points = 9, .choice = Choice::trusted});
  ASSERT_TRUE(coarse.accepted());
  const auto reading = [](const Fit& fit) {
    for (const CurveWarning& warning : fit.outcome.Warnings) {
      if (warning.Kind == CurveWarningKind::tableReading) return warning.Points;
    }
    return std::int32_t{-1};
  };
  const std::int32_t enough = reading(coarse);
  ASSERT_GT(enough, 9);
  const auto points = static_cast<std::int16_t>(enough);
  EXPECT_EQ(reading(calibration::fit(parts, {.points = points, .choice = Choice::trusted})), -1);
}

TEST_F(TrustedFits, of_a_rotor_ratio_fall_with_roshko) {
  PointArray ratio = smoothPoints(25);
  for (std::size_t i = 0; i < ratio.size(); ++i) ratio(i, 1) = 1.02 + 0.8 / ratio(i, 0);
  const Fit fit = calibration::fit(std::vector{noisy(ratio, 2e-4, 11)},
                                   {.ratio = true, .choice = Choice::trusted});
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  for (std::size_t i = 1; i < fit.curve.size(); ++i)
    EXPECT_LE(fit.curve(i, 1), fit.curve(i - 1, 1));
  const Fit rising = calibration::fit(std::vector{noisy(smoothPoints(25), 2e-4, 12)},
                                      {.ratio = true, .choice = Choice::trusted});
  EXPECT_FALSE(rising.accepted());
  EXPECT_THAT(rising.reason(), HasSubstr("the ratio rises with Roshko near"));
}

}  // namespace
}  // namespace pelmora::calibration::test
