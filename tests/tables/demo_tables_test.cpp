// Tables of the demonstration meter's Rotor Sum: what optimal knots win.
// SPDX-License-Identifier: MIT
#include "solver/solver.h"
#include "tables/placed_table.h"
#include "tests/support/csv_table.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace pelmora::tables {
namespace {

// Rotor Sum of meter M1 in both fluids, without the points of the thinner fluid that the merge
// cuts at its slow end.
std::shared_ptr<const FitData> rotorSum() {
  auto data = std::make_shared<FitData>();
  data->Names = data->Symbols = {"X", "Y"};
  data->Columns.resize(2);
  for (const test::CsvRow& row : test::readCsv(test::exampleData("stand-dual-rotor-truth.csv"))) {
    const std::string& job = row.at("JobRecordID");
    const double roshko = std::stod(row.at("roshko_sum").empty() ? "0" : row.at("roshko_sum"));
    const bool isTrailing = job == "1001" && roshko < 100;
    if ((job != "1001" && job != "1002") || isTrailing) continue;
    data->Columns[0].push_back(roshko);
    data->Columns[1].push_back(std::stod(row.at("quotient_a_over_b")));
  }
  return data;
}

class RotorSum {
 public:
  RotorSum() : engine_(createSolver()), model_(engine_->createModel()) {
    const auto data = rotorSum();
    for (const double x : data->Columns[0]) {
      low_ = std::min(low_, x);
      high_ = std::max(high_, x);
    }
    std::string expression = "a";
    for (int k = 1; k <= 8; ++k)
      expression +=
          "+" + std::string(1, static_cast<char>('a' + k)) + "*log(x)^" + std::to_string(k);
    model_->Definition = {"Polynomial 8th Order", expression};
    model_->attach(data);
    EXPECT_TRUE(model_->solutionFound()) << model_->failureReason();
  }
  [[nodiscard]] Curve curve() const {
    return [this](std::span<const double> x) { return model_->sampleCurve(x); };
  }
  [[nodiscard]] Range range() const { return {low_, high_}; }

 private:
  std::unique_ptr<FitEngine> engine_;
  std::unique_ptr<FitModel> model_;
  double low_ = 1e300, high_ = 0;
};

TEST(demo_tables, meet_the_limits_of_flow_computers) {
  const RotorSum sum;
  const auto percent = [&](std::size_t points, Reading reading) {
    return placeTable(sum.curve(), sum.range(), points, reading).error.percent;
  };
  EXPECT_LE(percent(16, Reading::linear), 0.05);
  EXPECT_LE(percent(16, Reading::logarithmic), 0.025);
  EXPECT_LE(percent(40, Reading::linear), 0.008);
}

TEST(demo_tables, read_far_better_than_evenly_spaced_ones) {
  const RotorSum sum;
  for (const Reading reading : {Reading::linear, Reading::logarithmic}) {
    const double even = evenTable(sum.curve(), sum.range(), 16, reading).error.percent;
    const double placed = placeTable(sum.curve(), sum.range(), 16, reading).error.percent;
    EXPECT_GT(even / placed, 5) << readingName(reading) << ": " << even << " to " << placed;
  }
}

TEST(demo_tables, read_best_by_cubics) {
  const RotorSum sum;
  const double even = evenTable(sum.curve(), sum.range(), 16, Reading::cubic).error.percent;
  const double placed = placeTable(sum.curve(), sum.range(), 16, Reading::cubic).error.percent;
  EXPECT_LT(placed, 0.6 * even) << even;
  EXPECT_LT(placed, 0.02);
}

}  // namespace
}  // namespace pelmora::tables
