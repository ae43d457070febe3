// Whether a solution's residuals let it pass.
// SPDX-License-Identifier: MIT
#include "tests/component/data_fit/fit_fixture.h"

#include <cmath>

namespace pelmora {
namespace {

class residual_test : public FitFixture {
 protected:
  residual_test() { useEquations({"A"}); }

  // Observed and residual values of the fitted table.
  bool accepts(std::vector<double> observed, std::vector<double> residuals) {
    engine_.otherwise.table = {{}, {}, {std::vector<double>(observed.size()), observed, residuals}};
    const auto fitting = makeFitting();
    fitting->IgnoreResiduals = ignoreResiduals_;
    fit(*fitting);
    EXPECT_EQ(boxes(), test::Journal());
    return !isEmpty_;
  }

  bool ignoreResiduals_ = false;
};

TEST_F(residual_test, ratio_below_ten_passes) {
  EXPECT_TRUE(accepts({2}, {2 * std::nextafter(10.0, 0.0)}));
}

TEST_F(residual_test, ratio_of_ten_is_rejected) { EXPECT_FALSE(accepts({2}, {20})); }

TEST_F(residual_test, negative_ratio_counts_by_its_magnitude) {
  EXPECT_FALSE(accepts({2}, {-20}));
  EXPECT_FALSE(accepts({-2}, {20}));
  EXPECT_TRUE(accepts({2}, {-19}));
}

TEST_F(residual_test, any_row_may_be_the_largest) {
  EXPECT_FALSE(accepts({1, 1, 1}, {0, 11, 0}));
  EXPECT_FALSE(accepts({1, 1, 1}, {0, 0, -11}));
  EXPECT_FALSE(accepts({1, 1, 1}, {11, 0, 0}));
}

TEST_F(residual_test, is_a_ratio_and_not_a_difference) { EXPECT_TRUE(accepts({1000}, {5000})); }

TEST_F(residual_test, ignored_residuals_reject_nothing) {
  ignoreResiduals_ = true;
  EXPECT_TRUE(accepts({2}, {20}));
  EXPECT_TRUE(accepts({2}, {-2e9}));
}

// The comparison starts with the first row, and nothing is larger than NaN.
TEST_F(residual_test, first_ratio_that_is_no_number_hides_the_others) {
  EXPECT_TRUE(accepts({1, 1}, {std::nan(""), 50}));
}

TEST_F(residual_test, later_ratio_that_is_no_number_is_passed_over) {
  EXPECT_FALSE(accepts({1, 1, 1}, {1, std::nan(""), 50}));
}

}  // namespace
}  // namespace pelmora
