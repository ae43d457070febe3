// SPDX-License-Identifier: MIT
#include "tests/component/fitting/fit_fixture.h"

#include <sys/stat.h>

#include <filesystem>

namespace pelmora {
namespace {

using test::Journal;

class determine_fitted_curve : public StoredFitFixture {};

TEST_F(determine_fitted_curve, reads_sorts_and_fits_in_order) {
  havePart(1, {{10, 5}, {1, 4}});
  fit();
  EXPECT_EQ(
      journal_,
      (Journal{"open", "read " + fitStatement(),
               "status: Determining fitted data from saved raw data in series Rotor A",
               "read " + partStatement(1), "status: Sorting raw1 data in series Rotor A",
               "read " + partStatement(2), "read " + partStatement(3), "read " + partStatement(4),
               "progress: 1/1", "status: Started fitting with equation: A", "fit: A",
               "status: Finished fitting with equation: A", "band test",
               "status: Determined bestfit equation: A", "close"}));
}

TEST_F(determine_fitted_curve, returns_the_curve_and_keeps_it_with_what_it_was_fitted_to) {
  havePart(1, {{10, 5}, {1, 4}});
  const PointArray curve = fit();
  EXPECT_FALSE(isEmpty_);
  ASSERT_EQ(curve.size(), 3U);
  EXPECT_NEAR(curve(0, 0), 2, 1e-12);
  EXPECT_NEAR(curve(2, 0), 10, 1e-12);
  EXPECT_EQ(record().Fitted, curve);
  EXPECT_EQ(record().Merged, (PointArray{{1, 4}, {10, 5}}));
  EXPECT_EQ(record().SeriesName, "Rotor A");
  EXPECT_EQ(record().SeriesID, 7);
  EXPECT_NE(record().Summary, "");
  EXPECT_EQ(host_.details, record().Summary);
  EXPECT_EQ(engine_.fits.at(0).data->Columns[0], (std::vector<double>{1, 10}));
}

TEST_F(determine_fitted_curve, found_series_becomes_the_last_fitted_one) {
  havePart(1, {{1, 4}, {10, 5}});
  fit();
  EXPECT_EQ(shared_.lastFittedSeries.SerialNumber, "4711");
  EXPECT_EQ(shared_.lastFittedSeries.MeterID, 3);
  EXPECT_EQ(shared_.lastFittedSeries.ReCalID, 2);
  ASSERT_EQ(shared_.lastFittedSeries.Series.size(), 1U);
  EXPECT_EQ(shared_.lastFittedSeries.Series[0].SeriesName, "Rotor A");
}

TEST_F(determine_fitted_curve, asks_for_the_calibration_it_is_given) {
  request_.ReCalID = 4;
  fit();
  EXPECT_EQ(
      journal_.at(1),
      "read SELECT series.*, meter.recalid, meter.serialnumberadjusted from series left join meter "
      "on "
      "series.meterid=meter.id where series.name = 'Rotor A' and meter.serialnumber='4711' and "
      "meter.recalid=4");
}

TEST_F(determine_fitted_curve, unknown_series_is_silent_and_empty) {
  script_->answers.clear();
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(journal_, (Journal{"open", "read " + fitStatement(), "close"}));
}

TEST_F(determine_fitted_curve, failed_look_up_is_told_and_empty) {
  script_->fail(fitStatement(), Error(-1, "driver", "no such table"));
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"Error in Misc:getSeriesID\r\nno such table|16|"});
  EXPECT_TRUE(isClosed());
}

TEST_F(determine_fitted_curve, database_that_does_not_open_leaves_the_emptiness_as_it_was) {
  script_->fail("open", Error(-1, "driver", "no such file"));
  isEmpty_ = false;
  EXPECT_EQ(fit(), PointArray());
  EXPECT_FALSE(isEmpty_);
  EXPECT_EQ(journal_,
            (Journal{"open", "box: Error in RawData:determineFittedCurve\r\nno such file|16|"}));
}

TEST_F(determine_fitted_curve, no_points_at_all_are_out_of_range) {
  EXPECT_EQ(fit(), PointArray());
  EXPECT_EQ(boxes(),
            Journal{"Error in RawData:determineFittedCurve\r\nSubscript out of range|16|"});
  EXPECT_TRUE(isClosed());
  EXPECT_EQ(test::linesOf(journal_, "fit: "), Journal());
}

TEST_F(determine_fitted_curve, raw_part_that_cannot_be_read_counts_as_none) {
  script_->fail(partStatement(1), Error(-1, "driver", "disk error"));
  havePart(2, {{1, 4}, {10, 5}});
  EXPECT_EQ(fit().size(), 3U);
  EXPECT_EQ(boxes(), Journal{"Error in misc:getRSvalues\r\ndisk error|16|"});
}

TEST_F(determine_fitted_curve, host_messages_are_pumped_at_each_raw_part) {
  fit();
  EXPECT_EQ(recording_.pumps, 4);
}

TEST_F(determine_fitted_curve, run_that_ends_in_its_error_box_keeps_the_merged_points_alone) {
  havePart(1, {{1, 4}, {10, 5}});
  shared_.fitRecord().Fitted = {{1, 1}, {2, 2}};
  shared_.fitRecord().Summary = "of an earlier fit";
  host_.current.NumberOfFittedPoints = 1;
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes().size(), 1U);
  EXPECT_EQ(record().Merged, (PointArray{{1, 4}, {10, 5}}));
  EXPECT_EQ(record().Fitted, PointArray());
  EXPECT_EQ(record().Summary, "");
  EXPECT_EQ(host_.details, "");
}

TEST_F(determine_fitted_curve, fit_that_cannot_start_keeps_the_merged_points_alone) {
  std::filesystem::remove(folder_.file("equations.txt"));
  ASSERT_EQ(mknod(folder_.file("equations.txt").c_str(), S_IFSOCK | 0600, 0), 0);
  havePart(1, {{1, 4}, {10, 5}});
  shared_.fitRecord().Fitted = {{1, 1}, {2, 2}};
  shared_.fitRecord().Summary = "of an earlier fit";
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal{"Error in RawData:startFit\r\nPath/File access error|16|"});
  EXPECT_EQ(record().Merged, (PointArray{{1, 4}, {10, 5}}));
  EXPECT_EQ(record().Fitted, PointArray());
  EXPECT_EQ(record().Summary, "");
  EXPECT_EQ(host_.details, "");
}

TEST_F(determine_fitted_curve, failed_fit_reports_all_equations) {
  havePart(1, {{1, 4}, {10, 5}});
  engine_.otherwise.found = false;
  EXPECT_EQ(fit(), PointArray());
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(statusTexts().back(), "All equations failed to fit the data");
  EXPECT_EQ(record().Fitted, PointArray());
  EXPECT_TRUE(record().Summary.starts_with("Solution failed.\r\n"));
  EXPECT_TRUE(record().Summary.ends_with(std::string(32, '=') + "\r\n"));
}

}  // namespace
}  // namespace pelmora
