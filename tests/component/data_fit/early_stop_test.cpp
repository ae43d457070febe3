// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"

#include <cmath>

namespace pelmora {
namespace {

using test::Journal;
using test::solutionOf;

class early_stop : public FitFixture {
 protected:
  early_stop() { useEquations({"A", "B", "C"}); }
};

TEST_F(early_stop, near_perfect_solution_ends_the_loop) {
  engine_.solutions["A"] = solutionOf(0.99995, 0.9999);
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(fitted(), Journal{"A"});
  EXPECT_EQ(fitting->ranking(), std::vector<std::int16_t>{2});
  EXPECT_EQ(statusTexts().back(), "Determined bestfit equation: A");
  EXPECT_EQ(test::linesOf(journal_, "progress: "), Journal{"1/3"});
}

TEST_F(early_stop, limit_itself_is_near_perfect) {
  engine_.solutions["B"] = solutionOf(0.9999, 0.9);
  fit(*makeFitting());
  EXPECT_EQ(fitted(), (Journal{"A", "B"}));
}

TEST_F(early_stop, below_the_limit_the_loop_goes_on) {
  engine_.otherwise = solutionOf(std::nextafter(0.9999, 0), 1);
  fit(*makeFitting());
  EXPECT_EQ(fitted(), (Journal{"A", "B", "C"}));
}

TEST_F(early_stop, adjusted_r2_does_not_count) {
  engine_.otherwise = solutionOf(0.5, 1);
  fit(*makeFitting());
  EXPECT_EQ(fitted(), (Journal{"A", "B", "C"}));
}

TEST_F(early_stop, r2_that_is_no_number_does_not_end_the_loop) {
  engine_.otherwise = solutionOf(std::nan(""), 0.5);
  fit(*makeFitting());
  EXPECT_EQ(fitted(), (Journal{"A", "B", "C"}));
}

TEST_F(early_stop, rejected_solution_does_not_end_the_loop) {
  engine_.solutions["A"] = solutionOf(1, 1);
  engine_.solutions["A"].table = test::tableOfRatio(10);
  fit(*makeFitting());
  EXPECT_EQ(fitted(), (Journal{"A", "B", "C"}));
}

TEST_F(early_stop, ratio_curve_ends_it_only_when_it_falls) {
  writeFile("ratio equations.txt", "A\tx\r\nB\tx\r\nC\tx\r\n");
  engine_.otherwise = solutionOf(1, 1);
  engine_.solutions["A"] = solutionOf(1, 1);
  engine_.solutions["A"].curve = [](double x) { return x; };
  engine_.otherwise.curve = [](double x) { return -x; };
  const auto fitting = makeFitting();
  fitting->RatioCurve = true;
  fitting->LoadEquations();
  fit(*fitting);
  EXPECT_EQ(fitted(), (Journal{"A", "B"}));
}

TEST_F(early_stop, ratio_curve_below_the_limit_goes_on_even_when_it_falls) {
  engine_.otherwise = solutionOf(0.99, 0.99);
  engine_.otherwise.curve = [](double x) { return -x; };
  const auto fitting = makeFitting();
  fitting->RatioCurve = true;
  fit(*fitting);
  EXPECT_EQ(fitted(), (Journal{"A", "B", "C"}));
}

TEST_F(early_stop, equation_of_the_early_stop_may_still_fail_the_band_test) {
  engine_.solutions["B"] = solutionOf(1, 1);
  band_.band = [this](const test::FakeBandCall&, float&) { return band_.bandCalls.size() == 1; };
  const auto fitting = makeFitting();
  fit(*fitting);
  EXPECT_EQ(statusTexts().back(), "Determined bestfit equation: A");
}

}  // namespace
}  // namespace pelmora
