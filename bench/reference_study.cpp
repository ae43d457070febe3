// How far the reference curve is from the truth, and whether its band says so:
// reference_study [calibrations] [seed]. Prints one line for each group of simulated calibrations.
// SPDX-License-Identifier: MIT
#include "bench/reference_cases.h"
#include "solver/reference/reference_curve.h"

#include <cstdio>
#include <cstdlib>
#include <map>

namespace pelmora::study {
namespace {

using solver::reference::fitReference;

constexpr int places = 200;  // evenly in ln(x), from the lowest point to the highest
constexpr double miss = 0.003, grossMiss = 0.01;

struct Judgement {
  double worst = 0;      // distance from the truth, relative
  double bandThere = 0;  // two standard deviations
  double covered = 0;    // share of places where the truth is inside the band
  std::size_t points = 0, named = 0;
};

Judgement judge(const Case& c) {
  const auto curve = fitReference({c.x, c.y, c.fluid, {}});
  const auto [low, high] = std::minmax_element(c.x.begin(), c.x.end());
  std::vector<double> x;
  for (int k = 0; k < places; ++k) x.push_back(*low * std::pow(*high / *low, k / (places - 1.0)));
  const auto estimates = curve.evaluate(x);
  Judgement judgement;
  for (std::size_t k = 0; k < x.size(); ++k) {
    const double truth = c.truth(x[k]);
    const double off = std::abs(estimates[k].value / truth - 1);
    const double band = 2 * estimates[k].curveSd / truth;
    if (off <= band) judgement.covered += 1.0 / places;
    if (off > judgement.worst) {
      judgement.worst = off;
      judgement.bandThere = band;
    }
  }
  judgement.points = c.x.size();
  judgement.named = curve.distrusted().size();
  return judgement;
}

std::vector<std::string> groupsOf(const Case& c) {
  const char* flows = c.flows < 8    ? "flows  5 to 7"
                      : c.flows < 13 ? "flows  8 to 12"
                                     : "flows 13 to 25";
  return {"all",
          "shape: " + c.shape,
          flows,
          std::to_string(c.fluids) + (c.fluids == 1 ? " fluid" : " fluids"),
          c.repeats > 1 ? "repeats" : "no repeats",
          c.growing ? "noise grows" : "noise even"};
}

void print(const std::string& group, const std::vector<Judgement>& all) {
  const auto share = [&](auto counts) {
    return 100.0 * static_cast<double>(std::count_if(all.begin(), all.end(), counts)) /
           static_cast<double>(all.size());
  };
  std::vector<double> worst;
  double covered = 0;
  std::size_t points = 0, named = 0;
  for (const Judgement& j : all) {
    worst.push_back(100 * j.worst);
    covered += 100 * j.covered / static_cast<double>(all.size());
    points += j.points;
    named += j.named;
  }
  std::nth_element(worst.begin(), worst.begin() + static_cast<std::ptrdiff_t>(worst.size() / 2),
                   worst.end());
  std::printf("| %-21s | %5zu | %5.2f | %5.2f | %6.3f | %5.1f | %5.2f | %zu of %zu |\n",
              group.c_str(), all.size(), share([](const Judgement& j) { return j.worst > miss; }),
              share([](const Judgement& j) { return j.worst > grossMiss; }),
              worst[worst.size() / 2], covered,
              share([](const Judgement& j) { return j.worst > miss && j.bandThere < miss; }), named,
              points);
}

}  // namespace
}  // namespace pelmora::study

int main(int count, char** arguments) {
  using namespace pelmora::study;
  const int calibrations = count > 1 ? std::atoi(arguments[1]) : 2000;
  const auto seed = static_cast<std::uint64_t>(count > 2 ? std::atoi(arguments[2]) : 1);
  std::map<std::string, std::vector<Judgement>> groups;
  for (int i = 0; i < calibrations; ++i) {
    const Case c = CaseMaker(seed * 1000003 + static_cast<std::uint64_t>(i)).make();
    const Judgement judgement = judge(c);
    for (const std::string& group : groupsOf(c)) groups[group].push_back(judgement);
  }
  std::printf("| group | n | > 0.3 %% | > 1 %% | median %% | in band %% | silent %% | named |\n");
  std::printf("|---|---|---|---|---|---|---|---|\n");
  for (const auto& [group, all] : groups) print(group, all);
}
