// SPDX-License-Identifier: MIT
#include "report/csv_report.h"
#include "tests/report/sample_report.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

namespace pelmora::report::test {
namespace {

using testing::HasSubstr;

std::string csvOf(const std::string& series) {
  return csvReport(buildReport(reportOf(straightSeries(series))));
}

TEST(csv_report, has_one_header_and_as_many_fields_in_every_line) {
  std::istringstream lines(csvOf("Rotor A"));
  std::string header, line;
  std::getline(lines, header);
  EXPECT_TRUE(header.starts_with("table,"));
  const auto fields = std::count(header.begin(), header.end(), ',');
  while (std::getline(lines, line)) {
    bool isQuoted = false;
    std::ptrdiff_t commas = 0;
    for (const char c : line) {
      if (c == '"') isQuoted = !isQuoted;
      if (c == ',' && !isQuoted) ++commas;
    }
    EXPECT_EQ(commas, fields) << line;
  }
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
