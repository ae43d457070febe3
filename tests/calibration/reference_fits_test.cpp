// Whole fits of real and simulated series, from a curve database, against figures computed
// elsewhere: QR on Chebyshev polynomials of scaled log10 x, in a program that shares nothing with
// this one. Each figure has the digits with which it was recorded. SPDX-License-Identifier: MIT
#include "tests/support/csv_table.h"
#include "tests/support/scratch_folder.h"

#include <pelmora/pelmora.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <ostream>

namespace pelmora::test {
namespace {

using Points = std::function<PointArray()>;

PointArray pick(const std::string& file, const std::string& x, const std::string& y,
                const std::function<bool(const CsvRow&)>& wanted) {
  std::vector<std::pair<double, double>> found;
  for (const CsvRow& row : readCsv(exampleData(file))) {
    if (wanted(row)) found.emplace_back(std::stod(row.at(x)), std::stod(row.at(y)));
  }
  PointArray points(found.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    points(i, 0) = found[i].first;
    points(i, 1) = found[i].second;
  }
  return points;
}

Points vortexSets(const std::string& sets) {
  return [sets] {
    return pick("real-vortex-shedding-strouhal.csv", "roshko", "strouhal",
                [&](const CsvRow& row) { return sets.find(row.at("set")) != std::string::npos; });
  };
}

Points errorCurve() {
  return [] {
    return pick("real-flow-meter-error-11pt.csv", "flow_rate", "strouhal_relative",
                [](const CsvRow&) { return true; });
  };
}

Points friction(double aboveReynolds) {
  return [aboveReynolds] {
    return pick("real-pipe-friction-1914.csv", "reynolds", "friction_coefficient",
                [&](const CsvRow& row) { return std::stod(row.at("reynolds")) > aboveReynolds; });
  };
}

Points job(const std::string& id, const std::string& x, const std::string& y) {
  return [=] {
    return pick("stand-dual-rotor-truth.csv", x, y,
                [&](const CsvRow& row) { return row.at("JobRecordID") == id; });
  };
}

// Jobs 1001 and 1002 together; fluid 1 only above `fluid1Above`.
Points bothFluids(const std::string& y, double fluid1Above) {
  return [=] {
    return pick("stand-dual-rotor-truth.csv", "roshko_sum", y, [&](const CsvRow& row) {
      if (row.at("JobRecordID") == "1002") return true;
      return row.at("JobRecordID") == "1001" && std::stod(row.at("roshko_sum")) > fluid1Above;
    });
  };
}

constexpr double endOfFluid2 = 96.4;  // its largest roshko_sum is 96.3

std::string logPolynomial(int order) {
  std::string expression = "a";
  char parameter = 'b';
  for (int power = 1; power <= order; ++power, ++parameter) {
    expression += std::string("+") + parameter + "*log(x)^" + std::to_string(power);
  }
  return expression;
}

// The largest residual in per cent of the fitted value, from the parameters of a polynomial in
// log10 x.
double largestResidualPercent(const EquationOutcome& equation, const PointArray& points) {
  double largest = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const long double logX = std::log10(static_cast<long double>(points(i, 0)));
    long double fitted = 0;
    for (auto p = equation.Parameters.rbegin(); p != equation.Parameters.rend(); ++p) {
      fitted = fitted * logX + p->Value;
    }
    const auto ratio = static_cast<double>((points(i, 1) - fitted) / fitted);
    largest = std::max(largest, 100 * std::abs(ratio));
  }
  return largest;
}

struct ReferenceFit {
  const char* name;
  Points points;
  std::size_t count;
  int order;
  double adjustedRSquared;  // six decimals
  double largestPercent;    // with the digits that `percentUnit` tells
  double percentUnit;
};

void PrintTo(const ReferenceFit& fit, std::ostream* stream) { *stream << fit.name; }

class reference_fits : public testing::TestWithParam<ReferenceFit> {};

TEST_P(reference_fits, have_the_recorded_statistics) {
  const ReferenceFit& reference = GetParam();
  const ScratchFolder folder;
  std::ofstream(folder.file("equations.txt"))
      << "one\t" << logPolynomial(reference.order) << "\r\n";
  createCurveDatabase(folder.file("curves.db"));
  RawData data;
  platform().componentFolder = folder.path().string();
  data.dbDirSetByString(folder.file("curves.db"));
  data.setMeterSN("M");
  const PointArray points = reference.points();
  ASSERT_EQ(points.size(), reference.count);
  ASSERT_TRUE(data.SetRaw("S", "M", points, 0, false));
  data.BandPercent(1000);  // the statistics are asked for, not the band test
  bool ArrayIsEmpty = true;
  double xMin = points(0, 0);
  double xMax = xMin;
  for (const double x : points.column(0)) {
    xMin = std::min(xMin, x);
    xMax = std::max(xMax, x);
  }

  data.determineFittedCurve("S", "M", ArrayIsEmpty, xMin, xMax, "Roshko", "Strouhal", false);

  const FitOutcome fit = data.LastFit();
  ASSERT_EQ(fit.Equations.size(), 1U);
  const EquationOutcome& equation = fit.Equations.front();
  EXPECT_NEAR(equation.Statistics.AdjustedRSquared, reference.adjustedRSquared, 0.51e-6)
      << equation.Reason;
  EXPECT_NEAR(largestResidualPercent(equation, points), reference.largestPercent,
              0.51 * reference.percentUnit);
}

std::string nameOf(const testing::TestParamInfo<ReferenceFit>& fit) { return fit.param.name; }

INSTANTIATE_TEST_SUITE_P(
    of, reference_fits,
    testing::Values(
        ReferenceFit{"vortex_2_order_6", vortexSets("2"), 57, 6, 0.999661, 0.97, 0.01},
        ReferenceFit{"vortex_2_order_8", vortexSets("2"), 57, 8, 0.999716, 0.96, 0.01},
        ReferenceFit{"vortex_2_order_10", vortexSets("2"), 57, 10, 0.999754, 0.96, 0.01},
        ReferenceFit{"vortex_2_and_3_order_6", vortexSets("23"), 83, 6, 0.999406, 1.01, 0.01},
        ReferenceFit{"vortex_2_and_3_order_10", vortexSets("23"), 83, 10, 0.999548, 1.08, 0.01},
        ReferenceFit{"error_curve_order_6", errorCurve(), 11, 6, 0.999501, 0.056, 0.001},
        ReferenceFit{"error_curve_order_8", errorCurve(), 11, 8, 0.999940, 0.017, 0.001},
        ReferenceFit{"turbulent_friction_order_6", friction(4000), 235, 6, 0.997186, 4.5, 0.1},
        ReferenceFit{"turbulent_friction_order_10", friction(4000), 235, 10, 0.997182, 4.1, 0.1},
        ReferenceFit{"all_friction_order_6", friction(0), 323, 6, 0.998641, 221, 1},
        ReferenceFit{"all_friction_order_8", friction(0), 323, 8, 0.998863, 33, 1},
        ReferenceFit{"all_friction_order_10", friction(0), 323, 10, 0.999007, 142, 1}),
    nameOf);

INSTANTIATE_TEST_SUITE_P(
    of_stand_jobs, reference_fits,
    testing::Values(
        ReferenceFit{"job_1001_A_order_6", job("1001", "roshko_a", "strouhal_a"), 24, 6, 0.999932,
                     0.047, 0.001},
        ReferenceFit{"job_1001_A_order_8", job("1001", "roshko_a", "strouhal_a"), 24, 8, 0.999944,
                     0.043, 0.001},
        ReferenceFit{"job_1001_A_order_10", job("1001", "roshko_a", "strouhal_a"), 24, 10, 0.999936,
                     0.044, 0.001},
        ReferenceFit{"job_1001_ratio_order_8", job("1001", "roshko_sum", "quotient_b_over_a"), 24,
                     8, 0.999492, 0.028, 0.001},
        ReferenceFit{"job_1002_A_order_6", job("1002", "roshko_a", "strouhal_a"), 24, 6, 0.999958,
                     0.122, 0.001},
        ReferenceFit{"job_1002_A_order_10", job("1002", "roshko_a", "strouhal_a"), 24, 10, 0.999963,
                     0.067, 0.001},
        ReferenceFit{"job_1003_A_order_6", job("1003", "roshko_a", "strouhal_a"), 20, 6, 0.999869,
                     0.121, 0.001},
        ReferenceFit{"job_1003_A_order_10", job("1003", "roshko_a", "strouhal_a"), 20, 10, 0.999932,
                     0.079, 0.001},
        ReferenceFit{"job_1007_A_order_8", job("1007", "roshko_a", "strouhal_a"), 24, 8, 0.987705,
                     0.81, 0.01},
        ReferenceFit{"job_1008_A_order_10", job("1008", "roshko_a", "strouhal_a"), 12, 10, 0.999955,
                     0.028, 0.001},
        ReferenceFit{"job_1009_B_order_5", job("1009", "roshko_b", "strouhal_b"), 30, 5, 0.999264,
                     0.188, 0.001},
        ReferenceFit{"job_1009_B_order_10", job("1009", "roshko_b", "strouhal_b"), 30, 10, 0.999579,
                     0.145, 0.001},
        ReferenceFit{"both_fluids_nothing_cut_order_8", bothFluids("strouhal_a_plus_b", 0), 48, 8,
                     0.937674, 4.4, 0.1},
        ReferenceFit{"both_fluids_cut_order_8", bothFluids("strouhal_a_plus_b", endOfFluid2), 40, 8,
                     0.999826, 0.169, 0.001},
        ReferenceFit{"both_fluids_ratio_cut_order_10", bothFluids("quotient_b_over_a", endOfFluid2),
                     40, 10, 0.999846, 0.067, 0.001}),
    nameOf);

}  // namespace
}  // namespace pelmora::test
