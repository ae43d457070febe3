// SPDX-License-Identifier: MIT
#include "component/stored_results.h"
#include "tests/component/fitting/fitting_fixture.h"

namespace pelmora {
namespace {

using test::Journal;

const std::string curveStatement = "Select roshko, strouhal from curve where seriesID = 7";
const std::string mergeStatement = "Select roshko, strouhal from merge where seriesID = 7";
const std::string summaryStatement = "Select summary from datafitresults where seriesID = 7";

PointArray manyPoints(std::size_t count) {
  PointArray points(count);
  for (std::size_t i = 0; i < count; ++i) {
    points(i, 0) = static_cast<double>(i) + 1;
    points(i, 1) = 100 - static_cast<double>(i);
  }
  return points;
}

class stored_curve : public FittingFixture {
 protected:
  void have(const std::string& name, const PointArray& curve, const std::string& order) {
    haveSeries(name);
    name_ = name;
    if (!curve.empty()) script_->answer(curveStatement + order, test::pointRows(curve));
    script_->answer(mergeStatement, test::pointRows({{1, 8}, {2, 9}}));
    script_->answer(summaryStatement, {{"summary"}, {{std::string("the report")}}});
  }
  MeterInfo getFitted(bool compact = false) {
    return getFittedCurve(context_, {name_, "4711", -1, compact}, nullptr);
  }
  MeterInfo getAll(bool compact = false) {
    return GetAllInfo(context_, {name_, "4711", -1, compact}, nullptr);
  }
  Journal readStatements() const { return test::linesOf(journal_, "read "); }

