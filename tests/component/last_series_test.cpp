// Where the last series and the last results are not of one fit: what SetLastFitted then stores.
// SPDX-License-Identifier: MIT
#include "tests/component/component_fixture.h"

namespace pelmora {
namespace {

using test::Journal;

constexpr std::int64_t fittedId = 7, otherId = 8;

class last_series : public ComponentFixture {
 protected:
  // Series "Rotor A" with its fit (3 fitted, 2 merged points), and a stored series "Rotor B".
  void SetUp() override {
    haveFit();
    fit();
    haveStored("Rotor A", fittedId);
    haveStored("Rotor B", otherId);
    ASSERT_EQ(data_->LastFittedArray().size(), 3U);
    journal_.clear();
  }
  void haveStored(const std::string& name, std::int64_t id) {
    const Value none;
    for (const std::string& statement : {findStatement(name), findCalibration(name)}) {
      script_->answer(statement, {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
                                  {{id, std::int64_t{3}, std::int64_t{2}, none}}});
    }
  }
  static std::string findCalibration(const std::string& name) {
    return "SELECT series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
           "series left join meter on series.meterid=meter.id where serialnumber='4711' AND "
           "recalid=2 AND series.name = '" +
           name + "' ORDER BY ReCalID DESC";
  }
  // Stores the last results: the rows that were added.
  Journal storedRows() {
    journal_.clear();
    EXPECT_TRUE(data_->SetLastFitted(false));
    EXPECT_EQ(boxes(), Journal());
    return test::linesOf(journal_, "add ");
  }
};

TEST_F(last_series, outlives_the_results_that_a_further_object_empties) {
  const RawData another;
  EXPECT_EQ(storedRows(), Journal{"seriesID=7 summary="});
  EXPECT_EQ(executed(), (Journal{"DELETE from curve where seriesID = 7",
                                 "DELETE from DataFitResults where seriesID = 7",
                                 "DELETE from merge where seriesid = 7"}));
}

TEST_F(last_series, is_the_one_read_last_with_the_curve_of_the_last_fit) {
  script_->answer("Select roshko, strouhal from merge where seriesID = 8",
                  test::pointRows({{20, 2}, {30, 3}}));
  script_->answer("Select summary from datafitresults where seriesID = 8",
                  {{"Summary"}, {{std::string("report of B")}}});
  const PointArray fitted = data_->LastFittedArray();
  EXPECT_EQ(data_->getFittedCurve("Rotor B", "4711").Series.size(), 1U);
  EXPECT_EQ(data_->LastFittedArray(), fitted);
  const Journal rows = storedRows();
  ASSERT_EQ(rows.size(), 6U);
  EXPECT_EQ(rows[0], "seriesID=8 Roshko=1 Strouhal=1");
  EXPECT_EQ(rows[3], "seriesID=8 summary=report of B");
  EXPECT_EQ(rows[4], "seriesID=8 Roshko=20 Strouhal=2");
}

TEST_F(last_series, keeps_its_name_when_a_result_file_of_another_one_is_imported) {
  writeFile("fit.txt", "1\r\n2\r\n3\r\n40 4\r\n50 5\r\n");
  EXPECT_EQ(data_->ImportCurvedData(folder_.file("fit.txt"), "Rotor B", "4711", isEmpty_).size(),
            2U);
  const Journal rows = storedRows();
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[0], "seriesID=7 Roshko=40 Strouhal=4");
  EXPECT_EQ(rows[1], "seriesID=7 Roshko=50 Strouhal=5");
  EXPECT_EQ(rows[3], "seriesID=7 Roshko=1 Strouhal=4");
}

}  // namespace
}  // namespace pelmora
