// Everything that builds or writes a report looks at the stop itself.
// SPDX-License-Identifier: MIT
#include "report/csv_report.h"
#include "report/dcc_report.h"
#include "report/html_report.h"
#include "report/json_report.h"
#include "report/svg_report.h"
#include "report/xlsx_report.h"
#include "tests/report/sample_report.h"

#include <pelmora/calibration/failure.h>
#include <pelmora/calibration/report.h>

#include <gtest/gtest.h>

#include <stop_token>
#include <string>

namespace pelmora::report::test {
namespace {

using calibration::Cancelled;

Report reportWith(const std::stop_source& source) {
  Report report = buildReport(reportOf(straightSeries()));
  report.stop = source.get_token();
  return report;
}

class stopped_report : public testing::Test {
 protected:
  std::stop_source source;
};

TEST_F(stopped_report, is_not_built) {
  ReportInput input = reportOf(straightSeries());
  input.stop = source.get_token();
  EXPECT_EQ(buildReport(input).series.size(), 1U);
  source.request_stop();
  EXPECT_THROW((void)buildReport(input), Cancelled);
}

TEST_F(stopped_report, is_written_in_no_format) {
  Report report = reportWith(source);
  for (const char* unit : {"roshko-unit", "strouhal-unit"}) report.laboratory[unit] = "1";
  const auto writers = {+[](const Report& each) { return csvReport(each); },
                        +[](const Report& each) { return csvReport(each, "merged"); },
                        +[](const Report& each) { return htmlReport(each); },
                        +[](const Report& each) { return jsonReport(each); },
                        +[](const Report& each) { return svgReport(each); },
                        +[](const Report& each) { return xlsxReport(each); }};
  for (const auto& write : writers) EXPECT_FALSE(write(report).empty());
  EXPECT_FALSE(certificateOf(report).results.empty());
  source.request_stop();
  for (const auto& write : writers) EXPECT_THROW((void)write(report), Cancelled);
  EXPECT_THROW((void)certificateOf(report), Cancelled);
}

TEST_F(stopped_report, is_the_same_where_nobody_stops_it) {
  Report report = buildReport(reportOf(straightSeries("\xFF 1")));
  const std::string book = xlsxReport(report), json = jsonReport(report);
  report.stop = source.get_token();
  EXPECT_EQ(xlsxReport(report), book);
  EXPECT_EQ(jsonReport(report), json);
}

}  // namespace
}  // namespace pelmora::report::test
