// What the host hears of a fit, and what reaches the fit while it runs.
// SPDX-License-Identifier: MIT
#include "tests/component/component_fixture.h"

namespace pelmora {
namespace {

using test::Journal;

class fit_events : public ComponentFixture {
 protected:
  fit_events() { haveFit(); }
};

TEST_F(fit_events, of_the_fitting_object_come_unchanged_and_in_order) {
  writeFile("equations.txt", "A\tf(x)\r\nB\tg(x)");
  band_.statusTexts = {"Testing the band"};
  fit();
  Journal events;
  for (const std::string& line : journal_) {
    if (line.starts_with("status: ") || line.starts_with("progress: ")) events.push_back(line);
  }
  EXPECT_EQ(events,
            (Journal{"status: Determining fitted data from saved raw data in series Rotor A",
                     "status: Sorting raw1 data in series Rotor A", "progress: 1/2",
                     "status: Started fitting with equation: A",
                     "status: Finished fitting with equation: A", "progress: 2/2",
                     "status: Started fitting with equation: B",
                     "status: Finished fitting with equation: B", "status: Testing the band",
                     "status: Testing the band", "status: Determined bestfit equation: B"}));
}

// Four raw parts and one pass of the sort pump, and each of three texts of the fitting object does;
// the sort of one score and the progress do not wait for the host.
TEST_F(fit_events, status_texts_of_the_fitting_object_pump_once_after_the_handler) {
  Journal order;
  data_->StatusUpdate = [&](const std::string& text) { order.push_back(text); };
  data_->FittingProgress = [&](std::int16_t, std::int16_t) { order.push_back("progress"); };
  recording_.onPump = [&] { order.push_back("pump"); };
  fit();
  const Journal end(order.end() - 8, order.end());
  EXPECT_EQ(end, (Journal{"progress", "Started fitting with equation: A", "pump",
                          "Finished fitting with equation: A", "pump",
                          "pump",  // the sort of the one score
                          "Determined bestfit equation: A", "pump"}));
}

TEST_F(fit_events, band_percent_set_before_a_fit_reaches_it) {
  data_->BandPercent(0.5F);
  fit();
  EXPECT_EQ(band_.bandCalls.at(0).percent, 0.5F);
}

TEST_F(fit_events, band_percent_set_while_it_runs_reaches_the_fit) {
  data_->FittingProgress = [&](std::int16_t, std::int16_t) { data_->BandPercent(2.5F); };
  fit();
  EXPECT_EQ(band_.bandCalls.at(0).percent, 2.5F);
  EXPECT_NE(data_->DataFitResultDetails.find("\r\nBand Percentage = 2.5%\r\n"), std::string::npos);
  EXPECT_EQ(data_->BandPercent(), 2.5F);
}

TEST_F(fit_events, band_percent_that_the_tester_changes_stays_with_the_fit) {
  data_->BandPercent(0.5F);
  band_.band = [](const test::FakeBandCall&, float& percent) {
    percent = 9;
    return true;
  };
  fit();
  EXPECT_EQ(data_->BandPercent(), 0.5F);
}

TEST_F(fit_events, number_of_fitted_points_reaches_the_fit) {
  data_->NumberOfFittedPoints = 17;
  EXPECT_EQ(fit().size(), 17U);
}

TEST_F(fit_events, ignored_residuals_reach_the_fit) {
  engine_.otherwise.table = test::tableOfRatio(50);
  EXPECT_EQ(fit(), PointArray());
  data_->IgnoreResiduals = true;
  EXPECT_EQ(fit().size(), 3U);
}

TEST_F(fit_events, ratio_curve_reaches_the_fit) {
  writeFile("ratio equations.txt", "R\tf(x)");
  data_->RatioCurve = true;
  fit();
  EXPECT_EQ(test::linesOf(journal_, "fit: "), Journal{"R"});
}

TEST_F(fit_events, unattended_host_is_not_asked) {
  data_->Unattended = true;
  double from = 0.5, to = 99;
  data_->determineFittedCurve("Rotor A", "4711", isEmpty_, from, to, "Roshko", "Strouhal", false);
  EXPECT_TRUE(isEmpty_);
  EXPECT_EQ(boxes(), Journal());
  EXPECT_EQ(statusTexts().back(), "Aborted CurveFit MIN/MAX out of Raw range");
}

TEST_F(fit_events, retry_tells_the_host_the_raw_range) {
  recording_.answer = [](const std::string&) { return 4; };
  double from = 0.5, to = 99;
  data_->determineFittedCurve("Rotor A", "4711", isEmpty_, from, to, "Roshko", "Strouhal", false);
  EXPECT_EQ(from, 1);
  EXPECT_EQ(to, 10);
}

TEST_F(fit_events, details_of_a_failed_run_are_empty) {
  data_->DataFitResultDetails = "of an earlier fit";
  data_->NumberOfFittedPoints = 1;
  EXPECT_EQ(fit(), PointArray());
  EXPECT_EQ(data_->DataFitResultDetails, "");
  EXPECT_EQ(data_->LastFittedArray(), PointArray());
  EXPECT_EQ(data_->LastMergedArray().size(), 2U);
}

TEST_F(fit_events, host_without_handlers_fits_as_well) {
  data_->StatusUpdate = nullptr;
  data_->FittingProgress = nullptr;
  EXPECT_EQ(fit().size(), 3U);
}

}  // namespace
}  // namespace pelmora
