// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"

#include <stdexcept>

namespace pelmora {
namespace {

using test::FakeBandCall;
using test::Journal;
using test::solutionOf;
using Ranking = std::vector<std::int16_t>;

class best_fit : public FitFixture {
 protected:
  // Equations in the order in which they are fitted: the last one has index 0.
  std::unique_ptr<clsDataFit> fitWith(const std::vector<double>& adjusted) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < adjusted.size(); ++i) {
      names.emplace_back(1, static_cast<char>('A' + i));
      engine_.solutions.try_emplace(names.back(), solutionOf(0.5, adjusted[i]));
      const auto level = static_cast<double>(i);
      engine_.solutions[names.back()].curve = [level](double) { return level; };
    }
    useEquations(names);
    auto fitting = makeFitting();
    fitting->RatioCurve = ratioCurve_;
    fitting->BandPercent = 0.25F;
    fit(*fitting);
    return fitting;
  }
  // Makes the band test refuse these equations.
  void refuse(const std::string& names) {
    band_.band = [names](const FakeBandCall& call, float&) {
      const char name = static_cast<char>('A' + static_cast<int>(call.predictedY[0]));
      return names.find(name) == std::string::npos;
    };
  }
  std::string chosen() const { return statusTexts().back(); }

  bool ratioCurve_ = false;
};

TEST_F(best_fit, ranking_goes_up_to_the_highest_adjusted_r2) {
  EXPECT_EQ(fitWith({0.9, 0.7, 0.8})->ranking(), (Ranking{1, 0, 2}));
  EXPECT_EQ(chosen(), "Determined bestfit equation: A");
}

TEST_F(best_fit, higher_of_two_passing_equations_is_chosen) {
  EXPECT_EQ(fitWith({0.7, 0.9})->ranking(), (Ranking{1, 0}));
  EXPECT_EQ(chosen(), "Determined bestfit equation: B");
}

// The sort exchanges equal scores, so that the first of the catalogue ends last.
TEST_F(best_fit, of_two_equal_scores_the_lower_index_is_chosen) {
  EXPECT_EQ(fitWith({0.8, 0.8})->ranking(), (Ranking{1, 0}));
  EXPECT_EQ(chosen(), "Determined bestfit equation: B");
}

TEST_F(best_fit, three_equal_scores_are_turned_around) {
  EXPECT_EQ(fitWith({0.8, 0.8, 0.8})->ranking(), (Ranking{2, 1, 0}));
}

TEST_F(best_fit, equation_outside_the_band_is_dropped) {
  refuse("A");
  EXPECT_EQ(fitWith({0.9, 0.7, 0.8})->ranking(), (Ranking{1, 0}));
  EXPECT_EQ(chosen(), "Determined bestfit equation: C");
}

TEST_F(best_fit, weakest_equation_may_fail_alone) {
  refuse("B");
  EXPECT_EQ(fitWith({0.9, 0.7, 0.8})->ranking(), (Ranking{0, 2}));
}

TEST_F(best_fit, last_one_left_is_chosen) {
  refuse("AC");
  EXPECT_EQ(fitWith({0.9, 0.7, 0.8})->ranking(), Ranking{1});
  EXPECT_EQ(chosen(), "Determined bestfit equation: B");
}

TEST_F(best_fit, nobody_passes) {
  refuse("ABC");
  EXPECT_EQ(fitWith({0.9, 0.7, 0.8})->ranking(), Ranking{-1});
  EXPECT_EQ(chosen(), "All equations failed to fit the data");
  EXPECT_TRUE(isEmpty_);
}

TEST_F(best_fit, only_equation_that_fails_leaves_none) {
  refuse("A");
  EXPECT_EQ(fitWith({0.9})->ranking(), Ranking{-1});
}

TEST_F(best_fit, equation_without_a_solution_is_not_tested) {
  engine_.solutions["A"] = solutionOf(0, 0);
  engine_.solutions["A"].found = false;
  EXPECT_EQ(fitWith({0, 0.7, 0.8})->ranking(), (Ranking{1, 0}));
  EXPECT_EQ(band_.bandCalls.size(), 2U);
}

TEST_F(best_fit, no_accepted_equation_leaves_none) {
  engine_.solutions["A"].found = false;
  engine_.solutions["B"] = solutionOf(0.5, 0.5);
  engine_.solutions["B"].table = test::tableOfRatio(99);
  EXPECT_EQ(fitWith({0, 0})->ranking(), Ranking{-1});
  EXPECT_TRUE(band_.bandCalls.empty());
}

