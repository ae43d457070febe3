// Where the process's locale has a decimal comma, numbers in texts, statements and result files
// have it too. SPDX-License-Identifier: MIT
#include "tests/support/comma_locale.h"
#include "tests/support/host_test.h"
#include "tests/support/recording_connection.h"
#include "tests/support/stand_export.h"
#include "wiring/database_driver.h"

#include <pelmora/curve_database.h>

#include <regex>

namespace pelmora::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class decimal_comma : public HostTest {
 protected:
  void SetUp() override {
    if (!comma.isSet()) GTEST_SKIP() << CommaLocale::missing;
  }

  ConnectionPtr stand() const {
    std::ofstream(scratch.file("stand.csv")) << standHeader() << '\n'
                                             << exportLine("1001", {{4, "2.5"}}) << '\n';
    return openDatabase(scratch.file("stand.csv"));
  }
  PointArray read(RawData& data, const std::string& lines) const {
    const std::string file = scratch.file("results.txt");
    std::ofstream(file, std::ios::binary) << "1\r\n2\r\n3\r\n" << lines;
    bool isEmpty = true;
    return data.readTCresults(file, isEmpty);
  }

  const CommaLocale comma{LC_ALL};
};

TEST_F(decimal_comma, is_in_every_number_of_a_report) {
  const auto data = newObject();
  data->BandPercent(20.5F);
  data->setMeterSN("M1");
  data->SetRaw("S", "M1", ripplingPoints(10, 1000, 20, 1000), 0, false);
  bool isEmpty = true;
  double xMin = 10.5;
  double xMax = 990.25;
  data->determineFittedCurve("S", "M1", isEmpty, xMin, xMax, "Roshko", "Strouhal", false);
  ASSERT_FALSE(isEmpty);
  const std::string& report = data->DataFitResultDetails;
  EXPECT_THAT(report, HasSubstr("Residual Tolerance = 1E-15\r\n"));
  EXPECT_THAT(report, HasSubstr("R2 Value = 0,"));
  EXPECT_THAT(report, HasSubstr("Band Percentage = 20,5%\r\n"));
  EXPECT_THAT(report, HasSubstr("PredictedRoshko Min value = 10,5\r\n"));
  EXPECT_THAT(report, HasSubstr("PredictedStrouhal Max value = 990,25\r\n"));
  EXPECT_FALSE(std::regex_search(report, std::regex("[0-9]\\.[0-9]"))) << report;
}

TEST_F(decimal_comma, is_in_the_question_about_the_range) {
  const auto data = newObject();
  data->setMeterSN("M1");
  data->SetRaw("S", "M1", {{1.5, 2}, {3.25, 4}}, 0, false);
  bool isEmpty = true;
  double xMin = 0.5;
  double xMax = 1e-7;
  data->determineFittedCurve("S", "M1", isEmpty, xMin, xMax, "X", "Y", false);
  EXPECT_THAT(boxes, ElementsAre(StartsWith("Min/Max values are out of range of raw data\r\n"
                                            "Min X : 0,5\t\tMin Raw : 1,5\r\n"
                                            "Max X : 1E-07\tMax Raw : 3,25\r\n\r\n")));
}

TEST_F(decimal_comma, breaks_the_statements_that_derive_series) {
  const auto log = std::make_shared<Log>();
  platform().createConnection = [&](const std::string& location) -> ConnectionPtr {
    return std::make_shared<RecordingConnection>(databaseConnection(location), log);
  };
  const auto data = newObject();
  const MeterInfo meter =
      data->importCaldb("M1", stand(), {"1001"}, {""}, {"Oil"}, {"Me"}, true, true, true, true);
  EXPECT_THAT(
      *log,
      Contains("execute INSERT INTO Raw1 ( seriesID,   Roshko,   Strouhal ) SELECT 1 AS SeriesID, "
               "[v4]/[v3]/[v5]*(1+((1,92E-05)*([v12]-70))) AS Roshko, "
               "([v4]/[v3])/([v2]/[v1])*(1+((2,88E-05)*([v12]-70))) AS Strouhal "
               "FROM CalDataPoint WHERE (((CalDataPoint.calSetupID)=1));"));
  EXPECT_THAT(boxes,
              ElementsAre(StartsWith("Error in RawData:SeriesViaCaldb_RotorA\r\nSyntax error"),
                          StartsWith("Error in RawData:SeriesViaCaldb_RotorB\r\nSyntax error"),
                          StartsWith("Error in RawData:SeriesViaCaldb_SumAB\r\nSyntax error"),
                          StartsWith("Error in RawData:SeriesViaCaldb_Ratio\r\nSyntax error")));
  ASSERT_THAT(meter.Series, SizeIs(4));
  for (const SeriesInfo& series : meter.Series) {
    EXPECT_NE(series.SeriesID, 0)
        << series.SeriesName;  // the series rows are there, without points
    const MeterInfo stored = data->GetRaw(series.SeriesName, "M1", 1);
    ASSERT_THAT(stored.Series, SizeIs(1));
    EXPECT_TRUE(stored.Series.front().Raw[0].Points.empty()) << series.SeriesName;
  }
}

TEST_F(decimal_comma, is_expected_in_result_files) {
  const auto data = newObject();
  EXPECT_EQ(read(*data, "12,5 3,25\r\n1,5 1E-2\r\n"), (PointArray{{1.5, 0.01}, {12.5, 3.25}}));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(decimal_comma, makes_a_point_in_a_result_file_no_number) {
  const auto data = newObject();
  EXPECT_TRUE(read(*data, "12.5 3\r\n").empty());
  EXPECT_THAT(boxes, ElementsAre("Error in RawData:readTCresults\r\nType mismatch"));
}

TEST_F(decimal_comma, comes_with_a_date_that_is_understood) {
  const auto data = newObject();
  const auto dateOf = [&](const std::string& meter) {
    const MeterInfo made = data->importCaldb(meter, stand(), {"1001"}, {""}, {"Oil"}, {"Me"});
    const auto setups = calSetups(openDatabase(path), made.MeterID);
    return setups.empty() ? std::string("no set-up") : setups.front().DateTaken;
  };
  const std::string german = dateOf("M1");
  EXPECT_THAT(german, testing::StartsWith("20")) << "a date of this century, year first";
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(german, dateOf("M2"));
  EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(decimal_comma, leaves_statements_with_whole_numbers_alone) {
  const auto log = std::make_shared<Log>();
  platform().createConnection = [&](const std::string& location) -> ConnectionPtr {
    return std::make_shared<RecordingConnection>(databaseConnection(location), log);
  };
  const auto data = newObject();
  EXPECT_EQ(data->findMeterInfo("M1", {}, 1199).Source, -1);
  EXPECT_THAT(*log, Contains("read SELECT ID, ReCalID, SerialNumberAdjusted from meter where "
                             "serialnumber='M1' AND recalid=1199 ORDER BY ReCalID DESC"));
  EXPECT_THAT(boxes, IsEmpty());
}

}  // namespace
}  // namespace pelmora::test
