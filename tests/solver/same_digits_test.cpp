// A whole fit has the same bits whatever instructions the processor offers.
// SPDX-License-Identifier: MIT
#include "solver/arithmetic/point_kernels.h"
#include "bench/catalogue_workload.h"
#include "tests/solver/fit_helpers.h"
#include "tests/solver/strd_sets.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

namespace pelmora::test {
namespace {

// Bits by what they belong to.
using Digits = std::vector<std::pair<std::string, std::uint64_t>>;

void addFit(Digits& digits, const std::string& name, const FitModel& model,
            const std::vector<double>& grid) {
  const auto add = [&](const std::string& what, double value) {
    digits.emplace_back(name + ": " + what, std::bit_cast<std::uint64_t>(value));
  };
  add("solution found", model.solutionFound() ? 1 : 0);
  for (const FitParameter& parameter : model.parameters()) {
    add(parameter.Name, parameter.Value);
    add("standard error of " + parameter.Name, parameter.StandardError);
  }
  const FitStatistics s = model.statistics();
  for (const double value :
       {s.ResidualStandardError, s.ResidualSumOfSquares, s.RSquared, s.AdjustedRSquared,
        s.RegressionSumOfSquares, static_cast<double>(s.Iterations)}) {
    add("statistics", value);
  }
  for (const double value : model.covariance()) add("covariance", value);
  for (const double value : model.evaluate(grid)) add("curve", value);
  for (const double value : model.standardErrorsOfCurve(grid)) add("error of the curve", value);
}

Digits digitsOfCatalogue() {
  Digits digits;
  for (const double low : {40.0, 2.0, 0.4}) {
    const auto points = bench::workload(500, low);
    const auto data = dataOf(points.x, points.y);
    const auto engine = createSolver();
    for (const auto& [name, expression] : bench::catalogue()) {
      const auto model = engine->createModel();
      model->Definition = {name, expression};
      model->attach(data);
      addFit(digits, name, *model, bench::workload(40, low).x);
    }
  }
  return digits;
}

// For the time of the tests.
constexpr std::size_t mostPoints = 170;

Digits digitsOfCertifiedSets() {
  Digits digits;
  for (const bool linear : {true, false}) {
    for (const StrdSet& set : strdSets(linear)) {
      if (!set.singleX || set.y.size() > mostPoints) continue;
      addFit(digits, set.name, *fitOf(set.model, set.x[0], set.y, set.start1, 1), set.x[0]);
    }
  }
  return digits;
}

Digits digitsOfAll() {
  Digits digits = digitsOfCatalogue();
  for (auto& digit : digitsOfCertifiedSets()) digits.push_back(std::move(digit));
  return digits;
}

void expectSame(const Digits& found, const Digits& wanted) {
  ASSERT_EQ(found.size(), wanted.size());
  for (std::size_t k = 0; k < found.size(); ++k) {
    EXPECT_EQ(std::bit_cast<double>(found[k].second), std::bit_cast<double>(wanted[k].second))
        << found[k].first;
  }
}

TEST(same_digits, whole_fits_agree_on_every_set_of_instructions) {
  const auto runnable = solver::runnablePointKernels();
  const Digits best = digitsOfAll();
  ASSERT_GT(best.size(), 1000U);
  for (const solver::PointKernels* kernels : runnable) {
    solver::forcePointKernels(kernels);
    expectSame(digitsOfAll(), best);
  }
  solver::forcePointKernels(nullptr);
}

// The C library chooses its own exp, log and sin by the processor; a child process is told to take
// the plainest ones.
constexpr const char* fileForDigits = "PELMORA_FILE_FOR_DIGITS";
constexpr const char* plainLibrary =
    "GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX512F,-AVX2,-AVX,-FMA,-FMA4,-AVX2_Usable,-FMA_Usable,-FMA4_"
    "Usable";

TEST(same_digits, whole_fits_agree_whatever_the_c_library_chooses) {
  const Digits here = digitsOfAll();
  if (const char* const path = std::getenv(fileForDigits)) {  // this is the child
    std::ofstream file(path);
    for (const auto& [name, bits] : here) file << bits << "\t" << name << "\n";
    return;
  }
  const std::string path = testing::TempDir() + "pelmora_digits_" + std::to_string(getpid());
  const std::string command =
      std::string("env ") + plainLibrary + " " + fileForDigits + "=" + path + " /proc/" +
      std::to_string(getpid()) +
      "/exe --gtest_filter=same_digits.whole_fits_agree_whatever_the_c_library_chooses > /dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  Digits plain;
  std::ifstream file(path);
  std::uint64_t bits = 0;
  for (std::string name; file >> bits && file.ignore() && std::getline(file, name);)
    plain.emplace_back(name, bits);
  std::remove(path.c_str());
  expectSame(plain, here);
}

}  // namespace
}  // namespace pelmora::test
