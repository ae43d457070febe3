// SPDX-License-Identifier: MIT
#include "tests/component/component_fixture.h"

namespace pelmora {
namespace {

class last_results : public ComponentFixture {};

TEST_F(last_results, of_a_fresh_object_are_empty) {
  EXPECT_EQ(data_->LastMergedArray(), PointArray());
  EXPECT_EQ(data_->LastFittedArray(), PointArray());
  EXPECT_TRUE(data_->LastFit().Equations.empty());
}

TEST_F(last_results, sort_without_points_is_an_error_to_the_host) {
  try {
    data_->LastFittedRatioSort();
    FAIL() << "sorted";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 9);
  }
  EXPECT_EQ(boxes(), test::Journal());
}

TEST_F(last_results, are_copies) {
  haveFit();
  fit();
  PointArray copy = data_->LastFittedArray();
  copy(0, 0) = -1;
  EXPECT_NE(data_->LastFittedArray()(0, 0), -1);
  PointArray merged = data_->LastMergedArray();
  merged(0, 0) = -1;
  EXPECT_NE(data_->LastMergedArray()(0, 0), -1);
}

TEST_F(last_results, are_those_of_the_last_fit) {
  haveFit();
  const PointArray curve = fit();
  EXPECT_EQ(data_->LastFittedArray(), curve);
  EXPECT_EQ(data_->LastMergedArray(), (PointArray{{1, 4}, {10, 5}}));
  EXPECT_EQ(data_->LastFit().Chosen, std::optional<std::size_t>(0));
  EXPECT_NE(data_->DataFitResultDetails.find("Description: A\r\n"), std::string::npos);
}

TEST_F(last_results, ratio_sort_orders_by_falling_strouhal_and_says_false) {
  haveFit();
  fit();  // the scripted curve is y = x
  EXPECT_FALSE(data_->LastFittedRatioSort());
  const PointArray sorted = data_->LastFittedArray();
  ASSERT_EQ(sorted.size(), 3U);
  EXPECT_GT(sorted(0, 1), sorted(1, 1));
  EXPECT_GT(sorted(1, 1), sorted(2, 1));
  EXPECT_NEAR(sorted(0, 0), 10, 1e-12);
}

TEST_F(last_results, ratio_sort_works_through_any_object) {
  haveFit();
  RawData other;
  fit();
  EXPECT_FALSE(other.LastFittedRatioSort());
  EXPECT_NEAR(data_->LastFittedArray()(0, 0), 10, 1e-12);
}

TEST_F(last_results, are_stored_for_the_series_that_was_fitted) {
  haveFit();
  fit();
  const std::string recalStatement =
      "SELECT series.ID AS seriesID,meter.ID, meter.ReCalID, meter.SerialNumberAdjusted from "
      "series left join "
      "meter on series.meterid=meter.id where serialnumber='4711' AND recalid=2 AND series.name = "
      "'Rotor A' "
      "ORDER BY ReCalID DESC";
  script_->answer(recalStatement, {{"seriesID", "ID", "ReCalID", "SerialNumberAdjusted"},
                                   {{std::int64_t{7}, std::int64_t{3}, std::int64_t{2}, Value()}}});
  journal_.clear();
  EXPECT_TRUE(data_->SetLastFitted(false));
  EXPECT_EQ(test::linesOf(journal_, "add ").size(), 6U);  // 3 fitted, 1 summary, 2 merged
}

}  // namespace
}  // namespace pelmora
