// SPDX-License-Identifier: MIT
#include "uncertainty/monte_carlo.h"

#include "uncertainty/refusal.h"
#include "uncertainty/sampler.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <exception>
#include <thread>
#include <vector>

namespace pelmora::uncertainty {
namespace {

// JCGM 101:2008, 7.9.4: the least number of trials for intervals of up to 99 %.
constexpr std::size_t blockTrials = 10'000;
// What is done between two looks at the stability; not the number of threads, on which no result
// may depend.
constexpr std::size_t roundBlocks = 10;

// Of a block: mean, standard deviation, low and high end.
using Summary = std::array<double, 4>;

// Sorted values, n p of them inside.
struct Interval {
  std::size_t inside, below;
};

Interval intervalOf(std::size_t n, double probability) {
  const auto inside = static_cast<std::size_t>(std::lround(static_cast<double>(n) * probability));
  const std::size_t kept = std::min(inside, n - 1);
  return {kept, (n - kept) / 2};
}

Summary summaryOf(std::span<const double> sorted, double probability) {
  double mean = 0, squares = 0;
  for (const double value : sorted) mean += value;
  mean /= static_cast<double>(sorted.size());
  for (const double value : sorted) squares += (value - mean) * (value - mean);
  const Interval interval = intervalOf(sorted.size(), probability);
  const std::size_t low = interval.below == 0 ? 0 : interval.below - 1;
  return {mean, std::sqrt(squares / static_cast<double>(sorted.size() - 1)), sorted[low],
          sorted[low + interval.inside]};
}

class Trials {
 public:
  Trials(const Model& model, Sampler sampler, std::size_t inputs, const MonteCarloOptions& options)
      : model_(model), sampler_(std::move(sampler)), inputs_(inputs), options_(options) {}

  // Blocks first ... first + count - 1.
  void run(std::size_t first, std::size_t count) {
    values_.resize((first + count) * blockTrials);
    summaries_.resize(first + count);
    std::vector<std::exception_ptr> troubles(count);
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
      for (std::size_t i = next++; i < count; i = next++) {
        try {
          runBlock(first + i);
        } catch (...) {
          troubles[i] = std::current_exception();
        }
      }
    };
    const std::size_t wanted =
        options_.threads > 0 ? options_.threads : std::thread::hardware_concurrency();
    {
      std::vector<std::jthread> helpers;
      for (std::size_t i = 1; i < std::min(wanted, count); ++i) helpers.emplace_back(work);
      work();
    }
    for (const std::exception_ptr& trouble : troubles) {
      if (trouble) std::rethrow_exception(trouble);
    }
  }

  // Whether twice the standard deviation of each averaged number is within the tolerance.
  [[nodiscard]] bool isStable() const {
    const auto blocks = static_cast<double>(summaries_.size());
    Summary mean{}, squares{};
    for (const Summary& block : summaries_) {
      for (std::size_t k = 0; k < mean.size(); ++k) mean[k] += block[k] / blocks;
    }
    for (const Summary& block : summaries_) {
      for (std::size_t k = 0; k < mean.size(); ++k)
        squares[k] += (block[k] - mean[k]) * (block[k] - mean[k]);
    }
    if (!(mean[1] > 0)) return true;
    const double digit = std::floor(std::log10(mean[1])) - options_.significantDigits + 1;
    const double tolerance = std::pow(10.0, digit) / 2;
    return std::all_of(squares.begin(), squares.end(), [&](double square) {
      return 2 * std::sqrt(square / (blocks * (blocks - 1))) <= tolerance;
    });
  }

  [[nodiscard]] MonteCarloResult result() {
    std::sort(values_.begin(), values_.end());
    const Summary all = summaryOf(values_, options_.probability);
    MonteCarloResult made{all[0], all[1], all[2], all[3], all[2], all[3], values_.size(), false};
    const std::size_t inside = intervalOf(values_.size(), options_.probability).inside;
    for (std::size_t low = 0; low + inside < values_.size(); ++low) {
      if (values_[low + inside] - values_[low] < made.shortHigh - made.shortLow) {
        made.shortLow = values_[low];
        made.shortHigh = values_[low + inside];
      }
    }
    return made;
  }

 private:
  void runBlock(std::size_t block) {
    if (options_.goOn) options_.goOn();
    RandomStream random(options_.seed, block);
    Sampler sampler = sampler_;
    std::vector<double> drawn(inputs_);
    const std::span<double> values(values_.data() + block * blockTrials, blockTrials);
    for (double& value : values) {
      sampler.draw(random, drawn);
      value = model_(drawn);
      if (!std::isfinite(value)) {
        refuse("the measurement model has no value for some of its inputs",
               "check the distributions of the inputs");
      }
    }
    std::vector<double> sorted(values.begin(), values.end());
    std::sort(sorted.begin(), sorted.end());
    summaries_[block] = summaryOf(sorted, options_.probability);
  }

  const Model& model_;
  Sampler sampler_;
  std::size_t inputs_;
  MonteCarloOptions options_;
  std::vector<double> values_;
  std::vector<Summary> summaries_;
};

}  // namespace

MonteCarloResult monteCarlo(const Model& model, std::span<const Input> inputs,
                            std::span<const Correlation> correlations,
                            const MonteCarloOptions& options) {
  if (!(options.probability > 0 && options.probability < 1)) {
    refuse("the coverage probability is not between 0 and 1", "choose one such as 0.9545");
  }
  Trials trials(model, Sampler(inputs, correlations), inputs.size(), options);
  const std::size_t most = std::max<std::size_t>(2, options.mostTrials / blockTrials);
  bool isStable = false;
  for (std::size_t done = 0; done < most && !isStable;) {
    const std::size_t count = std::min(roundBlocks, most - done);
    trials.run(done, count);
    done += count;
    isStable = trials.isStable();
  }
  MonteCarloResult result = trials.result();
  result.isStable = isStable;
  return result;
}

}  // namespace pelmora::uncertainty
