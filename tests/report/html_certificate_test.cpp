// The results on the first page, from numbers that can be worked out by hand.
// SPDX-License-Identifier: MIT
#include "report/html_certificate.h"

#include "tests/report/sample_report.h"

#include <gmock/gmock.h>

#include <string>

namespace pelmora::report::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// The line of the series in the table of results.
std::string rowOf(const std::string& html, const std::string& series) {
  const auto name = html.find("<th scope=row>" + series + "<");
  if (name == std::string::npos) return "no such row";
  const auto start = html.rfind("<tr", name);
  return html.substr(start, html.find('\n', name) - start);
}

// Used are (1, 10), (50, 505) and (100, 1000): Roshko turns down by 100, and the values spread by
// 990 about a mean of 505. The point of the second part at 20 is cut.
TEST(html_results, state_range_spread_and_counts_of_a_series) {
  const std::string row = rowOf(htmlResults(buildReport(reportOf(straightSeries()))), "Rotor A");
  EXPECT_THAT(row, AllOf(HasSubstr("<td>100.0 : 1<"), HasSubstr("<td>505"),
                         HasSubstr("<td>98.020<"), HasSubstr("<td>3 / 1 / 0")));
}

TEST(html_results, mark_a_series_beyond_its_limit) {
  Report report = buildReport(reportOf(straightSeries()));
  SeriesResult& result = report.series.at(0).result;
  result.limitPercent = 0.5;
  result.worstPercent = -0.75;
  result.passes = false;
  EXPECT_THAT(rowOf(htmlResults(report), "Rotor A"),
              AllOf(HasSubstr("<tr class=fail>"), HasSubstr(">FAIL<"), HasSubstr("<td>0.5<")));
  result.passes = true;
  EXPECT_THAT(rowOf(htmlResults(report), "Rotor A"),
              AllOf(Not(HasSubstr("class=fail")), HasSubstr(">PASS<")));
}

TEST(html_results, leave_out_what_is_not_known) {
  Report report = buildReport(reportOf(straightSeries()));
  report.series.at(0).result = SeriesResult{};
  EXPECT_THAT(rowOf(htmlResults(report), "Rotor A"),
              AllOf(HasSubstr("<td>-<"), HasSubstr("<td>0 / 0 / 0"), Not(HasSubstr("nan"))));
}

}  // namespace
}  // namespace pelmora::report::test
