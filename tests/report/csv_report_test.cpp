// SPDX-License-Identifier: MIT
#include "report/csv_report.h"
#include "tests/report/sample_report.h"

#include <pelmora/calibration/failure.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

namespace pelmora::report::test {
namespace {

using testing::HasSubstr;

std::string csvOf(const std::string& series) {
  return csvReport(buildReport(reportOf(straightSeries(series))));
}

std::ptrdiff_t commasOf(const std::string& line) {
  bool isQuoted = false;
  std::ptrdiff_t commas = 0;
  for (const char c : line) {
    if (c == '"') isQuoted = !isQuoted;
    if (c == ',' && !isQuoted) ++commas;
  }
  return commas;
}

TEST(csv_report, has_a_header_for_each_table_and_as_many_fields_in_its_lines) {
  std::istringstream lines(csvOf("Rotor A"));
  std::ptrdiff_t fields = -1;
  int headers = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) {
      fields = -1;
    } else if (fields < 0) {
      EXPECT_TRUE(line.starts_with("table,")) << line;
      fields = commasOf(line);
      ++headers;
    } else {
      EXPECT_EQ(commasOf(line), fields) << line;
    }
  }
  EXPECT_GT(headers, 5);
}

TEST(csv_report, holds_one_table_alone) {
  EXPECT_EQ(csvReport(buildReport(reportOf(straightSeries())), "merged"),
            "series,roshko,strouhal,deviationPercent\nRotor A,1,10,0\nRotor A,50,505,1\n"
            "Rotor A,100,1000,0\n");
  EXPECT_THROW((void)csvReport(buildReport(reportOf(straightSeries())), "pionts"),
               calibration::BadData);
}

TEST(csv_report, writes_a_table_with_other_signs) {
  const ReportTable table{
      "t", {"x; y", "=2+5", "n"}, {{1.5, "a;b", std::int64_t{2}}, {{}, "a,b", 2.0}}};
  EXPECT_EQ(csvTable(table, {';', ','}), "\"x; y\";'=2+5;n\n1,5;\"a;b\";2\n;a,b;2\n");
  EXPECT_EQ(csvTable(table), "x; y,'=2+5,n\n1.5,a;b,2\n,\"a,b\",2\n");
}

TEST(csv_report, quotes_what_would_break_a_line) {
  EXPECT_THAT(csvOf("a,\"b\"\nc"), HasSubstr(",\"a,\"\"b\"\"\nc\","));
}

TEST(csv_report, disarms_formulas) {
  for (const char* name : {"=1+1", "+1", "-1", "@SUM(A1)", " =1", "\t=1"}) {
    EXPECT_THAT(csvOf(name), HasSubstr(",'" + std::string(name) + ",")) << name;
  }
}

TEST(csv_report, leaves_negative_numbers_numbers) {
  EXPECT_THAT(csvOf("Rotor A"), HasSubstr(",20,100,-50,"));
}

}  // namespace
}  // namespace pelmora::report::test
