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
  series.stored.report = hostile;
  series.settings.SoftwareVersion = series.settings.FittedAt = hostile;
  series.refit.trouble = hostile;
  series.points[0].state = calibration::PointState::excluded;
  series.points[0].exclusion = calibration::Exclusion{hostile, hostile, hostile};
  for (calibration::RawPoint& point : series.points) point.fluid = hostile;
  EquationOutcome& equation = series.refit.outcome.Equations.front();
  equation.Name = equation.Expression = equation.Reason = hostile;
  equation.Parameters.front().Name = hostile;
  series.refit.outcome.Warnings.push_back({CurveWarningKind::pole, 1, 2, 3, hostile});
  series.previous = PreviousSeries{1, hostile, series.stored.curve};
  calibration::SignOff& entry = series.signOffs.emplace_back();
  entry.name = entry.remark = entry.signedAt = entry.fingerprint = hostile;
  ReportInput input = reportOf(series);
  input.meter.serial = input.meter.adjusted = input.database = hostile;
  for (calibration::Run& run : input.runs) run.fluid = run.operatorName = run.date = hostile;
  input.runs[0].jobs = {hostile};
  for (const calibration::DetailField& field : calibration::detailFields()) {
    if (field.kind == calibration::DetailKind::text || field.kind == calibration::DetailKind::list)
      input.details[field.key] = input.laboratory[field.key] = hostile;
  }
  return buildReport(input);
}

TEST(hostile_names, do_not_get_into_the_page_unescaped) {
  const std::string page = htmlReport(hostileReport(), {.withStoredText = true});
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
  const std::string page = htmlReport(hostileReport(), {.withStoredText = true});
  EXPECT_THAT(page, HasSubstr("Content-Security-Policy\" content=\"default-src 'none';"));
  EXPECT_THAT(page, Not(HasSubstr("unsafe")));
}

}  // namespace
}  // namespace pelmora::report::test
