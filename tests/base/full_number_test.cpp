// SPDX-License-Identifier: MIT
#include "base/full_number.h"

#include <gtest/gtest.h>

namespace pelmora {
namespace {

// C's "%.17g" of the same numbers.
TEST(full_number, has_every_digit_that_tells_it_from_its_neighbours) {
  EXPECT_EQ(fullNumberText(0.1), "0.10000000000000001");
  EXPECT_EQ(fullNumberText(1300), "1300");
  EXPECT_EQ(fullNumberText(1e300), "1.0000000000000001e+300");
  EXPECT_EQ(fullNumberText(-2.5e-7), "-2.4999999999999999e-07");
}

}  // namespace
}  // namespace pelmora
