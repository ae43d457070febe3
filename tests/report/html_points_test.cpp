// The measured points on the page, which stays small even if they are many.
// SPDX-License-Identifier: MIT
#include "report/html_points.h"

#include "report/html_report.h"
#include "tests/report/sample_report.h"

#include <gmock/gmock.h>

#include <cmath>

namespace pelmora::report::test {
namespace {

using calibration::PointState;
using testing::HasSubstr;
using testing::Not;

std::string pointsOf(const ReportInput& input) {
  const Report report = buildReport(input);
  return htmlPoints(report, report.series[0]);
}

TEST(html_points, have_the_reason_of_an_exclusion) {
  SeriesInput series = straightSeries();
  series.points[1].state = PointState::excluded;
  series.points[1].exclusion =
      calibration::Exclusion{"air in the line", "Ada", "2026-11-20T10:00:00Z"};
  const std::string html = pointsOf(reportOf(series));
  EXPECT_THAT(html, HasSubstr("Excluded by Ada on 2026-11-20T10:00:00Z: air in the line"));
}

TEST(html_points, name_the_suspects_among_those_that_are_used) {
  SeriesInput series = straightSeries();
  EXPECT_THAT(pointsOf(reportOf(series)), Not(HasSubstr("Suspect")));
  series.points[1].isDistrusted = true;
  series.points[1].sigmas = -7.26;
  EXPECT_THAT(pointsOf(reportOf(series)),
              HasSubstr("Suspect: 7.3 sigmas off its neighbours, not excluded"));
}

TEST(html_points, say_which_points_the_curve_was_fitted_without) {
  SeriesInput series = straightSeries();
  series.points[1].isDistrusted = true;
  series.points[1].state = PointState::distrusted;
  series.points[1].sigmas = 7.26;
  const std::string html = pointsOf(reportOf(series));
  EXPECT_THAT(html, HasSubstr("Distrusted: 7.3 sigmas off its neighbours; the curve was fitted "
                              "without it"));
  EXPECT_THAT(html, HasSubstr(">distrusted"));
  EXPECT_THAT(html, Not(HasSubstr("Suspect")));
}

TEST(html_points, count_what_the_merge_has_cut) {
  SeriesInput series = straightSeries();
  series.points[2].cutPercent = -0.4321;
  EXPECT_THAT(pointsOf(reportOf(series)),
              HasSubstr("Cut by the merge: 1 point, up to 0.432 % off the merged points."));
}

TEST(html_points, have_columns_for_what_the_stand_recorded) {
  ReportInput input = reportOf(straightSeries());
  EXPECT_THAT(pointsOf(input), Not(HasSubstr("Nominal flow")));
  input.series[0].points[0].reading =
      calibration::StandReading{.frequency = 12.5, .flow = 0.01, .nominalFlow = 0.6};
  input.laboratory = {{"nominal-flow-unit", "gpm"}};
  input.details = {{"frequency-unit", "Hz"}};
  const std::string html = pointsOf(input);
  for (const char* title : {"Nominal flow, gpm", "f, Hz", ">q", ">T"})
    EXPECT_THAT(html, HasSubstr(title));
}

// Points over two decades, up to 0.1 % from the straight curve.
SeriesInput manyPoints(std::size_t count) {
  SeriesInput series = straightSeries();
  series.points.clear();
  for (std::size_t i = 0; i < count; ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(count - 1);
    const double x = std::pow(100, share);
    const double scatter = 1 + 0.001 * std::sin(static_cast<double>(i * i % 1009));
    series.points.push_back(rawPoint(1, i + 1, "water", x, 10 * x * scatter));
  }
  PointArray raw(count);
  for (std::size_t i = 0; i < count; ++i) {
    raw(i, 0) = series.points[i].roshko;
    raw(i, 1) = series.points[i].strouhal;
  }
  series.stored.raw[0] = series.stored.merged = raw;
  series.stored.raw[1] = {};
  return series;
}

TEST(html_points, are_listed_in_part_where_there_are_many) {
  ReportInput input = reportOf(manyPoints(2000));
  input.series[0].points[1000].isDistrusted = true;
  input.series[0].points[1500].state = PointState::cut;
  const std::string html = pointsOf(input);
  EXPECT_THAT(html, HasSubstr(" points are not listed here"));
  EXPECT_THAT(html, HasSubstr("<th scope=row>1001<"));
  EXPECT_THAT(html, HasSubstr("<th scope=row>1501<"));
  const std::string row = "<th scope=row>";
  std::size_t rows = 0;
  for (auto at = html.find(row); at != std::string::npos; at = html.find(row, at + 1)) ++rows;
  EXPECT_GT(rows, 2U);
  EXPECT_LE(rows, mostListedPoints);
}

TEST(html_points, leave_a_page_of_32000_small) {
  constexpr std::size_t mostBytes = 400'000;
  EXPECT_LE(htmlReport(buildReport(reportOf(manyPoints(32'000)))).size(), mostBytes);
}

}  // namespace
}  // namespace pelmora::report::test
