// SPDX-License-Identifier: MIT
#include "tables/table_reader.h"

#include <pelmora/calibration/failure.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace pelmora::tables {
namespace {

const std::vector<double> x{1, 10, 100, 1000, 10000};
const std::vector<double> y{5, 7, 6, 9, 8};

TEST(table_reader, passes_through_its_points) {
  for (const Reading reading : {Reading::linear, Reading::logarithmic, Reading::cubic}) {
    const TableReader read(x, y, reading);
    for (std::size_t i = 0; i < x.size(); ++i)
      EXPECT_NEAR(read(x[i]), y[i], 1e-12) << readingName(reading);
  }
}

TEST(table_reader, reads_between_its_points) {
  EXPECT_DOUBLE_EQ(TableReader(x, y, Reading::linear)(55), 6.5);
  EXPECT_NEAR(TableReader(x, y, Reading::logarithmic)(std::sqrt(1000.0)), 6.5, 1e-12);
  // Lagrange at the middle of four evenly spaced points: (-5 + 9 x 7 + 9 x 6 - 9) / 16.
  EXPECT_NEAR(TableReader(x, y, Reading::cubic)(std::sqrt(1000.0)), 103.0 / 16, 1e-12);
}

TEST(table_reader, goes_on_beyond_its_ends) {
  EXPECT_DOUBLE_EQ(TableReader(x, y, Reading::linear)(0.1), 5 - 0.2);
  EXPECT_NEAR(TableReader(x, y, Reading::logarithmic)(1e5), 7, 1e-12);
}

TEST(table_reader, refuses_tables_that_cannot_be_read) {
  using calibration::BadData;
  const auto make = [](std::vector<double> atX, std::vector<double> atY, Reading reading) {
    return TableReader(atX, atY, reading);
  };
  EXPECT_THROW((void)make({1}, {1}, Reading::linear), BadData);
  EXPECT_THROW((void)make({1, 2, 3}, {1, 2, 3}, Reading::cubic), BadData);
  EXPECT_THROW((void)make({1, 2}, {1}, Reading::linear), BadData);
  EXPECT_THROW((void)make({2, 1}, {1, 1}, Reading::linear), BadData);
  EXPECT_THROW((void)make({0, 1}, {1, 1}, Reading::logarithmic), BadData);
  EXPECT_THROW((void)make({1, 2}, {1, std::nan("")}, Reading::linear), BadData);
}

}  // namespace
}  // namespace pelmora::tables
