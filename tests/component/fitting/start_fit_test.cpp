// SPDX-License-Identifier: MIT
#include "component/start_fit.h"
#include "tests/component/fitting/fitting_fixture.h"

namespace pelmora {
namespace {

using test::Journal;

class start_fit : public FittingFixture {
 protected:
  PointArray run() {
    return startFit(context_, host_, {{1, 4}, {10, 5}}, isEmpty_, 1, 10, "Re", "K");
  }
  std::string details() const { return shared_.fitRecord().Summary; }
  bool isEmpty_ = false;
};

TEST_F(start_fit, settings_reach_the_fit) {
  host_.current.BandPercent = 0.75F;
  host_.current.NumberOfFittedPoints = 5;
  shared_.foundSeries.SerialNumber = "4711";
  shared_.fitRecord().SeriesName = "Rotor Sum";
  EXPECT_EQ(run().size(), 5U);
  EXPECT_EQ(band_.bandCalls.at(0).percent, 0.75F);
  EXPECT_TRUE(
      details().starts_with("\t\tMeter Serial Number: 4711\r\n\t\tSeries Name: Rotor Sum\r\n"));
  EXPECT_NE(details().find("\r\nBand Percentage = 0.75%\r\n"), std::string::npos);
  EXPECT_NE(details().find("\r\nPredictedRe Min value = 1\r\n"), std::string::npos);
  EXPECT_NE(details().find("\r\nPredictedK Max value = 10\r\n"), std::string::npos);
}

TEST_F(start_fit, ignored_residuals_reach_the_fit) {
  engine_.otherwise.table = test::tableOfRatio(50);
  EXPECT_EQ(run(), PointArray());
  host_.current.IgnoreResiduals = true;
  EXPECT_EQ(run().size(), 3U);
}

TEST_F(start_fit, ratio_curves_take_their_own_equations) {
  writeFile("ratio equations.txt", "R\tg(x)");
  host_.current.RatioCurve = true;
  run();
  EXPECT_EQ(test::linesOf(journal_, "fit: "), Journal{"R"});
  EXPECT_TRUE(band_.bandCalls.at(0).ratioMode);
}

TEST_F(start_fit, ratio_curves_without_a_file_of_their_own_take_the_others) {
  host_.current.RatioCurve = true;
  run();
  EXPECT_EQ(test::linesOf(journal_, "fit: "), Journal{"A"});
}

TEST_F(start_fit, fitting_object_is_attached_while_it_runs_and_gone_afterwards) {
  const clsDataFit* during = nullptr;
  engine_.otherwise.onAttach = [&] { during = host_.attached; };
  run();
  EXPECT_NE(during, nullptr);
  EXPECT_EQ(host_.attached, nullptr);
  EXPECT_EQ(engine_.modelsAlive, 0);
}

TEST_F(start_fit, band_changed_while_it_runs_holds) {
  engine_.otherwise.onAttach = [&] { host_.attached->BandPercent = 2; };
  run();
  EXPECT_EQ(band_.bandCalls.at(0).percent, 2.0F);
}

TEST_F(start_fit, is_empty_until_an_equation_is_determined) {
  engine_.otherwise.found = false;
  isEmpty_ = false;
  EXPECT_EQ(run(), PointArray());
  EXPECT_TRUE(isEmpty_);
}

TEST_F(start_fit, every_fit_has_an_object_of_its_own) {
  run();
  engine_.otherwise.found = false;
  EXPECT_EQ(run(), PointArray());  // nothing of the first fit is left to choose
  EXPECT_TRUE(isEmpty_);
}

TEST_F(start_fit, result_is_independent_of_the_shared_record) {
  const PointArray curve = run();
  shared_.fitRecord().Fitted(0, 0) = -1;
  EXPECT_NE(curve(0, 0), -1);
}

}  // namespace
}  // namespace pelmora
