// Names and texts of a database are content of a page, never part of it.
// SPDX-License-Identifier: MIT
#include "report/html_report.h"
#include "report/svg_report.h"
#include "tests/report/sample_report.h"

#include <gmock/gmock.h>

namespace pelmora::report::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* hostile = "</script><script>alert(1)</script><!--\"'>&\x01";

Report hostileReport() {
  SeriesInput series = straightSeries(hostile);
  series.stored.Summary = hostile;
  series.settings.SoftwareVersion = series.settings.FittedAt = hostile;
  series.refit.trouble = hostile;
  EquationOutcome& equation = series.refit.outcome.Equations.front();
  equation.Name = equation.Expression = equation.Reason = hostile;
  equation.Parameters.front().Name = hostile;
  series.refit.outcome.Warnings.push_back({CurveWarningKind::pole, 1, 2, 3, hostile});
  series.previous = PreviousSeries{1, hostile, series.stored};
  ReportInput input = reportOf(series);
  input.meter.SerialNumber = input.meter.SerialNumberAdjusted = input.database = hostile;
  for (CalSetupInfo& setup : input.setups) setup.Fluid = setup.Operator = setup.DateTaken = hostile;
  input.setups[0].JobRecordIDs = {hostile};
  return buildReport(input);
}

TEST(hostile_names, do_not_get_into_the_page_unescaped) {
  const std::string page = htmlReport(hostileReport());
  EXPECT_THAT(page, Not(HasSubstr("<script>alert")));
  EXPECT_THAT(page, Not(HasSubstr("<!--\"")));
  EXPECT_THAT(page, Not(HasSubstr("\"'>")));
  EXPECT_THAT(page, HasSubstr("&lt;script&gt;alert(1)&lt;/script&gt;"));
}

TEST(hostile_names, do_not_get_into_the_picture_unescaped) {
  const std::string picture = svgReport(hostileReport());
  EXPECT_THAT(picture, Not(HasSubstr("<script")));
  EXPECT_THAT(picture, Not(HasSubstr("\x01")));
}

TEST(hostile_names, cannot_run_by_the_page_s_own_policy) {
  const std::string page = htmlReport(hostileReport());
  EXPECT_THAT(page, HasSubstr("Content-Security-Policy\" content=\"default-src 'none';"));
  EXPECT_THAT(page, Not(HasSubstr("unsafe")));
}

}  // namespace
}  // namespace pelmora::report::test
