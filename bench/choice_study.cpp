// How far stored curves are from the truth by each rule of the choice:
// choice_study [calibrations] [seed] [held-out | other-meters]. Prints two tables in Markdown.
// SPDX-License-Identifier: MIT
#include "bench/held_out_cases.h"
#include "bench/other_meter_cases.h"
#include "bench/reference_cases.h"

#include <pelmora/calibration/fit.h>
#include <pelmora/calibration/fitted_curve.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>

namespace pelmora::study {
namespace {

using calibration::Choice;
using calibration::Fit;

constexpr int places = 200;  // evenly in ln(x), over the whole range of the table
constexpr double missPercent = 0.3, grossPercent = 1;

struct Table {
  PointArray points;
  std::vector<double> band;  // half-widths
  std::size_t warnings = 0;
};

struct Judgement {
  bool isStored = false;
  double worst = 0, bandThere = 0;  // per cent
  double covered = 0;
  std::size_t warnings = 0;

  [[nodiscard]] bool misses() const { return isStored && worst > missPercent; }
  // Neither a warning nor the band said so.
  [[nodiscard]] bool isSilent() const {
    return misses() && warnings == 0 && bandThere < missPercent;
  }
};

std::vector<double> placesOver(double low, double high) {
  std::vector<double> at;
  for (int k = 0; k < places; ++k)
    at.push_back(std::clamp(low * std::pow(high / low, k / (places - 1.0)), low, high));
  return at;
}

// Read as a flow computer reads the table: linearly.
Judgement judge(const Case& c, const std::optional<Table>& table) {
  Judgement judgement;
  if (!table) return judgement;
  judgement.isStored = true;
  judgement.warnings = table->warnings;
  const auto x = table->points.column(0), y = table->points.column(1);
  std::size_t row = 0;
  for (const double at : placesOver(x.front(), x.back())) {
    while (row + 2 < x.size() && at > x[row + 1]) ++row;
    const double share = (at - x[row]) / (x[row + 1] - x[row]), truth = c.truth(at);
    const double off = 100 * std::abs((y[row] * (1 - share) + y[row + 1] * share) / truth - 1);
    const double band = table->band.empty()
                            ? 0
                            : 100 *
                                  (table->band[row] * (1 - share) + table->band[row + 1] * share) /
                                  std::abs(truth);
    if (off <= band) judgement.covered += 100.0 / places;
    if (off > judgement.worst) judgement.worst = off, judgement.bandThere = band;
  }
  return judgement;
}

// The curve itself against the U that is stated for it without a stand.
Judgement judgeStated(const Case& c, const Fit& fit) {
  Judgement judgement;
  if (!fit.accepted()) return judgement;
  judgement.isStored = true;
  judgement.warnings = fit.outcome.Warnings.size();
  const calibration::FittedCurve curve(fit);
  const std::vector<double> at = placesOver(curve.lowestRoshko(), curve.highestRoshko());
  for (const calibration::CurveEstimate& estimate : curve.at(at)) {
    const double truth = c.truth(estimate.roshko);
    const double off = 100 * std::abs(estimate.strouhal / truth - 1);
    const double stated = estimate.budget ? 100 * estimate.budget->expanded / std::abs(truth) : 0;
    if (off <= stated) judgement.covered += 100.0 / places;
    if (off > judgement.worst) judgement.worst = off, judgement.bandThere = stated;
  }
  return judgement;
}

std::optional<Table> tableOf(const Fit& fit) {
  if (!fit.accepted()) return std::nullopt;
  return Table{fit.curve, fit.outcome.ConfidenceHalfWidth, fit.outcome.Warnings.size()};
}

std::optional<Table> referenceOf(const Fit& fit) {
  if (!fit.trust) return std::nullopt;
  Table table{PointArray(fit.trust->table.size()), {}, 0};
  for (std::size_t i = 0; i < fit.trust->table.size(); ++i) {
    const auto& at = fit.trust->table[i];
    table.points(i, 0) = at.roshko;
    table.points(i, 1) = at.strouhal;
    table.band.push_back(2 * at.curveSd);
  }
  return table;
}

// Of the polynomials of order 1 to 10 the one with the smallest AICc, without any test; its points
// are those of the trusted fit.
std::optional<Table> aiccOf(const Fit& fit) {
  const EquationOutcome* best = nullptr;
  for (const EquationOutcome& equation : fit.outcome.Equations) {
    if (!equation.Name.starts_with("Polynomial") || !equation.Aicc || equation.Predicted.empty())
      continue;
    if (best == nullptr || *equation.Aicc < *best->Aicc) best = &equation;
  }
  if (best == nullptr) return std::nullopt;
  const calibration::EquationList one =
      calibration::EquationList::parse(best->Name + "\t" + best->Expression, "the study");
  const std::array<PointArray, 1> points{fit.fitted};
  return tableOf(
      calibration::fit(points, {.band = 100, .choice = Choice::adjustedR2, .equations = one}));
}

constexpr std::array<const char*, 5> rules{"adjusted-r2", "AICc", "reference", "trusted",
                                           "trusted, stated U"};
constexpr std::size_t trustedRule = 3;
using Judgements = std::array<Judgement, rules.size()>;

struct Tally {
  std::vector<Judgements> all;
  std::map<std::string, int> chosen, kinds, falseKinds;
};

Judgements judgeAll(const Case& c, Tally& tally) {
  std::vector<PointArray> parts;
  for (int f = 0; f < c.fluids; ++f) {
    std::vector<std::size_t> own;
    for (std::size_t i = 0; i < c.x.size(); ++i) {
      if (c.fluid[i] == f) own.push_back(i);
    }
    PointArray part(own.size());
    for (std::size_t i = 0; i < own.size(); ++i) {
      part(i, 0) = c.x[own[i]];
      part(i, 1) = c.y[own[i]];
    }
    parts.push_back(std::move(part));
  }
  const Fit trusted = calibration::fit(parts, {.choice = Choice::trusted});
  Judgements judged{judge(c, tableOf(calibration::fit(parts, {.choice = Choice::adjustedR2}))),
                    judge(c, aiccOf(trusted)), judge(c, referenceOf(trusted)),
                    judge(c, tableOf(trusted)), judgeStated(c, trusted)};
  ++tally.chosen[trusted.accepted() ? trusted.chosen().Name : "none: " + trusted.reason()];
  for (const CurveWarning& warning : trusted.outcome.Warnings) {
    const std::string kind = "kind " + std::to_string(static_cast<int>(warning.Kind));
    ++tally.kinds[kind];
    if (!judged[trustedRule].misses()) ++tally.falseKinds[kind];
  }
  return judged;
}

std::vector<std::string> groupsOf(const Case& c) {
  const char* flows = c.flows < 8    ? "flows  5 to 7"
                      : c.flows < 13 ? "flows  8 to 12"
                                     : "flows 13 to 25";
  return {"shape: " + c.shape, flows,
          std::to_string(c.fluids) + (c.fluids == 1 ? " fluid" : " fluids"),
          c.repeats > 1 ? "repeats" : "no repeats", c.growing ? "noise grows" : "noise even"};
}

void printRow(const std::string& name, const std::vector<Judgements>& all, std::size_t rule) {
  std::vector<double> worst;
  double covered = 0;
  std::size_t refused = 0, misses = 0, gross = 0, silent = 0, falseWarnings = 0;
  for (const Judgements& judgements : all) {
    const Judgement& j = judgements[rule];
    if (!j.isStored) {
      ++refused;
      continue;
    }
    worst.push_back(j.worst);
    covered += j.covered;
    misses += j.misses();
    gross += j.worst > grossPercent;
    silent += j.isSilent();
    falseWarnings += !j.misses() && j.warnings > 0;
  }
  const auto stored = static_cast<double>(std::max<std::size_t>(worst.size(), 1));
  const auto percent = [](std::size_t count, double of) {
    return 100 * static_cast<double>(count) / std::max(of, 1.0);
  };
  const auto middle = worst.begin() + static_cast<std::ptrdiff_t>(worst.size() / 2);
  std::nth_element(worst.begin(), middle, worst.end());
  std::printf("| %-22s | %5zu | %5.2f | %5.2f | %5.2f | %6.3f | %5.1f | %5.2f | %5.1f |\n",
              name.c_str(), all.size(), percent(refused, static_cast<double>(all.size())),
              percent(misses, stored), percent(gross, stored), worst.empty() ? 0 : *middle,
              covered / stored, percent(silent, stored),
              percent(falseWarnings, stored - static_cast<double>(misses)));
}

void printHead(const char* first) {
  std::printf(
      "\n| %s | n | refused %% | > 0.3 %% | > 1 %% | median %% | in band %% | silent %% | "
      "false warnings %% |\n|---|---|---|---|---|---|---|---|---|\n",
      first);
}

template <class Maker>
void study(int calibrations, std::uint64_t seed) {
  Tally tally;
  std::map<std::string, std::vector<Judgements>> groups;
  for (int i = 0; i < calibrations; ++i) {
    const Case c = Maker(seed * 1000003 + static_cast<std::uint64_t>(i)).make();
    tally.all.push_back(judgeAll(c, tally));
    for (const std::string& group : groupsOf(c)) groups[group].push_back(tally.all.back());
  }
  printHead("rule");
  for (std::size_t rule = 0; rule < rules.size(); ++rule) printRow(rules[rule], tally.all, rule);
  printHead("trusted, by group");
  for (const auto& [name, all] : groups) printRow(name, all, trustedRule);
  std::printf("\nChosen by trusted:\n");
  for (const auto& [name, count] : tally.chosen) std::printf("- %s: %d\n", name.c_str(), count);
  for (const auto& [name, count] : tally.kinds)
    std::printf("- warnings of %s: %d, %d of them for good curves\n", name.c_str(), count,
                tally.falseKinds[name]);
}

}  // namespace
}  // namespace pelmora::study

int main(int count, char** arguments) {
  using namespace pelmora::study;
  const int calibrations = count > 1 ? std::atoi(arguments[1]) : 1500;
  const auto seed = static_cast<std::uint64_t>(count > 2 ? std::atoi(arguments[2]) : 1);
  if (count > 3 && std::strcmp(arguments[3], "held-out") == 0) {
    study<HeldOutCaseMaker>(calibrations, seed);
  } else if (count > 3 && std::strcmp(arguments[3], "other-meters") == 0) {
    study<OtherMeterCaseMaker>(calibrations, seed);
  } else {
    study<CaseMaker>(calibrations, seed);
  }
}