// Equations that were never reached score 0, above a negative adjusted R2.
TEST_F(best_fit, untried_equations_are_dropped_wherever_they_rank) {
  engine_.solutions["A"] = solutionOf(1, -0.5);
  EXPECT_EQ(fitWith({0, 0, 0})->ranking(), Ranking{2});
  EXPECT_EQ(chosen(), "Determined bestfit equation: A");
}

TEST_F(best_fit, band_test_gets_raw_points_curve_and_band) {
  fitWith({0.9});
  ASSERT_EQ(band_.bandCalls.size(), 1U);
  const FakeBandCall& call = band_.bandCalls[0];
  EXPECT_EQ(call.rawX, (test::Values{1, 10, 100}));
  EXPECT_EQ(call.rawY, (test::Values{2, 4, 8}));
  EXPECT_EQ(call.predictedX.size(), 3U);
  EXPECT_EQ(call.predictedY, (test::Values{0, 0, 0}));
  EXPECT_EQ(call.percent, 0.25F);
  EXPECT_FALSE(call.ratioMode);
}

TEST_F(best_fit, band_that_a_test_changes_holds_for_the_next) {
  band_.band = [](const FakeBandCall&, float& percent) {
    percent *= 2;
    return true;
  };
  const auto fitting = fitWith({0.9, 0.8});
  ASSERT_EQ(band_.bandCalls.size(), 2U);
  EXPECT_EQ(band_.bandCalls[1].percent, 0.5F);
  EXPECT_EQ(fitting->BandPercent, 1.0F);
}

TEST_F(best_fit, curve_that_is_no_ratio_curve_is_never_asked_to_be_one) {
  fitWith({0.9, 0.8});
  EXPECT_EQ(test::linesOf(journal_, "ratio test").size(), 0U);
}

TEST_F(best_fit, ratio_curves_take_the_ratio_test_before_the_band_test) {
  ratioCurve_ = true;
  fitWith({0.9});
  EXPECT_TRUE(band_.bandCalls.at(0).ratioMode);
  EXPECT_EQ(journal_[journal_.size() - 3], "ratio test");
  EXPECT_EQ(journal_[journal_.size() - 2], "band test");
}

TEST_F(best_fit, failed_ratio_test_spares_the_band_test) {
  ratioCurve_ = true;
  band_.ratioCurve = [](std::span<const double> x, std::span<const double> y) {
    return x.size() == 3 && y[0] != 0;
  };
  EXPECT_EQ(fitWith({0.9, 0.8})->ranking(), Ranking{0});
  EXPECT_EQ(band_.bandCalls.size(), 1U);
}

TEST_F(best_fit, tester_lives_for_one_selection) {
  bool alive = false;
  band_.band = [&](const FakeBandCall&, float&) {
    alive = band_.alive == 1;
    return true;
  };
  fitWith({0.9});
  EXPECT_TRUE(alive);
  EXPECT_EQ(band_.alive, 0);
}

TEST_F(best_fit, status_texts_of_the_tester_are_passed_on) {
  band_.statusTexts = {"Testing ring 1", "Testing ring 2"};
  fitWith({0.9});
  const Journal texts = statusTexts();
  ASSERT_EQ(texts.size(), 5U);
  EXPECT_EQ(texts[2], "Testing ring 1");
  EXPECT_EQ(texts[3], "Testing ring 2");
}

// The run then reads the ranking as the fit left it.
TEST_F(best_fit, error_of_the_tester_is_told_and_ends_the_selection) {
  band_.band = [](const FakeBandCall&, float&) -> bool { throw Error(48, "tester", "not loaded"); };
  const auto fitting = fitWith({0.9});
  EXPECT_EQ(boxes(), Journal{"Error in clsDataFit:findBestFitnot loaded|16|"});
  EXPECT_EQ(band_.alive, 0);
  EXPECT_EQ(chosen(), "Determined bestfit equation: A");
  EXPECT_FALSE(isEmpty_);
}

TEST_F(best_fit, missing_tester_is_told) {
  platform().createBandTester = nullptr;
  fitWith({0.9});
  EXPECT_EQ(boxes(),
            Journal{"Error in clsDataFit:findBestFitActiveX component can't create object|16|"});
}

TEST_F(best_fit, factory_without_a_tester_is_told) {
  platform().createBandTester = [] { return nullptr; };
  fitWith({0.9});
  EXPECT_EQ(boxes(),
            Journal{"Error in clsDataFit:findBestFitActiveX component can't create object|16|"});
}

TEST_F(best_fit, without_a_tester_and_a_solution_nothing_is_chosen) {
  platform().createBandTester = nullptr;
  engine_.solutions["A"].found = false;
  engine_.solutions["B"].found = false;
  fitWith({0, 0});
  EXPECT_EQ(chosen(), "All equations failed to fit the data");
  EXPECT_TRUE(isEmpty_);
}

}  // namespace
}  // namespace pelmora
