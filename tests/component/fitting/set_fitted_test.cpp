// SPDX-License-Identifier: MIT
#include "component/stored_results.h"
#include "tests/component/fitting/fitting_fixture.h"

namespace pelmora {
namespace {

using test::Journal;

class set_fitted : public FittingFixture {
 protected:
  bool set(bool cleardb = false) {
    return SetFitted(context_, "Rotor A", "4711", {merged_, fitted_, details_}, cleardb, -1);
  }
  // What every call begins with.
  static Journal deletions() {
    return {"open",
            "read " + findStatement(),
            "status: Removing old fitted data from database in series Rotor A",
            "execute DELETE from curve where seriesID = 7",
            "status: Removing old DataFitResult summary from database in series Rotor A",
            "execute DELETE from DataFitResults where seriesID = 7",
            "status: Removing old merged data from database in series Rotor A",
            "execute DELETE from merge where seriesid = 7"};
  }
  static Journal summary(const std::string& text) {
    return {"status: Inserting new DataFitResult summary into database in series Rotor A",
            "cursor 2 lock 3 Select * from DataFitResults where seriesID = 7",
            "add seriesID=7 summary=" + text};
  }
  static Journal joined(Journal lines, const Journal& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
  }

  PointArray merged_{{1, 4}, {2, 5}}, fitted_{{1.5, 4.5}, {1.75, 4.75}, {2, 5}};
  std::string details_ = "the report";
};

TEST_F(set_fitted, replaces_curve_summary_and_merged_points) {
  haveSeries();
  EXPECT_TRUE(set());
  Journal expected = deletions();
  expected = joined(expected, {"status: Inserting new fitted data into database in series Rotor A",
                               "batch Select * from curve where seriesID = 7",
                               "add seriesID=7 Roshko=1.5 Strouhal=4.5",
                               "add seriesID=7 Roshko=1.75 Strouhal=4.75",
                               "add seriesID=7 Roshko=2 Strouhal=5", "update batch"});
  expected = joined(expected, summary("the report"));
  expected = joined(expected, {"status: Inserting new merged data into database in series Rotor A",
                               "batch Select * from merge where seriesid = 7",
                               "add seriesID=7 Roshko=1 Strouhal=4",
                               "add seriesID=7 Roshko=2 Strouhal=5", "update batch", "close"});
  EXPECT_EQ(journal_, expected);
}

TEST_F(set_fitted, clearing_deletes_and_keeps_the_summary_alone) {
  haveSeries();
  EXPECT_TRUE(set(true));
  EXPECT_EQ(journal_, joined(joined(deletions(), summary("the report")), {"close"}));
}

TEST_F(set_fitted, clearing_without_details_writes_nothing) {
  haveSeries();
  details_.clear();
  EXPECT_TRUE(set(true));
  EXPECT_EQ(journal_, joined(deletions(), {"close"}));
}

TEST_F(set_fitted, points_of_one_column_end_in_the_box) {
  haveSeries();
  fitted_ = PointArray(3, 1);
  EXPECT_FALSE(set());
  EXPECT_EQ(boxes(), Journal{"Error in RawData:SetRaw\r\nSubscript out of range|16|"});
  EXPECT_EQ(executed(), test::linesOf(deletions(), "execute "));
}

TEST_F(set_fitted, single_points_are_not_written_but_the_summary_is) {
  haveSeries();
  merged_ = {{1, 4}};
  fitted_ = {{1, 4}};
  EXPECT_TRUE(set());
  EXPECT_EQ(journal_, joined(joined(deletions(), summary("the report")), {"close"}));
}

TEST_F(set_fitted, empty_details_are_written_with_the_points) {
  haveSeries();
  merged_ = fitted_ = PointArray();
  details_.clear();
  EXPECT_TRUE(set());
  EXPECT_EQ(journal_, joined(joined(deletions(), summary("")), {"close"}));
}

TEST_F(set_fitted, unknown_series_changes_nothing) {
  EXPECT_FALSE(set());
  EXPECT_EQ(executed(), Journal());
  EXPECT_EQ(statusTexts(), Journal());
  EXPECT_EQ(boxes(), Journal());
  EXPECT_TRUE(isClosed());
}

TEST_F(set_fitted, meter_known_only_to_the_master_list_changes_nothing) {
  script_->answer(
      "SELECT TOP 1 ID, ReCalID from masterMeterList where serialnumber='4711' ORDER BY ReCalID "
      "DESC",
      {{"ID", "ReCalID"}, {{std::int64_t{9}, std::int64_t{1}}}});
  EXPECT_FALSE(set());
  EXPECT_EQ(executed(), Journal());
}

TEST_F(set_fitted, failure_is_told_under_the_name_of_another_operation) {
  haveSeries();
  script_->fail("DELETE from DataFitResults where seriesID = 7", Error(-1, "driver", "read-only"));
  EXPECT_FALSE(set());
  EXPECT_EQ(boxes(), Journal{"Error in RawData:SetRaw\r\nread-only|16|"});
  EXPECT_EQ(executed().size(), 2U);
  EXPECT_TRUE(isClosed());
}

TEST_F(set_fitted, failed_batch_leaves_the_deletions_done) {
  haveSeries();
  script_->fail("update batch", Error(-1, "driver", "disk full"));
  EXPECT_FALSE(set());
  EXPECT_EQ(executed().size(), 3U);
  EXPECT_EQ(boxes(), Journal{"Error in RawData:SetRaw\r\ndisk full|16|"});
}

TEST_F(set_fitted, more_points_than_16_bits_count_overflow) {
  haveSeries();
  fitted_ = PointArray(40000);
  EXPECT_FALSE(set());
  EXPECT_EQ(boxes(), Journal{"Error in RawData:SetRaw\r\nOverflow|16|"});
}

TEST_F(set_fitted, leaves_the_shared_arrays_alone) {
  haveSeries();
  shared_.fitRecord().Merged = {{8, 8}};
  shared_.fitRecord().Fitted = {{9, 9}};
  set();
  EXPECT_EQ(shared_.fitRecord().Merged, (PointArray{{8, 8}}));
  EXPECT_EQ(shared_.fitRecord().Fitted, (PointArray{{9, 9}}));
}

class set_last_fitted : public set_fitted {
 protected:
  set_last_fitted() {
    shared_.lastFittedSeries.SerialNumber = "4711";
    shared_.lastFittedSeries.ReCalID = 2;
    shared_.lastFittedSeries.Series.resize(1);
    shared_.lastFittedSeries.Series[0].SeriesName = "Rotor A";
    shared_.fitRecord().Merged = {{1, 4}, {2, 5}};
    shared_.fitRecord().Fitted = {{1, 4}, {2, 5}};
    shared_.fitRecord().Summary = "last report";
    script_->answer(recalStatement,
                    {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
                     {{std::int64_t{7}, std::int64_t{3}, std::int64_t{2}, Value()}}});
  }
  // The calibration that was fitted, though a newer one may exist by now.
  const std::string recalStatement =
      "SELECT series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
      "series left join "
      "meter on series.meterid=meter.id where serialnumber='4711' AND recalid=2 AND series.name = "
      "'Rotor A' "
      "ORDER BY ReCalID DESC";
};

TEST_F(set_last_fitted, stores_the_shared_record_for_the_last_fitted_series) {
  EXPECT_TRUE(SetLastFitted(context_, false));
  EXPECT_EQ(journal_.at(1), "read " + recalStatement);
  EXPECT_EQ(test::linesOf(journal_, "add "),
            (Journal{"seriesID=7 Roshko=1 Strouhal=4", "seriesID=7 Roshko=2 Strouhal=5",
                     "seriesID=7 summary=last report", "seriesID=7 Roshko=1 Strouhal=4",
                     "seriesID=7 Roshko=2 Strouhal=5"}));
}

TEST_F(set_last_fitted, clearing_keeps_the_last_summary) {
  EXPECT_TRUE(SetLastFitted(context_, true));
  EXPECT_EQ(executed(), (Journal{"DELETE from curve where seriesID = 7",
                                 "DELETE from DataFitResults where seriesID = 7",
                                 "DELETE from merge where seriesid = 7"}));
  EXPECT_EQ(test::linesOf(journal_, "add "), Journal{"seriesID=7 summary=last report"});
}

TEST_F(set_last_fitted, before_any_fit_changes_nothing) {
  shared_ = SharedState();
  shared_.location.FullPath = "curves.db";
  EXPECT_FALSE(SetLastFitted(context_, false));
  EXPECT_EQ(executed(), Journal());
}

TEST_F(set_last_fitted, arrays_that_change_while_they_are_stored_do_not_matter) {
  const OperationContext changing{shared_, platform(), [this](const std::string&) {
                                    shared_.lastResults = {};
                                    shared_.lastFittedSeries = {};
                                  }};
  EXPECT_TRUE(SetLastFitted(changing, false));
  EXPECT_EQ(test::linesOf(journal_, "add ").size(), 5U);
}

}  // namespace
}  // namespace pelmora
