// Fits of the service: the same numbers as through the component, and what it tells beside them.
// SPDX-License-Identifier: MIT
#include "tests/calibration/service_fixture.h"

#include <pelmora/platform.h>
#include <pelmora/raw_data.h>

#include <limits>

namespace pelmora::calibration::test {
namespace {

using testing::HasSubstr;
using Fits = ServiceTest;

// Two runs of the simulated stand, imported.
Meter importedMeter(Database& db) {
  const Meter meter = db.registerMeter("M1");
  const Stand stand(exampleData("stand-dual-rotor.csv"));
  (void)db.importRuns(meter, stand,
                      {{"1001", "Mineral spirit", "Ada"}, {"1002", "Glycol mix", "Ada"}});
  return meter;
}

TEST_F(Fits, are_those_of_the_component_to_the_last_digit) {
  Database db = lab();
  const Meter meter = importedMeter(db);
  for (const std::string& name : db.seriesOf(meter)) {
    const bool isRatio = name == "Ratio";
    const Fit fit =
        db.fit(meter, name, {.band = 0.3, .ratio = isRatio, .choice = Choice::adjustedR2});
    ASSERT_TRUE(fit.accepted()) << name << ": " << fit.reason();

    platform().messageBox = [](const std::string&, int, const std::string&) { return 1; };
    RawData data;
    data.dbDirSetByString(path());
    data.BandPercent(0.3F);
    data.RatioCurve = isRatio;
    bool isEmpty = true;
    double low = fit.min, high = fit.max;
    const PointArray curve =
        data.determineFittedCurve(name, "M1", isEmpty, low, high, "Roshko", "Strouhal", false);
    ASSERT_FALSE(isEmpty) << name;
    EXPECT_EQ(fit.curve, curve) << name;
    EXPECT_EQ(fit.merged, data.LastMergedArray()) << name;
    EXPECT_EQ(fit.report, data.DataFitResultDetails) << name;
  }
}

TEST_F(Fits, tell_which_points_the_merge_has_cut) {
  Database db = lab();
  const Meter meter = importedMeter(db);
  const StoredSeries stored = db.series(meter, "Rotor Sum");
  const Fit fit = db.fit(stored);
  ASSERT_FALSE(fit.cut.empty());
  EXPECT_EQ(fit.merged.size() + fit.cut.size(), stored.rawPoints());
  for (const CutPoint& point : fit.cut) {
    const PointArray& part = stored.raw.at(static_cast<std::size_t>(point.part - 1));
    ASSERT_LE(point.number, part.size());
    EXPECT_EQ(part(point.number - 1, 0), point.roshko);
    EXPECT_EQ(part(point.number - 1, 1), point.strouhal);
  }
}

TEST_F(Fits, need_no_database) {
  const std::vector<PointArray> parts{smoothPoints(20)};
  const Fit fit = calibration::fit(parts, {.points = 12});
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  EXPECT_EQ(fit.curve.size(), 12U);
  EXPECT_TRUE(fit.isWholeRange);
  EXPECT_DOUBLE_EQ(fit.min, 10);
  EXPECT_DOUBLE_EQ(fit.max, 1000);
  for (std::size_t i = 0; i < 12; ++i) {
    const double log = std::log10(fit.curve(i, 0));
    EXPECT_NEAR(fit.curve(i, 1), 1300 + 20 * log - 4 * log * log, 1e-9);
  }
}

TEST_F(Fits, keep_to_the_range_that_is_asked_for) {
  const std::vector<PointArray> parts{smoothPoints(20)};
  const Fit inside = calibration::fit(parts, {.min = 20, .max = 500});
  EXPECT_DOUBLE_EQ(inside.curve(0, 0), 20);
  EXPECT_FALSE(inside.isWholeRange);
  const Fit oneEnd = calibration::fit(parts, {.min = 20});
  EXPECT_DOUBLE_EQ(oneEnd.max, 1000);

  const FitSettings beyond{.min = 5, .max = 500};
  const auto failure = failureOf<OutOfRange>([&] { (void)calibration::fit(parts, beyond); });
  EXPECT_THAT(failure.what(), HasSubstr("from 10 to 1000"));
  ASSERT_TRUE(failure.requested() && failure.merged());
  EXPECT_EQ(failure.requested()->min, 5);
  EXPECT_EQ(failure.requested()->max, 500);
  EXPECT_DOUBLE_EQ(failure.merged()->min, 10);
  EXPECT_DOUBLE_EQ(failure.merged()->max, 1000);
  FitSettings whole = beyond;
  whole.outside = RangePolicy::wholeRange;
  EXPECT_TRUE(calibration::fit(parts, whole).isWholeRange);
  FitSettings extrapolated = beyond;
  extrapolated.outside = RangePolicy::extrapolate;
  EXPECT_DOUBLE_EQ(calibration::fit(parts, extrapolated).curve(0, 0), 5);
  (void)failureOf<OutOfRange>([&] { (void)calibration::fit(parts, {.min = 500, .max = 20}); });
}

TEST_F(Fits, refuse_points_that_are_none) {
  PointArray bad = smoothPoints(8);
  bad(3, 1) = std::numeric_limits<double>::quiet_NaN();
  (void)failureOf<BadData>([&] { (void)calibration::fit(std::vector{bad}); });
  (void)failureOf<BadData>([&] { (void)calibration::fit(std::vector{PointArray{{1, 2}}}); });
  (void)failureOf<BadData>([&] { (void)calibration::fit(std::vector<PointArray>()); });
}

TEST_F(Fits, say_in_a_clause_why_there_is_no_curve) {
  PointArray spoiled = smoothPoints(20);
  spoiled(9, 1) *= 1.05;
  const Fit fit = calibration::fit(std::vector{spoiled}, {.choice = Choice::adjustedR2});
  EXPECT_FALSE(fit.accepted());
  EXPECT_THAT(fit.reason(), HasSubstr("band"));
  EXPECT_TRUE(fit.curve.empty());
  EXPECT_FALSE(fit.equations().empty());
}

TEST_F(Fits, take_equations_as_a_value) {
  const EquationList own = EquationList::parse("; mine\nStraight\ta+b*log(x)+c*log(x)^2\n", "text");
  const Fit fit = calibration::fit(std::vector{smoothPoints(9)}, {.equations = own});
  ASSERT_TRUE(fit.accepted()) << fit.reason();
  EXPECT_EQ(fit.chosen().Name, "Straight");
  EXPECT_EQ(fit.chosen().Parameters.size(), 3U);
  EXPECT_NEAR(fit.chosen().Parameters[0].Value, 1300, 1e-9);
  const auto failure =
      failureOf<BadData>([] { (void)EquationList::parse("no tab here", "file 'my.txt'"); });
  EXPECT_THAT(failure.what(), HasSubstr("file 'my.txt'"));
}

TEST_F(Fits, end_where_the_caller_asks_for_it) {
  std::stop_source source;
  Observer observer;
  observer.stop = source.get_token();
  observer.progress = [&](std::size_t done, std::size_t) {
    if (done == 2) source.request_stop();
  };
  PointArray rough = smoothPoints(20);  // that no equation fits well enough to end the run
  for (std::size_t i = 0; i < rough.size(); i += 2) rough(i, 1) *= 1.1;
  (void)failureOf<Cancelled>([&] { (void)calibration::fit(std::vector{rough}, {}, observer); });
}

}  // namespace
}  // namespace pelmora::calibration::test
