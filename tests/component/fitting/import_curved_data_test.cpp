// SPDX-License-Identifier: MIT
#include "component/result_files.h"
#include "tests/component/fitting/fitting_fixture.h"

#include <filesystem>

namespace pelmora {
namespace {

using test::Journal;

const std::string header = "1\r\n2\r\n3\r\n";

class import_curved_data : public FittingFixture {
 protected:
  PointArray import() { return ImportCurvedData(context_, path_, "Rotor A", "4711", isEmpty_, -1); }
  const std::string path_ = folder_.file("fit.txt");
  bool isEmpty_ = false;
};

TEST_F(import_curved_data, removes_the_curve_and_adds_the_points_to_the_merged_ones) {
  haveSeries();
  writeFile("fit.txt", header + "2 5\r\n1 4\r\n");
  EXPECT_EQ(import(), (PointArray{{1, 4}, {2, 5}}));
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(
      journal_,
      (Journal{"open", "read " + findStatement(), "status: Reading file: " + path_,
               "status: Cleaning data from Tablecurve format", "status: Sorting fitted data",
               "status: Removing old fitted data from databasse for series Rotor A",
               "execute DELETE from curve where seriesID = 7",
               "status: Inserting new fitted data into database for series Rotor A",
               "batch Select * from merge where seriesID = 7", "add seriesID=7 Roshko=1 Strouhal=4",
               "add seriesID=7 Roshko=2 Strouhal=5", "update batch", "close"}));
  EXPECT_EQ(shared_.fitRecord().Fitted, (PointArray{{1, 4}, {2, 5}}));
}

TEST_F(import_curved_data, unknown_series_leaves_the_file) {
  writeFile("fit.txt", header + "2 5\r\n1 4\r\n");
  shared_.fitRecord().Fitted = {{9, 9}};
  EXPECT_EQ(import(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_TRUE(std::filesystem::exists(path_));
  EXPECT_EQ(statusTexts(), Journal());
  EXPECT_EQ(shared_.fitRecord().Fitted, (PointArray{{9, 9}}));
  EXPECT_TRUE(isClosed());
}

TEST_F(import_curved_data, single_point_is_read_and_not_stored) {
  haveSeries();
  writeFile("fit.txt", header + "1 4");
  EXPECT_EQ(import(), (PointArray{{1, 4}}));
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(executed(), Journal());
  EXPECT_EQ(shared_.fitRecord().Fitted, (PointArray{{1, 4}}));
}

// Only a single point stops the import: nothing read removes the curve.
TEST_F(import_curved_data, missing_file_removes_the_curve) {
  haveSeries();
  shared_.fitRecord().Fitted = {{9, 9}};
  EXPECT_EQ(import(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"File not found|64|"});
  EXPECT_EQ(executed(), Journal{"DELETE from curve where seriesID = 7"});
  EXPECT_EQ(test::linesOf(journal_, "add "), Journal());
  EXPECT_EQ(shared_.fitRecord().Fitted, PointArray());
}

TEST_F(import_curved_data, points_before_a_bad_line_are_stored) {
  haveSeries();
  writeFile("fit.txt", header + "2 5\r\n1 4\r\nx 3\r\n");
  EXPECT_EQ(import(), (PointArray{{2, 5}, {1, 4}}));
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"Error in RawData:readTCresults\r\nType mismatch|16|"});
  EXPECT_EQ(executed(), Journal{"DELETE from curve where seriesID = 7"});
  EXPECT_EQ(test::linesOf(journal_, "add "),
            (Journal{"seriesID=7 Roshko=2 Strouhal=5", "seriesID=7 Roshko=1 Strouhal=4"}));
  EXPECT_EQ(shared_.fitRecord().Fitted, (PointArray{{2, 5}, {1, 4}}));
}

TEST_F(import_curved_data, failure_is_told_under_its_own_name) {
  haveSeries();
  writeFile("fit.txt", header + "2 5\r\n1 4\r\n");
  script_->fail("DELETE from curve where seriesID = 7", Error(-1, "driver", "read-only"));
  EXPECT_EQ(import().size(), 2U);
  EXPECT_EQ(boxes(), Journal{"Error in RawData:ImportCurvedData\r\nread-only|16|"});
  EXPECT_TRUE(isClosed());
}

TEST_F(import_curved_data, failed_batch_keeps_the_points_read) {
  haveSeries();
  writeFile("fit.txt", header + "2 5\r\n1 4\r\n");
  script_->fail("update batch", Error(-1, "driver", "disk full"));
  EXPECT_EQ(import().size(), 2U);
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(boxes().size(), 1U);
}

}  // namespace
}  // namespace pelmora
