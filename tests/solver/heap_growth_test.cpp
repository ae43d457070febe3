// Repeated fits give back all that they take: a program of its own, whose operator new counts.
// SPDX-License-Identifier: MIT
#include "bench/catalogue_workload.h"
#include "tests/solver/fit_helpers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long long> live_blocks{0}, live_bytes{0};
constexpr std::size_t head = alignof(std::max_align_t);  // before each block: its size

}  // namespace

void* operator new(std::size_t size) {
  void* const block = std::malloc(head + size);
  if (block == nullptr) throw std::bad_alloc();
  *static_cast<std::size_t*>(block) = size;
  ++live_blocks;
  live_bytes += static_cast<long long>(size);
  return static_cast<char*>(block) + head;
}
void operator delete(void* block) noexcept {
  if (block == nullptr) return;
  void* const whole = static_cast<char*>(block) - head;
  --live_blocks;
  live_bytes -= static_cast<long long>(*static_cast<std::size_t*>(whole));
  std::free(whole);
}
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace pelmora::test {
namespace {

constexpr int rounds = 200;

struct Heap {
  long long blocks = live_blocks, bytes = live_bytes;
  bool operator==(const Heap&) const = default;
};

void fitAndAsk(FitEngine& engine, const std::string& expression,
               const std::shared_ptr<const FitData>& data) {
  const auto model = engine.createModel();
  model->Definition = {"any", expression};
  model->Settings.First = 20;  // enough to take and give back; the answer does not matter here
  model->Settings.Second = 1;
  model->attach(data);
  const std::vector<double> grid{50, 500, 5000};
  (void)model->parameters();
  (void)model->covariance();
  (void)model->evaluate(grid);
  (void)model->standardErrorsOfCurve(grid);
  (void)model->results();
  (void)model->failureReason();
}

std::shared_ptr<const FitData> pointsFrom(double low) {
  const auto points = bench::workload(100, low);
  return dataOf(points.x, points.y);
}

void fitCatalogue(FitEngine& engine, const std::shared_ptr<const FitData>& data) {
  for (const auto& [name, expression] : bench::catalogue()) fitAndAsk(engine, expression, data);
}

TEST(heap_growth, what_is_kept_is_counted) {
  const Heap before;
  const auto kept = std::make_unique<double[]>(100);
  const Heap after;
  EXPECT_EQ(after.blocks, before.blocks + 1);
  EXPECT_EQ(after.bytes, before.bytes + 800);
}

TEST(heap_growth, an_engine_gives_back_all_it_took) {
  const auto data = pointsFrom(40);
  fitCatalogue(*createSolver(), data);  // tables that live as long as the program
  const Heap before;
  for (int round = 0; round < rounds; ++round) fitCatalogue(*createSolver(), data);
  EXPECT_EQ(Heap(), before);
}

TEST(heap_growth, an_engine_that_lives_on_keeps_the_last_points_only) {
  const auto engine = createSolver();
  const auto some = pointsFrom(40), others = pointsFrom(4);
  fitCatalogue(*engine, some);
  const Heap before;
  for (int round = 0; round < rounds; ++round) {
    fitCatalogue(*engine, others);
    fitCatalogue(*engine, some);
  }
  EXPECT_EQ(Heap(), before);
}

TEST(heap_growth, failures_and_searches_leave_nothing_behind) {
  const auto data = pointsFrom(40);
  const std::vector<std::string> expressions{"a+b*log(x", "a+b*x+c*x", "ln(a-x)*b", "a+b/(x+c)",
                                             "a*x+b*sqrt(x)"};
  const auto engine = createSolver();
  for (const auto& expression : expressions) fitAndAsk(*engine, expression, data);
  const Heap before;
  for (int round = 0; round < 3; ++round) {
    for (const auto& expression : expressions) fitAndAsk(*engine, expression, data);
  }
  EXPECT_EQ(Heap(), before);
}

}  // namespace
}  // namespace pelmora::test