  std::string name_ = "Rotor A";
};

class get_fitted_curve : public stored_curve {};

TEST_F(get_fitted_curve, reads_curve_merged_points_and_summary) {
  have("Rotor A", {{3, 4}, {1, 2}}, "");
  const MeterInfo meter = getFitted();
  EXPECT_EQ(meter.MeterID, 3);
  EXPECT_EQ(meter.Source, 1);
  ASSERT_EQ(meter.Series.size(), 1U);
  EXPECT_EQ(meter.Series[0].Fitted, (PointArray{{3, 4}, {1, 2}}));  // not sorted
  EXPECT_EQ(meter.Series[0].Merged, (PointArray{{1, 8}, {2, 9}}));
  EXPECT_EQ(meter.Series[0].Summary, "the report");
  EXPECT_EQ(journal_,
            (Journal{"open", "read " + findStatement(), "read " + curveStatement,
                     "status: Obtained fitted data from database for series Rotor A",
                     "status: Retrieving old merged data from database in series Rotor A",
                     "read " + mergeStatement,
                     "status: Retrieving old Fitted Details from database in series Rotor A",
                     "read " + summaryStatement, "close"}));
}

TEST_F(get_fitted_curve, series_becomes_the_last_fitted_one) {
  have("Rotor A", {{3, 4}, {1, 2}}, "");
  shared_.fitRecord().Fitted = {{9, 9}};
  const MeterInfo meter = getFitted();
  EXPECT_EQ(shared_.lastFittedSeries, meter);
  EXPECT_EQ(shared_.fitRecord().Merged, (PointArray{{1, 8}, {2, 9}}));
  EXPECT_EQ(shared_.fitRecord().Summary, "the report");
  EXPECT_EQ(shared_.fitRecord().Fitted, (PointArray{{9, 9}}));
}

TEST_F(get_fitted_curve, series_without_a_curve_says_so_at_the_end) {
  have("Rotor A", {}, "");
  const MeterInfo meter = getFitted();
  EXPECT_EQ(meter.Series.at(0).Fitted, PointArray());
  EXPECT_EQ(meter.Series.at(0).Summary, "the report");
  EXPECT_EQ(statusTexts(),
            (Journal{"Retrieving old merged data from database in series Rotor A",
                     "Retrieving old Fitted Details from database in series Rotor A",
                     "No data for fitted curve in the database for series Rotor A"}));
}

TEST_F(get_fitted_curve, compact_curve_is_roshko_first_in_the_order_of_the_database) {
  have("Rotor A", {{3, 4}, {1, 2}}, "");
  const SeriesInfo series = getFitted(true).Series.at(0);
  EXPECT_EQ(series.Fitted, PointArray());
  EXPECT_EQ(series.RoshkoFirst.first[0], 3.0F);
  EXPECT_EQ(series.RoshkoFirst.second[0], 4.0F);
  EXPECT_EQ(series.StrouhalFirst, FixedCurve40());
}

TEST_F(get_fitted_curve, compact_ratio_curve_is_strouhal_first_by_strouhal) {
  have("Rotor RATIO 2", {{3, 4}, {1, 5}}, " ORDER BY Strouhal ASC");
  const SeriesInfo series = getFitted(true).Series.at(0);
  EXPECT_EQ(series.StrouhalFirst.first[0], 4.0F);
  EXPECT_EQ(series.StrouhalFirst.second[0], 3.0F);
  EXPECT_EQ(series.RoshkoFirst, FixedCurve40());
}

TEST_F(get_fitted_curve, ratio_curve_in_full_has_no_order) {
  have("Ratio", {{3, 4}, {1, 5}}, "");
  EXPECT_EQ(getFitted().Series.at(0).Fitted, (PointArray{{3, 4}, {1, 5}}));
}

TEST_F(get_fitted_curve, compact_curve_holds_the_first_40_rows) {
  have("Rotor A", manyPoints(55), "");
  const SeriesInfo series = getFitted(true).Series.at(0);
  EXPECT_EQ(series.RoshkoFirst.first[39], 40.0F);
  EXPECT_EQ(series.RoshkoFirst.second[39], 61.0F);
}

TEST_F(get_fitted_curve, full_curve_holds_all_rows) {
  have("Rotor A", manyPoints(55), "");
  EXPECT_EQ(getFitted().Series.at(0).Fitted, manyPoints(55));
}

TEST_F(get_fitted_curve, unknown_series_reads_nothing) {
  shared_.fitRecord().Merged = {{8, 8}};
  const MeterInfo meter = getFitted();
  EXPECT_EQ(meter.Source, -1);
  EXPECT_TRUE(meter.Series.empty());
  EXPECT_EQ(statusTexts(), Journal());
  EXPECT_EQ(readStatements().size(), 2U);  // meter and master list
  EXPECT_EQ(shared_.fitRecord().Merged, (PointArray{{8, 8}}));
}

TEST_F(get_fitted_curve, series_without_a_summary_has_an_empty_one) {
  have("Rotor A", {{3, 4}, {1, 2}}, "");
  script_->answers[summaryStatement].clear();
  EXPECT_EQ(getFitted().Series.at(0).Summary, "");
}

TEST_F(get_fitted_curve, passed_connection_is_used_and_left_open) {
  have("Rotor A", {{3, 4}, {1, 2}}, "");
  const ConnectionPtr passed = connection();
  passed->open();
  journal_.clear();
  getFittedCurve(context_, {"Rotor A", "4711", -1, false}, passed);
  EXPECT_TRUE(passed->isOpen());
  EXPECT_EQ(journal_.front(), "read " + findStatement());
  EXPECT_EQ(journal_.back(), "read " + summaryStatement);
}

TEST_F(get_fitted_curve, failure_before_the_look_up_has_source_minus_one) {
  shared_.location = {};
  MeterInfo empty;
  empty.Source = -1;
  EXPECT_EQ(getFitted(), empty);
  EXPECT_EQ(getAll(), empty);
  EXPECT_EQ(boxes(), (Journal{"Error in RawData:getFittedCurve\r\nEmpty database location|16|",
                              "Error in RawData:GetRaw\r\nEmpty database location|16|"}));
}

TEST_F(get_fitted_curve, failure_is_told_and_what_was_read_comes_back) {
  have("Rotor A", {{3, 4}, {1, 2}}, "");
  script_->fail(mergeStatement, Error(-1, "driver", "disk error"));
  const MeterInfo meter = getFitted();
  EXPECT_EQ(boxes(), Journal{"Error in RawData:getFittedCurve\r\ndisk error|16|"});
  EXPECT_EQ(meter.Series.at(0).Fitted.size(), 2U);
  EXPECT_EQ(meter.Series.at(0).Summary, "");
  EXPECT_TRUE(isClosed());
}

class get_all_info : public stored_curve {};

TEST_F(get_all_info, reads_the_raw_parts_first_and_the_curve_by_roshko) {
  have("Rotor A", {{1, 2}, {3, 4}}, " ORDER BY Roshko ASC");
  for (int part = 1; part <= 3; ++part) {
    script_->answer(
        "Select roshko, strouhal from raw" + std::to_string(part) + " where seriesID = 7",
        test::pointRows({{1.0 * part, 5}}));
  }
  const SeriesInfo series = getAll().Series.at(0);
  EXPECT_EQ(series.Raw[0].Points, (PointArray{{1, 5}}));
  EXPECT_EQ(series.Raw[2].Points, (PointArray{{3, 5}}));
  EXPECT_EQ(series.Raw[3].Points, PointArray());
  EXPECT_EQ(series.Fitted, (PointArray{{1, 2}, {3, 4}}));
  EXPECT_EQ(series.Merged.size(), 2U);
  EXPECT_EQ(series.Summary, "the report");
  Journal expected{"open", "read " + findStatement()};
  for (int part = 1; part <= 4; ++part) {
    expected.push_back("status: Retrieving old raw data from database in series Rotor A");
    expected.push_back("read Select roshko, strouhal from raw" + std::to_string(part) +
                       " where seriesID = 7");
  }
  for (const std::string& line :
       {"read " + curveStatement + " ORDER BY Roshko ASC",
        std::string("status: Obtained fitted data from database for series Rotor A"),
        std::string("status: Retrieving old merged data from database in series Rotor A"),
        "read " + mergeStatement,
        std::string("status: Retrieving old Fitted Details from database in series Rotor A"),
        "read " + summaryStatement, std::string("close")}) {
    expected.push_back(line);
  }
  EXPECT_EQ(journal_, expected);
}

TEST_F(get_all_info, compact_ratio_curve_is_ordered_by_strouhal_but_roshko_first) {
  have("RATIO", {{3, 4}, {1, 5}}, " ORDER BY Strouhal ASC");
  const SeriesInfo series = getAll(true).Series.at(0);
  EXPECT_EQ(series.RoshkoFirst.first[0], 3.0F);
  EXPECT_EQ(series.RoshkoFirst.second[0], 4.0F);
  EXPECT_EQ(series.StrouhalFirst, FixedCurve40());
}

TEST_F(get_all_info, name_that_merely_contains_ratio_is_ordered_by_roshko) {
  have("Ratio 2", {{3, 4}, {1, 5}}, " ORDER BY Roshko ASC");
  EXPECT_EQ(getAll(true).Series.at(0).RoshkoFirst.first[0], 3.0F);
}

TEST_F(get_all_info, full_ratio_curve_is_ordered_by_roshko) {
  have("Ratio", {{3, 4}, {5, 3}}, " ORDER BY Roshko ASC");
  EXPECT_EQ(getAll().Series.at(0).Fitted.size(), 2U);
}

TEST_F(get_all_info, series_becomes_the_last_fitted_one) {
  have("Rotor A", {{1, 2}, {3, 4}}, " ORDER BY Roshko ASC");
  const MeterInfo meter = getAll();
  EXPECT_EQ(shared_.lastFittedSeries, meter);
  EXPECT_EQ(shared_.fitRecord().Summary, "the report");
}

TEST_F(get_all_info, failure_is_told_under_the_name_of_another_operation) {
  have("Rotor A", {{1, 2}, {3, 4}}, " ORDER BY Roshko ASC");
  script_->fail("Select roshko, strouhal from raw2 where seriesID = 7",
                Error(-1, "driver", "lost"));
  getAll();
  EXPECT_EQ(boxes(), Journal{"Error in RawData:GetRaw\r\nlost|16|"});
  EXPECT_TRUE(isClosed());
}

}  // namespace
}  // namespace pelmora
